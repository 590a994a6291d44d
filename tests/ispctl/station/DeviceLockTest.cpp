#include <gmock/gmock.h>
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

} // namespace
