#include "station/FileDigest.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "station/Sha256.h"
#include "support/TempFolder.h"

namespace {

using testing::HasSubstr;

class FileDigests : public testing::Test {
  protected:
    TempFolder m_folder;
    std::string m_error;
};

TEST_F(FileDigests, Copy_has_hash_of_file_and_is_for_its_owner_only) {
    const std::string bytes(200000, 'x');
    const std::string copy = m_folder.Path("copy");
    const auto digest = ispctl::CopyFile(m_folder.Write("file", bytes), copy, m_error);
    ASSERT_TRUE(digest) << m_error;
    EXPECT_EQ(digest->size, bytes.size());
    EXPECT_EQ(digest->sha256, ispctl::Sha256Of(bytes));
    EXPECT_EQ(m_folder.Read("copy"), bytes);
    struct stat status {};
    ASSERT_EQ(::stat(copy.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0400U);
}

TEST_F(FileDigests, What_is_no_file_is_not_read) {
    const std::string pipe = m_folder.Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string &name :
         {pipe, m_folder.MakeFolder("folder"), std::string("/dev/zero")}) {
        EXPECT_FALSE(ispctl::DigestOf(name, m_error));
        EXPECT_EQ(m_error, name + " is not a file");
    }
    EXPECT_FALSE(ispctl::DigestOf(m_folder.Path("missing"), m_error));
    EXPECT_THAT(m_error, HasSubstr("cannot read " + m_folder.Path("missing")));
}

#if defined(__linux__)
TEST_F(FileDigests, File_with_more_bytes_than_its_size_is_changing) {
    const std::string file = "/proc/self/status"; // its size is 0, whatever it holds
    EXPECT_FALSE(ispctl::DigestOf(file, m_error));
    EXPECT_EQ(m_error, file + " changes while it is read; run again when it is complete");
}
#endif

TEST_F(FileDigests, Copy_that_does_not_fit_is_error_with_reason) {
    const std::string file = m_folder.Write("file", std::string(200000, 'x'));
    const std::string copy = m_folder.Path("copy");
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small{100000, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto digest = ispctl::CopyFile(file, copy, m_error);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    EXPECT_FALSE(digest);
    EXPECT_THAT(m_error, HasSubstr("cannot copy " + file + " to " + copy + ": "));
    EXPECT_THAT(m_error, HasSubstr("set TMPDIR to a directory with enough space"));
}

TEST_F(FileDigests, Existing_file_is_never_overwritten_by_copy) {
    const std::string file = m_folder.Write("file", "new");
    EXPECT_FALSE(ispctl::CopyFile(file, m_folder.Write("copy", "old"), m_error));
    EXPECT_THAT(m_error, HasSubstr("cannot copy"));
    EXPECT_EQ(m_folder.Read("copy"), "old");
}

} // namespace
