// Output files appear completely or not at all.

#include <fcntl.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "explain/StagedFiles.h"
#include "support/TempFolder.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class Staging : public testing::Test {
  protected:
    std::size_t FilesInFolder() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_folder.Path()), {}));
    }

    TempFolder m_folder;
    std::string m_error;
};

TEST_F(Staging, Commit_gives_all_files_their_names) {
    StagedFiles files;
    ASSERT_TRUE(files.Add(m_folder.Path("a"), "1", m_error));
    ASSERT_TRUE(files.Add(m_folder.Path("b"), "2", m_error));
    EXPECT_FALSE(m_folder.Exists("a"));
    ASSERT_TRUE(files.Commit(m_error));
    EXPECT_EQ(m_folder.Read("a"), "1");
    EXPECT_EQ(m_folder.Read("b"), "2");
    EXPECT_EQ(FilesInFolder(), 2U);
}

TEST_F(Staging, Failed_file_leaves_the_others_as_they_were) {
    m_folder.Write("a", "old");
    {
        StagedFiles files;
        ASSERT_TRUE(files.Add(m_folder.Path("a"), "new", m_error));
        EXPECT_FALSE(files.Add(m_folder.Path("missing/b"), "2", m_error));
        EXPECT_THAT(m_error, HasSubstr("missing/b"));
    }
    EXPECT_EQ(m_folder.Read("a"), "old");
    EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(Staging, Directory_is_refused) {
    StagedFiles files;
    EXPECT_FALSE(files.Add(m_folder.MakeFolder("d"), "1", m_error));
    EXPECT_THAT(m_error, HasSubstr("/d cannot be written"));
}

TEST_F(Staging, Symbolic_link_and_mode_stay) {
    const std::string target = m_folder.Write("target", "old");
    ASSERT_EQ(::chmod(target.c_str(), 0640), 0);
    fs::create_symlink("target", m_folder.Path("link"));
    StagedFiles files;
    ASSERT_TRUE(files.Add(m_folder.Path("link"), "new", m_error));
    ASSERT_TRUE(files.Commit(m_error));
    EXPECT_TRUE(fs::is_symlink(m_folder.Path("link")));
    EXPECT_EQ(m_folder.Read("target"), "new");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
}

TEST_F(Staging, Device_gets_the_bytes_and_stays_a_device) {
    StagedFiles files;
    ASSERT_TRUE(files.Add("/dev/null", "1", m_error));
    EXPECT_TRUE(files.Commit(m_error));
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(Staging, Full_device_leaves_no_other_file) {
    StagedFiles files;
    ASSERT_TRUE(files.Add(m_folder.Path("a"), "1", m_error));
    ASSERT_TRUE(files.Add("/dev/full", "2", m_error));
    EXPECT_FALSE(files.Commit(m_error));
    EXPECT_THAT(m_error, HasSubstr("/dev/full cannot be written"));
    EXPECT_FALSE(fs::exists(m_folder.Path("a")));
}

TEST_F(Staging, Pipe_that_nobody_reads_is_refused) {
    const std::string pipe = m_folder.Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    StagedFiles files;
    EXPECT_FALSE(files.Add(pipe, "1", m_error));
    EXPECT_THAT(m_error, HasSubstr("nobody reads this pipe"));
}

TEST_F(Staging, Pipe_with_reader_gets_the_bytes) {
    const std::string pipe = m_folder.Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const int reader = ::open(pipe.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    StagedFiles files;
    ASSERT_TRUE(files.Add(pipe, "bytes", m_error));
    EXPECT_TRUE(files.Commit(m_error));
    char read[8] = {};
    EXPECT_EQ(::read(reader, read, sizeof read), 5);
    EXPECT_STREQ(read, "bytes");
    ::close(reader);
}

} // namespace
} // namespace ispctl
