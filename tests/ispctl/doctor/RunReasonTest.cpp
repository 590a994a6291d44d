// What ispctl run says if a plug-in, the library or a settings file cannot be used: the reasons of
// doctor.

#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "Installation.h"
#include "support/EnvGuard.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using Json = nlohmann::json;

/// A message without its line breaks.
std::string Unwrapped(std::string text) {
    for (std::size_t at = text.find("\n  "); at != std::string::npos; at = text.find("\n  ", at)) {
        text.replace(at, 3, " ");
    }
    return text;
}

class RunReason : public testing::Test {
  protected:
    ConsoleResult Run(const std::vector<std::string> &own, const std::vector<std::string> &line) {
        std::vector<std::string> words{"run", "--lib", m_installation.Library()};
        words.insert(words.end(), own.begin(), own.end());
        words.insert(words.end(), line.begin(), line.end());
        ConsoleResult result = RunConsole(words);
        result.err = Unwrapped(result.err);
        return result;
    }
    std::vector<std::string> Programming() const {
        return {"--isp", "--fw", m_firmware};
    }
    std::string PluginPath() const {
        return m_installation.folder.Path(Installation::kIspPlugin);
    }
    /// The first bytes of a shared library for another processor.
    void WriteForeign(const std::string &name) const {
        m_installation.Remove(name);
        std::string bytes(64, '\0');
        bytes.replace(0, 6,
                      std::string("\x7F"
                                  "ELF\x02\x01",
                                  6));
        bytes[16] = 3;                             // a shared object
        bytes[18] = static_cast<char>(0xB7 - 100); // no known machine
        m_installation.folder.Write(name, bytes);
    }

    Installation m_installation;
    EnvGuard m_locale{"LC_ALL", "C.UTF-8"};
    TempFolder m_elsewhere;
    std::string m_firmware = m_elsewhere.Write("fw.bin", "firmware");
};

struct PluginRow {
    const char *description;
    const char *plugin; ///< empty: none
    const char *reason;
    const char *remedy;
};

TEST_F(RunReason, Unusable_plugin_is_named_with_remedy_and_device_is_untouched) {
    const PluginRow rows[] = {
        {"none", "", "there is no ISP plug-in: ", "use --virtual for the virtual scaler"},
        {"dependency", NEEDING_PLUGIN, "needs a library that is not found: ", "install that"},
        {"symbol", UNRESOLVED_PLUGIN, "needs a function that no library offers: ", "version"},
        {"function", WITHOUT_ISP_FLASH, " lacks IspFlash, which the library requires",
         "get a plug-in that exports the function"},
        {"other kind", RECORDING_SIGN, " is a sign/verify plug-in, expected at ", "move it there"},
    };
    for (const PluginRow &row : rows) {
        SCOPED_TRACE(row.description);
        m_installation.Remove(Installation::kIspPlugin);
        if (*row.plugin != '\0') {
            m_installation.Copy(row.plugin, Installation::kIspPlugin);
        }
        const ConsoleResult result = Run({}, Programming());
        EXPECT_EQ(result.status, 5);
        EXPECT_THAT(result.err, HasSubstr("; nothing was done\nispctl: "));
        EXPECT_THAT(result.err, HasSubstr(row.reason));
        EXPECT_THAT(result.err, HasSubstr(PluginPath()));
        EXPECT_THAT(result.err, HasSubstr(row.remedy));
        EXPECT_THAT(result.err, Not(HasSubstr("state of the device")));
    }
}

TEST_F(RunReason, Pipe_in_place_of_plugin_is_not_waited_for) {
    for (const char *name : {"PlugIn/libIsp.dylib", "libSignVerify.dylib"}) {
        SCOPED_TRACE(name);
        m_installation.Remove(name);
        const std::string pipe = m_installation.folder.Path(name);
        ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
        const ConsoleResult result = Run({}, Programming());
        EXPECT_EQ(result.status, 5);
        EXPECT_THAT(result.err, HasSubstr(pipe + " is a pipe, not a plug-in"));
        m_installation.Remove(name);
    }
}

