#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "unit/settings/ProfileFamilies.h"

namespace {

/// The writer, on both families.
template <class Family> class ProfileWriter : public testing::Test {
  protected:
    /// The file after one write into `before`.
    std::string Written(const std::string &before, const std::string &section,
                        const std::string &key, const std::string &value) {
        EXPECT_EQ(Family::Write(m_folder.Write("p.ini", before), section, key, value), 1);
        return m_folder.Read("p.ini");
    }
    TempFolder m_folder;
};

using Families = testing::Types<WideFamily, NarrowFamily>;
TYPED_TEST_SUITE(ProfileWriter, Families);

TYPED_TEST(ProfileWriter, Missing_file_is_created) {
    EXPECT_EQ(OutputOf([&] {
                  EXPECT_EQ(TypeParam::Write(this->m_folder.Path("new.ini"), "S", "K", "V"), 1);
              }),
              "");
    EXPECT_EQ(this->m_folder.Read("new.ini"), "[S]\nK=V\n");
}

TYPED_TEST(ProfileWriter, Value_of_existing_key_is_replaced) {
    EXPECT_EQ(this->Written("[S]\nK=1\n[T]\n", "S", "K", "2"), "[S]\nK=2\n[T]\n");
}

TYPED_TEST(ProfileWriter, New_key_is_inserted_before_next_line_without_equals_sign) {
    EXPECT_EQ(this->Written("[S]\nK=1\n[T]\n", "S", "J", "3"), "[S]\nK=1\nJ=3\n[T]\n");
    EXPECT_EQ(this->Written("[S]\nK=1\n\nL=2\n[T]\n", "S", "J", "3"),
              "[S]\nK=1\nJ=3\n\nL=2\n[T]\n");
    EXPECT_EQ(this->Written("[S]\n; note\nK=1\n", "S", "K", "3"), "[S]\nK=3\n; note\nK=1\n");
}

TYPED_TEST(ProfileWriter, New_key_of_last_section_is_appended) {
    EXPECT_EQ(this->Written("[S]\nK=1", "S", "J", "3"), "[S]\nK=1\nJ=3\n");
    EXPECT_EQ(this->Written("[S]", "S", "J", "3"), "[S]\nJ=3\n");
}

TYPED_TEST(ProfileWriter, New_section_is_appended) {
    EXPECT_EQ(this->Written("[S]\nK=1\n", "T", "K", "2"), "[S]\nK=1\n[T]\nK=2\n");
    EXPECT_EQ(this->Written("", "T", "K", "2"), "[T]\nK=2\n");
}

TYPED_TEST(ProfileWriter, Line_is_kept_up_to_last_equals_sign) {
    EXPECT_EQ(this->Written("[S]\nK=a=b\n", "S", "K", "c"), "[S]\nK=a=c\n");
    EXPECT_EQ(this->Written("[S]\nK=a= b \n", "S", "K", ""), "[S]\nK=a=\n");
}

TYPED_TEST(ProfileWriter, Writer_compares_untrimmed_name) {
    EXPECT_EQ(this->Written("[S]\nK = 1\n", "S", "K", "2"), "[S]\nK = 1\nK=2\n");
    EXPECT_EQ(TypeParam::Get(this->m_folder.Path("p.ini"), "S", "K"), (ReadResult{1, "1"}));
    EXPECT_EQ(this->Written("[S]\nK = 1\n", "S", "K ", "2"), "[S]\nK =2\n");
    EXPECT_EQ(this->Written("[S]\n  K= 1\n", "S", "K", "2"), "[S]\nK=2\n");
}

TYPED_TEST(ProfileWriter, Rewrite_trims_all_lines) {
    EXPECT_EQ(this->Written("  a  \n  [S] \n \n\tb\n  c = d  \n[T]", "T", "K", "1"),
              "a\n[S]\n\n\tb\nc = d\n[T]\nK=1\n");
}

TYPED_TEST(ProfileWriter, Written_value_is_not_trimmed) {
    EXPECT_EQ(this->Written("", "S", " K ", " V "), "[S]\n K = V \n");
    EXPECT_EQ(this->Written("[S]\nK=1\n", "S", "K", " V "), "[S]\nK= V \n");
    EXPECT_EQ(this->Written("[S]\n K = V \n", "T", "J", "1"), "[S]\nK = V\n[T]\nJ=1\n");
}

TYPED_TEST(ProfileWriter, First_of_two_equal_keys_is_replaced) {
    EXPECT_EQ(this->Written("[S]\nK=1\nK=2\n", "S", "K", "3"), "[S]\nK=3\nK=2\n");
}

TYPED_TEST(ProfileWriter, Key_is_replaced_in_every_section_of_that_name) {
    EXPECT_EQ(this->Written("[S]\nK=1\n\n[S]\nK=2\n[T]\nK=3\n", "S", "K", "9"),
              "[S]\nK=9\n\n[S]\nK=9\n[T]\nK=3\n");
    EXPECT_EQ(this->Written("[S]\nK=1\n[S]\nK=2\n", "S", "K", "9"), "[S]\nK=9\n[S]\nK=9\n");
}

TYPED_TEST(ProfileWriter, Key_is_added_only_once) {
    EXPECT_EQ(this->Written("[S]\nK=1\n\n[S]\nL=2\n\n[S]\n[T]\n", "S", "J", "3"),
              "[S]\nK=1\nJ=3\n\n[S]\nL=2\n\n[S]\n[T]\n");
    EXPECT_EQ(this->Written("[S]\nK=1\n\n[S]\nL=2\n", "S", "J", "3"),
              "[S]\nK=1\nJ=3\n\n[S]\nL=2\n");
    EXPECT_EQ(this->Written("[S]\nK=1\n\n[S]\nL=2\n", "S", "L", "3"),
              "[S]\nK=1\nL=3\n\n[S]\nL=3\n");
    EXPECT_EQ(this->Written("[S]\nK=1\n\n[S]\nL=2\n", "S", "K", "3"), "[S]\nK=3\n\n[S]\nL=2\n");
}

TYPED_TEST(ProfileWriter, Header_that_ends_section_is_skipped) {
    EXPECT_EQ(this->Written("[S]\nK=1\n[S]\nK=2\n", "S", "J", "3"), "[S]\nK=1\nJ=3\n[S]\nK=2\n");
    EXPECT_EQ(this->Written("[S]\nK=1\n[S]\nJ=2\n", "S", "J", "3"), "[S]\nK=1\nJ=3\n[S]\nJ=2\n");
    EXPECT_EQ(this->Written("[S]\n[S]\n[S]\nJ=2\n", "S", "J", "3"), "[S]\nJ=3\n[S]\n[S]\nJ=3\n");
}

TYPED_TEST(ProfileWriter, Header_with_equals_sign_is_key_line_inside_other_section) {
    EXPECT_EQ(this->Written("[a=b]\nK=1\n", "a=b", "K", "2"), "[a=b]\nK=2\n");
    EXPECT_EQ(this->Written("[S]\n[a=b]\nK=1\n", "S", "K", "2"), "[S]\n[a=b]\nK=2\n");
    EXPECT_EQ(this->Written("[a=b]\n[a=b]\nK=1\n", "a=b", "J", "2"), "[a=b]\n[a=b]\nK=1\nJ=2\n");
}

TYPED_TEST(ProfileWriter, Carriage_returns_never_match_header) {
    EXPECT_EQ(this->Written("[S]\r\nK=1\r\n", "S", "K", "2"), "[S]\r\nK=1\r\n[S]\nK=2\n");
}

TYPED_TEST(ProfileWriter, Overlong_line_is_lost_in_a_rewrite) {
    const std::string kept(1023, 'x');
    EXPECT_EQ(this->Written("[S]\nK=1\n" + kept + "x\n[T]\nL=2\n", "S", "K", "2"), "[S]\nK=2\n");
    EXPECT_EQ(this->Written("[S]\nK=1\n" + kept + "\n[T]\n", "S", "K", "2"),
              "[S]\nK=2\n" + kept + "\n[T]\n");
}

TYPED_TEST(ProfileWriter, Overlong_value_is_written_but_never_read) {
    const std::string value(2000, 'v');
    EXPECT_EQ(this->Written("", "S", "K", value), "[S]\nK=" + value + "\n");
    EXPECT_EQ(TypeParam::Get(this->m_folder.Path("p.ini"), "S", "K"), (ReadResult{0, "dflt"}));
}

TYPED_TEST(ProfileWriter, Rewritten_line_is_truncated_at_NUL) {
    EXPECT_EQ(this->Written(std::string("[S]\0x\nK=1\0y=2\n", 14), "S", "K", "2"), "[S]\nK=2\n");
}

TYPED_TEST(ProfileWriter, Value_may_contain_equals_signs_and_newlines) {
    EXPECT_EQ(this->Written("[S]\nK=1\n", "S", "K", "a=b"), "[S]\nK=a=b\n");
    EXPECT_EQ(this->Written("[S]\nK=1\n", "S", "K", "a\n[T]"), "[S]\nK=a\n[T]\n");
}

TYPED_TEST(ProfileWriter, Writing_prints_nothing) {
    EXPECT_EQ(OutputOf([&] { this->Written("[S]\n", "S", "K", "1"); }), "");
}

TYPED_TEST(ProfileWriter, File_that_cannot_be_opened_is_reported) {
    const std::string folder = this->m_folder.MakeFolder("d");
    for (const std::string &path :
         {folder, this->m_folder.Path("no/such/folder.ini"), std::string()}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(OutputOf([&] { EXPECT_EQ(TypeParam::Write(path, "S", "K", "1"), 0); }),
                  "Open file error \n");
    }
}

/// While it lives, no file of this process can grow beyond the size.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t size) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_previous);
        const rlimit limit{size, m_previous.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &m_previous);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

