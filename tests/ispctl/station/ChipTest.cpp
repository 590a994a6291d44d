#include <filesystem>
#include <gmock/gmock.h>

#include "ConsoleProcess.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Words = std::vector<std::string>;

class Chip : public testing::Test {
  protected:
    void Make(const std::string &name) const {
        const std::string folder = m_folder.MakeFolder("chips/" + name);
        fs::copy(REAL_LIBRARY, folder);
    }

    TempFolder m_folder;
    EnvGuard m_chips{"SCALER_ISP_CHIPS", m_folder.MakeFolder("chips")};
};

TEST_F(Chip, Commands_use_library_of_its_directory) {
    Make("panel27");
    for (const char *command : {"run", "doctor", "paths"}) {
        Words line{command, "--chip", "panel27"};
        if (line.front() == "run") {
            line.insert(line.end(), {"--", "--getscalertype"});
        }
        const ConsoleResult result = RunConsole(line);
        EXPECT_THAT(result.out + result.err, HasSubstr(m_folder.Path("chips/panel27/PlugIn")));
    }
    EXPECT_THAT(RunConsole({"explain", "--chip", "panel27", "--getscalertype"}).out,
                HasSubstr(m_folder.Path("chips/panel27/PlugIn")));
}

TEST_F(Chip, Doctor_warns_of_library_that_is_a_link) {
    const std::string linked = m_folder.MakeFolder("chips/linked");
    fs::create_symlink(REAL_LIBRARY, fs::path(linked) / fs::path(REAL_LIBRARY).filename());
    Make("copied");
    EXPECT_THAT(RunConsole({"doctor", "--json", "--chip", "linked"}).out,
                HasSubstr("\"library-is-a-link\""));
    EXPECT_THAT(RunConsole({"doctor", "--json", "--chip", "copied"}).out,
                AllOf(HasSubstr("\"library-loads\""), Not(HasSubstr("library-is-a-link"))));
}

#if defined(VIRTUAL_ISP)
TEST_F(Chip, Doctor_looks_for_words_for_codes_of_plugin) {
    Make("panel27");
    const std::string folder = m_folder.MakeFolder("chips/panel27/PlugIn");
    fs::copy(VIRTUAL_ISP, folder + "/libIsp.dylib");
    const Words doctor{"doctor", "--json", "--chip", "panel27"};
    const ConsoleResult before = RunConsole(doctor);
    EXPECT_THAT(before.out,
                AllOf(HasSubstr("\"plugin-codes-missing\""), HasSubstr(folder + "/libIsp.codes"),
                      HasSubstr("result-codes.md")));
    m_folder.Write("chips/panel27/PlugIn/libIsp.codes", "0x7001 no key\n");
    const ConsoleResult after = RunConsole(doctor);
    EXPECT_EQ(after.status, before.status); // a remark only
    EXPECT_THAT(after.out,
                AllOf(HasSubstr("\"plugin-codes\""), Not(HasSubstr("plugin-codes-missing"))));
}
#endif

TEST_F(Chip, Unknown_name_is_answered_with_nearest_and_list) {
    Make("panel27");
    Make("tv-9");
    const ConsoleResult result = RunConsole({"run", "--chip", "panel72", "--isp"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("did you mean panel27? there are panel27, tv-9"));
    EXPECT_THAT(RunConsole({"paths", "--chip", "zzz"}).err,
                HasSubstr("there is no chip zzz; there are panel27, tv-9"));
}

TEST_F(Chip, Unknown_name_without_any_chip_names_directories) {
    const ConsoleResult result = RunConsole({"run", "--chip", "panel27", "--isp"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("there is no chip panel27; there are no chips in " +
                                      m_folder.Path("chips")));
}

TEST_F(Chip, Name_that_is_path_or_has_no_library_is_usage_error) {
    m_folder.MakeFolder("chips/empty");
    EXPECT_THAT(RunConsole({"run", "--chip", "empty", "--isp"}).err,
                HasSubstr("the chip empty has no library"));
    for (const char *name : {"..", "../chips", "/opt", "", "."}) {
        const ConsoleResult result = RunConsole({"run", "--chip", name, "--isp"});
        EXPECT_EQ(result.status, 2) << name;
    }
    EXPECT_EQ(RunConsole({"run", "--chip", "empty", "--virtual", "--isp"}).status, 2);
}

} // namespace