TEST_F(RunReason, Plugin_for_another_processor_is_reported_as_such) {
    WriteForeign(Installation::kIspPlugin);
    const ConsoleResult result = Run({"--json"}, Programming());
    EXPECT_EQ(result.status, 5);
    const Json event = Json::parse(result.out.substr(result.out.find("{\"event\":\"result\"")));
    EXPECT_EQ(event["device"], "untouched");
    EXPECT_EQ(event["stage"], "load");
    ASSERT_EQ(event["advice"].size(), 2U);
#if defined(__linux__)
    EXPECT_THAT(event["advice"][0], HasSubstr("is built for machine 0x53; ispctl runs as "));
    EXPECT_THAT(event["advice"][1], HasSubstr("built for this architecture"));
#endif
}

TEST_F(RunReason, Loader_has_line_of_its_own) {
    m_installation.Copy(NEEDING_PLUGIN, Installation::kIspPlugin);
    const ConsoleResult result = Run({}, Programming());
    EXPECT_THAT(result.err, HasSubstr("\nispctl: " + PluginPath() + " needs a library"));
    EXPECT_THAT(result.err, HasSubstr("needed_by_plugin"));
}

TEST_F(RunReason, Missing_library_is_named_with_places_and_remedy) {
    m_installation.Remove("libScalerIsp.so");
    const ConsoleResult result = Run({}, Programming());
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("cannot open the library: " + m_installation.Library() +
                                      " does not exist"));
    EXPECT_THAT(result.err, HasSubstr("name one with --lib FILE"));
    EXPECT_THAT(result.err, HasSubstr("--virtual"));
    EXPECT_THAT(result.err,
                HasSubstr("it is looked for as " +
                          fs::path(ISPCTL_EXECUTABLE).parent_path().parent_path().string()));
}

TEST_F(RunReason, Library_that_is_none_is_described) {
    WriteForeign("libScalerIsp.so");
    EXPECT_EQ(Run({}, Programming()).status, 2);
#if defined(__linux__)
    EXPECT_THAT(Run({}, Programming()).err, HasSubstr("is built for machine 0x53"));
#endif
    m_installation.folder.Write("libScalerIsp.so", "rubbish");
    EXPECT_THAT(Run({}, Programming()).err, HasSubstr("is a file of an unknown type"));
    m_installation.Remove("libScalerIsp.so");
    ASSERT_EQ(::mkfifo(m_installation.Library().c_str(), 0600), 0);
    EXPECT_THAT(Run({}, Programming()).err, HasSubstr("is a FIFO, not a library"));
}

struct SettingRow {
    const char *description;
    const char *file;
    const char *search;
    const char *bytes;
    const char *reason; ///< after the name of the file
    const char *remedy;
};

const SettingRow kSettings[] = {
    {"carriage returns", "IspSetting.ini", "prefix", "[ISP_Fw]\r\nstrFwPrefix=mon\r\n",
     ", line 1: the line ends in a carriage return", "save the file with newlines only"},
    {"carriage return of value", "IspSetting.ini", "prefix", "[ISP_Fw]\nstrFwPrefix=mon\r\n",
     ", line 2: the line ends in a carriage return", "save the file with newlines only"},
    {"no section", "IspSetting.ini", "prefix", "strFwPrefix=mon\n",
     ", line 1: the key strFwPrefix is in no section", "move it below its [section]"},
    {"section in wrong case", "IspSetting.ini", "prefix", "[A]\nk=1\n[isp_fw]\nstrFwPrefix=mon\n",
     ", line 3: [isp_fw] is not [ISP_Fw]", "write the name exactly so"},
    {"key in wrong case", "IspSetting.ini", "prefix", "[ISP_Fw]\nSTRFWPREFIX=mon\n",
     ", line 2: STRFWPREFIX is not strFwPrefix", "write the name exactly so"},
    {"no key", "IspSetting.ini", "prefix", "[ISP_Fw]\nother=mon\n",
     " has no value of strFwPrefix in the section [ISP_Fw]", "strFwPrefix=TEXT"},
    {"section in wrong case", "IspUserDefined.txt", "userdefined",
     "[userdefinedinfo]\nSIName=mon\n", ", line 1: [userdefinedinfo] is not [UserDefinedInfo]",
     "write the name exactly so"},
    {"carriage returns", "IspUserDefined.txt", "userdefined", "[UserDefinedInfo]\r\nSIName=mon\r\n",
     ", line 1: the line ends in a carriage return", "save the file with newlines only"},
    {"no file", "IspUserDefined.txt", "userdefined", nullptr, " does not exist",
     "the line [UserDefinedInfo]"},
};