  private:
    rlimit m_previous{};
    void (*m_handler)(int);
};

TYPED_TEST(ProfileWriter, Full_disk_keeps_previous_file) {
    const std::string before = "  [S]  \r\nK = 1\n[T]";
    const std::string path = this->m_folder.Write("p.ini", before);
    int result = -1;
    const std::string printed = OutputOf([&] {
        const FileSizeLimit limit(30);
        result = TypeParam::Write(path, "S", "K", std::string(40, 'v'));
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(printed, "");
    EXPECT_EQ(this->m_folder.Read("p.ini"), before);
    EXPECT_FALSE(this->m_folder.Exists(".ScalerIsp.tmp"));
}

TYPED_TEST(ProfileWriter, Previous_bytes_are_restored_in_place_if_write_fails) {
    const std::string before = "  [S]  \r\nK = 1\n[T]";
    const std::string path = this->m_folder.Write("p.ini", before);
    ASSERT_EQ(::link(path.c_str(), this->m_folder.Path("second.ini").c_str()), 0);
    int result = -1;
    {
        const FileSizeLimit limit(30);
        result = TypeParam::Write(path, "S", "K", std::string(40, 'v'));
    }
    EXPECT_EQ(result, 0);
    EXPECT_EQ(this->m_folder.Read("second.ini"), before);
}

TYPED_TEST(ProfileWriter, Missing_file_is_not_created_if_it_cannot_be_written) {
    const std::string path = this->m_folder.Path("new.ini");
    int result = -1;
    {
        const FileSizeLimit limit(10);
        result = TypeParam::Write(path, "S", "K", std::string(40, 'v'));
    }
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(this->m_folder.Exists("new.ini"));
}

TYPED_TEST(ProfileWriter, Full_device_returns_0_without_message) {
    if (::access("/dev/full", W_OK) != 0) {
        GTEST_SKIP() << "this system has no /dev/full";
    }
    EXPECT_EQ(OutputOf([] { EXPECT_EQ(TypeParam::Write("/dev/full", "S", "K", "1"), 0); }), "");
    EXPECT_EQ(TypeParam::Get("/dev/full", "S", "K"), (ReadResult{0, "dflt"}));
}

TEST(ProfileWriterNull, Null_deletes_neither_key_nor_section) {
    const TempFolder folder;
    const std::string path = folder.Write("p.ini", "[S]\nK=1\n[T]\nL=2\n");
    EXPECT_EQ(CpNxWritePrivateProfileStringW(L"S", L"K", nullptr, Wide(path).c_str()), 1);
    EXPECT_EQ(folder.Read("p.ini"), "[S]\nK=\n[T]\nL=2\n");
    EXPECT_EQ(CpNxWritePrivateProfileStringW(L"T", nullptr, nullptr, Wide(path).c_str()), 1);
    EXPECT_EQ(folder.Read("p.ini"), "[S]\nK=\n[T]\nL=2\n=\n");
    EXPECT_EQ(CpNxWritePrivateProfileStringA("S", "K", nullptr, path.c_str()), 1);
    EXPECT_EQ(CpNxWritePrivateProfileStringA("S", nullptr, nullptr, path.c_str()), 1);
    EXPECT_EQ(folder.Read("p.ini"), "[S]\nK=\n=\n[T]\nL=2\n=\n");
}

} // namespace
