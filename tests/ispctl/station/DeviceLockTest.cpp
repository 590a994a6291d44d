#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "station/DeviceLock.h"
#include "support/TempFolder.h"

namespace {

using ispctl::DeviceLock;

class DeviceLocks : public testing::Test {
  protected:
    DeviceLock Make() const {
        return DeviceLock(m_folder.Path(), 1);
    }
    void TearDown() override {
        ::unlink(Make().File().c_str());
    }

    TempFolder m_folder;
};

TEST_F(DeviceLocks, Second_lock_waits_for_first) {
    DeviceLock waiting = Make();
    {
        DeviceLock first = Make();
        ASSERT_TRUE(first.Take("first"));
        EXPECT_FALSE(waiting.Take("waiting"));
        EXPECT_EQ(waiting.Holder(), "first");
        EXPECT_EQ(waiting.Problem(), "");
    }
    EXPECT_TRUE(waiting.Take("waiting"));
}

TEST_F(DeviceLocks, Removed_file_locks_nobody_out) {
    DeviceLock waiting = Make();
    {
        DeviceLock first = Make();
        ASSERT_TRUE(first.Take("first"));
        ASSERT_FALSE(waiting.Take("waiting"));
        ASSERT_EQ(::unlink(first.File().c_str()), 0);
    }
    DeviceLock second = Make();
    ASSERT_TRUE(second.Take("second"));
    EXPECT_FALSE(waiting.Take("waiting"));
    EXPECT_EQ(waiting.Holder(), "second");
}

TEST_F(DeviceLocks, What_is_no_file_in_place_of_lock_is_named) {
    const std::string file = Make().File();
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    DeviceLock lock = Make();
    EXPECT_FALSE(lock.Take("me"));
    EXPECT_EQ(lock.Problem(), "cannot lock the device: " + file + " is not a file; remove it");
    ASSERT_EQ(::unlink(file.c_str()), 0);
    // Whoever makes a link there must not choose the file that is opened.
    ASSERT_EQ(::symlink(m_folder.Path("victim").c_str(), file.c_str()), 0);
    DeviceLock linked = Make();
    EXPECT_FALSE(linked.Take("me"));
    EXPECT_THAT(linked.Problem(), testing::StartsWith("cannot lock the device: " + file + ": "));
    EXPECT_FALSE(m_folder.Exists("victim"));
}

} // namespace