TEST_F(RunReason, Wrong_settings_file_is_named_with_line_and_remedy) {
    m_installation.folder.Write("monitor.bin", "firmware");
    for (const SettingRow &row : kSettings) {
        SCOPED_TRACE(std::string(row.file) + ": " + row.description);
        if (row.bytes != nullptr) {
            m_installation.folder.Write(row.file, row.bytes);
        } else {
            m_installation.Remove(row.file);
        }
        const ConsoleResult result = Run({}, {"--isp", "--searchfw", row.search});
        EXPECT_EQ(result.status, 4);
        EXPECT_THAT(result.err, HasSubstr("[settings-file]"));
        EXPECT_THAT(result.err, HasSubstr(m_installation.folder.Path(row.file) + row.reason));
        EXPECT_THAT(result.err, HasSubstr(row.remedy));
    }
}

TEST_F(RunReason, File_of_settingfile_option_is_named) {
    m_installation.folder.Write("monitor.bin", "firmware");
    const std::string file = m_elsewhere.Write("mine.ini", "[ISP_Fw]\r\nstrFwPrefix=mon\r\n");
    const ConsoleResult result = Run({}, {"--isp", "--settingfile", file, "--searchfw", "prefix"});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(result.err, HasSubstr(file + ", line 1: the line ends in a carriage return"));
}

TEST_F(RunReason, Right_settings_file_is_not_blamed) {
    m_installation.folder.Write("panel.bin", "firmware");
    m_installation.folder.Write("IspSetting.ini", "[ISP_Fw]\nstrFwPrefix=mon\n");
    const ConsoleResult result = Run({}, {"--isp", "--searchfw", "prefix"});
    EXPECT_EQ(result.status, 4);
    EXPECT_THAT(result.err, HasSubstr("[search-failed]"));
    EXPECT_THAT(result.err, Not(HasSubstr("[settings-file]")));
}

TEST_F(RunReason, Names_in_wrong_case_are_warnings_of_doctor) {
    m_installation.folder.Write("IspSetting.ini", "[isp_basic]\nbshowmergefw=1\n");
    m_installation.folder.Write("IspUserDefined.txt", "[UserDefinedInfo]\nsiname=x\n");
    EXPECT_THAT(
        Installation::Bad(m_installation.Doctor()),
        testing::ElementsAre("settings-name-case", "settings-name-case", "settings-name-case"));
}

TEST_F(RunReason, Reason_is_one_line_for_programs) {
    m_installation.Remove("libScalerIsp.so");
    const std::string err = RunConsole({"run", "--lib", m_installation.Library(), "--isp"}).err;
    EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
    EXPECT_THAT(err, HasSubstr("use --virtual"));
}

TEST_F(RunReason, Report_of_doctor_fits_into_80_columns) {
    m_installation.Remove("libScalerIsp.so");
    std::istringstream lines(RunConsole({"doctor", "--lib", m_installation.Library()}).out);
    for (std::string line; std::getline(lines, line);) {
        const bool isOneWord = line.find(' ', line.find_first_not_of(' ')) == std::string::npos;
        EXPECT_TRUE(line.size() <= 80 || isOneWord) << line;
    }
}

} // namespace
