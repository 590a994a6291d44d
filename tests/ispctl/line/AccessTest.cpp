// Files that anybody may exchange while the run uses them.

#include <algorithm>
#include <filesystem>

#include "LineFixture.h"

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class CheckAccess : public LineFixture {
  protected:
    void LetOthersWrite(const std::string &name) const {
        fs::permissions(m_here.Path(name), fs::perms::others_write, fs::perm_options::add);
    }

    Words NamesOf(const std::string &line) const {
        return Names(Check(line));
    }

    /// The message of the only finding about access.
    std::string MessageOf(const std::string &line) const {
        for (const ispctl::Finding &finding : Check(line)) {
            if (finding.name.starts_with("replaceable-")) {
                return finding.message;
            }
        }
        return "";
    }
};

TEST_F(CheckAccess, Reports_nothing_if_only_owner_may_write) {
    EXPECT_THAT(NamesOf("--isp --fw @f.bin"), Not(Contains(HasSubstr("replaceable"))));
}

TEST_F(CheckAccess, Reports_file_that_others_may_write) {
    LetOthersWrite("f.bin");
    EXPECT_THAT(NamesOf("--isp --fw @f.bin"), Contains("warning replaceable-file"));
    EXPECT_THAT(MessageOf("--isp --fw @f.bin"), HasSubstr(Here() + "f.bin"));
}

TEST_F(CheckAccess, Reports_key_in_directory_that_others_may_write) {
    fs::rename(m_here.Path("k.pem"), m_here.Path("sub/k.pem"));
    LetOthersWrite("sub");
    EXPECT_THAT(
        MessageOf("--isp --fw @f.bin --sw --dsmode 3 --signfile @s.sig --vkfile @sub/k.pem"),
        HasSubstr("of --vkfile"));
}

TEST_F(CheckAccess, Reports_link_into_directory_that_others_may_write) {
    fs::copy_file(m_here.Path("f.bin"), m_here.Path("sub/f.bin"));
    LetOthersWrite("sub");
    fs::create_symlink(m_here.Path("sub/f.bin"), m_here.Path("link.bin"));
    EXPECT_THAT(MessageOf("--isp --fw @link.bin"), HasSubstr("symbolic link"));
}

TEST_F(CheckAccess, Accepts_directory_in_which_only_owners_may_replace) {
    fs::copy_file(m_here.Path("f.bin"), m_here.Path("sub/f.bin"));
    LetOthersWrite("sub");
    fs::permissions(m_here.Path("sub"), fs::perms::sticky_bit, fs::perm_options::add);
    EXPECT_THAT(NamesOf("--isp --fw @sub/f.bin"), Not(Contains(HasSubstr("replaceable"))));
}

TEST_F(CheckAccess, Accepts_file_that_is_copied_but_not_key) {
    LetOthersWrite("f.bin");
    LetOthersWrite("k.pem");
    m_context.hasPrivateCopies = true;
    EXPECT_THAT(NamesOf("--isp --fw @f.bin"), Not(Contains(HasSubstr("replaceable"))));
    EXPECT_THAT(MessageOf("--isp --fw @f.bin --sw --dsmode 3 --signfile @s.sig --vkfile @k.pem"),
                HasSubstr("of --vkfile"));
}

TEST_F(CheckAccess, Proposes_private_copies_only_of_what_is_copied) {
    LetOthersWrite("f.bin");
    LetOthersWrite("k.pem");
    for (const ispctl::Finding &finding :
         Check("--isp --fw @f.bin --sw --dsmode 3 --signfile @s.sig --vkfile @k.pem")) {
        if (finding.name == "replaceable-file") {
            const bool isKey = finding.message.find("--vkfile") != std::string::npos;
            EXPECT_EQ(finding.suggestion.find("--private-copy") == std::string::npos, isKey);
        }
    }
}

TEST_F(CheckAccess, Accepts_signature_that_is_written) {
    m_here.Write("old.sig", "x");
    LetOthersWrite("old.sig");
    EXPECT_THAT(NamesOf("--sign --sw --dsmode 3 --fw @f.bin --skfile @k.pem --signfile @old.sig"),
                Not(Contains(HasSubstr("replaceable"))));
}

TEST_F(CheckAccess, Accepts_dump_that_others_may_write) {
    m_here.Write("old.bin", "x");
    LetOthersWrite("old.bin");
    EXPECT_THAT(NamesOf("--dumpflash --dumplen 16 --dumpname @old.bin"),
                Not(Contains(HasSubstr("replaceable"))));
}

TEST_F(CheckAccess, Reports_plugin_of_either_name_once) {
    m_here.Write("lib/PlugIn/libIsp.dylib", "x");
    m_here.Write("lib/libSignVerify.dylib", "x");
    m_context.libraryDirectory = m_here.Path("lib/");
    EXPECT_THAT(NamesOf("--isp --fw @f.bin"), Not(Contains(HasSubstr("replaceable"))));
    LetOthersWrite("lib/libSignVerify.dylib");
    EXPECT_THAT(MessageOf("--isp --fw @f.bin"), HasSubstr("lib/libSignVerify.dylib"));
    LetOthersWrite("lib");
    const Words names = NamesOf("--isp --fw @f.bin");
    EXPECT_EQ(std::count(names.begin(), names.end(), "warning replaceable-plugin"), 1);
    EXPECT_THAT(MessageOf("--isp --fw @f.bin"), HasSubstr("lib/PlugIn/libIsp.dylib"));
}

} // namespace
