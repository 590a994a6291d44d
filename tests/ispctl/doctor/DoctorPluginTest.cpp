// What doctor says about plug-ins: the real program on real plug-ins.

#include <fstream>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "Installation.h"
#include "support/EnvGuard.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using Json = nlohmann::json;

class DoctorPlugin : public testing::Test {
  protected:
    /// The names of warnings and errors, and the exit status, if the plug-in has these bytes.
    std::vector<std::string> BadWith(const std::string &bytes) {
        m_installation.folder.Write(Installation::kIspPlugin, bytes);
        return Installation::Bad(m_installation.Doctor());
    }
    std::string PluginBytes() const {
        return m_installation.folder.Read(Installation::kIspPlugin);
    }
    std::string PluginPath() const {
        return m_installation.folder.Path(Installation::kIspPlugin);
    }

    Installation m_installation;
    EnvGuard m_locale{"LC_ALL", "C.UTF-8"};
};

TEST_F(DoctorPlugin, Good_installation_has_no_warning) {
    const Json document = m_installation.Doctor();
    EXPECT_THAT(Installation::Bad(document), IsEmpty()) << document;
    EXPECT_EQ(m_installation.status, 0);
    EXPECT_THAT(Installation::Named(document, "plugin-loads"), SizeIs(2));
    EXPECT_THAT(Installation::Named(document, "function-present"), SizeIs(13));
    EXPECT_THAT(Installation::Named(document, "library-loads"), SizeIs(1));
    EXPECT_THAT(Installation::Named(document, "function-never-called"), SizeIs(8));
}

TEST_F(DoctorPlugin, Missing_isp_plugin_gives_status_5) {
    m_installation.Remove("PlugIn");
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("plugin-missing"));
    EXPECT_EQ(m_installation.status, 5);
}

TEST_F(DoctorPlugin, Missing_sign_plugin_is_a_remark) {
    m_installation.Remove(Installation::kSignPlugin);
    const Json document = m_installation.Doctor();
    EXPECT_THAT(Installation::Named(document, "sign-plugin-missing"), SizeIs(1));
    EXPECT_EQ(m_installation.status, 0);
}

TEST_F(DoctorPlugin, Unusable_sign_plugin_gives_status_1) {
    m_installation.folder.Write(Installation::kSignPlugin, "");
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("plugin-wrong-type"));
    EXPECT_EQ(m_installation.status, 1);
}

TEST_F(DoctorPlugin, Required_function_is_named_if_missing) {
    m_installation.Copy(WITHOUT_ISP_FLASH, Installation::kIspPlugin);
    const Json document = m_installation.Doctor();
    EXPECT_THAT(Installation::Bad(document), ElementsAre("function-missing"));
    EXPECT_EQ(Installation::Named(document, "function-missing")[0]["details"],
              Json::array({"IspFlash"}));
    EXPECT_EQ(m_installation.status, 5);
}

TEST_F(DoctorPlugin, Plugin_of_other_kind_is_told_where_it_belongs) {
    const struct {
        const char *plugin, *name, *kind, *expected;
        int status;
    } rows[] = {
        {RECORDING_SIGN, Installation::kIspPlugin, "a sign/verify plug-in",
         Installation::kSignPlugin, 5},
        {RECORDING_ISP, Installation::kSignPlugin, "an ISP plug-in", Installation::kIspPlugin, 1},
    };
    for (const auto &row : rows) {
        m_installation.Copy(RECORDING_ISP, Installation::kIspPlugin);
        m_installation.Copy(row.plugin, row.name);
        const Json document = m_installation.Doctor();
        EXPECT_THAT(Installation::Bad(document), ElementsAre("plugin-of-other-kind"));
        EXPECT_EQ(Installation::Named(document, "plugin-of-other-kind")[0]["details"],
                  Json::array({row.kind, m_installation.folder.Path(row.expected)}));
        EXPECT_EQ(m_installation.status, row.status);
    }
}

TEST_F(DoctorPlugin, Optional_function_is_a_remark_if_missing) {
    m_installation.Copy(WITHOUT_ISP_EEPROM, Installation::kIspPlugin);
    const Json document = m_installation.Doctor();
    const auto missing = Installation::Named(document, "optional-function-missing");
    ASSERT_THAT(missing, SizeIs(1));
    EXPECT_EQ(missing[0]["details"], Json::array({"IspEeprom"}));
    EXPECT_EQ(m_installation.status, 0);
}

struct TypeRow {
    const char *bytes;
    const char *words;
};

TEST_F(DoctorPlugin, File_of_another_type_is_named) {
    const TypeRow rows[] = {
        {"", "an empty file"},
        {"#!/bin/sh\nexit 0\n", "a script"},
        {"\x7F"
         "ELF",
         "a truncated ELF file"},
        {"\xFE\xED\xFA\xCF", "a truncated Mach-O file"},
        {"\xFE\xED\xFA\xCE", "a truncated Mach-O file"},
        {"\xCE\xFA\xED\xFE", "a truncated Mach-O file"},
        {"!<arch>\nx", "a static library"},
        {"rubbish", "a file of an unknown type"},
        {"\xCA\xFE\xBA\xBE", "not a library"},
        {"\xCA\xFE\xBA\xBF", "not a library"},
    };
    for (const TypeRow &row : rows) {
        SCOPED_TRACE(row.words);
        EXPECT_THAT(BadWith(row.bytes), ElementsAre("plugin-wrong-type"));
        EXPECT_EQ(m_installation.status, 5);
        EXPECT_THAT(Installation::Named(m_installation.Doctor(), "plugin-wrong-type")[0]["message"],
                    HasSubstr(row.words));
    }
}

#if !defined(__APPLE__)
TEST_F(DoctorPlugin, Other_architecture_is_named) {
    std::string bytes = PluginBytes();
    bytes[18] = bytes[18] == char(183) ? 62 : char(183);
    bytes[19] = 0;
    EXPECT_THAT(BadWith(bytes), ElementsAre("plugin-other-architecture"));
    EXPECT_EQ(m_installation.status, 5);
}

TEST_F(DoctorPlugin, Plugin_of_another_system_is_named) {
    const std::string universal("\xCA\xFE\xBA\xBE\0\0\0\2"
                                "\1\0\0\7\0\0\0\3\0\0\x10\0\0\0\x20\0\0\0\0\xC"
                                "\1\0\0\xC\0\0\0\0\0\0\x40\0\0\0\x20\0\0\0\0\xE",
                                48);
    EXPECT_THAT(BadWith(universal), ElementsAre("plugin-other-system"));
    EXPECT_THAT(Installation::Named(m_installation.Doctor(), "plugin-other-system")[0]["message"],
                HasSubstr("a universal Mach-O file for x86-64, arm64"));
    const std::string thin =
        "\xCF\xFA\xED\xFE" + std::string("\xC\0\0\1\0\0\0\0\6\0\0\0", 12) + std::string(16, '\0');
    EXPECT_THAT(BadWith(thin), ElementsAre("plugin-other-system"));
}
#endif

TEST_F(DoctorPlugin, Directory_and_pipe_are_never_opened) {
    m_installation.Remove(Installation::kIspPlugin);
    fs::create_directory(PluginPath());
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("plugin-not-a-file"));
    m_installation.Remove(Installation::kIspPlugin);
    ASSERT_EQ(::mkfifo(PluginPath().c_str(), 0600), 0);
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("plugin-not-a-file"));
    EXPECT_EQ(m_installation.status, 5);
    m_installation.Remove(Installation::kIspPlugin);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(PluginPath().size(), sizeof address.sun_path);
    PluginPath().copy(address.sun_path, PluginPath().size());
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ::close(listener);
    EXPECT_THAT(Installation::Named(m_installation.Doctor(), "plugin-not-a-file")[0]["message"],
                HasSubstr("a socket"));
}

TEST_F(DoctorPlugin, Link_that_leads_nowhere_is_reported) {
    m_installation.Remove(Installation::kIspPlugin);
    fs::create_symlink("/no/such/plug-in", PluginPath());
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("plugin-not-readable"));
}

TEST_F(DoctorPlugin, Plugin_that_ends_its_process_does_not_end_doctor) {
    m_installation.Copy(ENDING_PLUGIN, Installation::kIspPlugin);
    const std::pair<const char *, const char *> rows[] = {
        {"exit", "ends the process (exit status 0)"},
#if !defined(__SANITIZE_ADDRESS__) // which turns the signal into an exit status
        {"signal", "ends the process (SIGSEGV)"},
#endif
        {"block", "blocks the process for more than 5 seconds"},
    };
    for (const auto &[how, words] : rows) {
        SCOPED_TRACE(how);
        const EnvGuard guard("ENDING_PLUGIN", how);
        const Json document = m_installation.Doctor();
        EXPECT_THAT(Installation::Bad(document), ElementsAre("plugin-ends-process"));
        EXPECT_THAT(Installation::Named(document, "plugin-ends-process")[0]["message"],
                    HasSubstr(words));
        EXPECT_EQ(m_installation.status, 5);
    }
}

TEST_F(DoctorPlugin, Missing_dependency_is_reported_in_loader_words) {
    m_installation.Copy(NEEDING_PLUGIN, Installation::kIspPlugin);
    const Json document = m_installation.Doctor();
    EXPECT_THAT(Installation::Bad(document), ElementsAre("plugin-missing-dependency"));
    EXPECT_THAT(Installation::Named(document, "plugin-missing-dependency")[0]["message"],
                HasSubstr("needed_by_plugin"));
}

TEST_F(DoctorPlugin, Missing_symbol_is_reported_in_loader_words) {
    m_installation.Copy(UNRESOLVED_PLUGIN, Installation::kIspPlugin);
    const Json document = m_installation.Doctor();
    EXPECT_THAT(Installation::Bad(document), ElementsAre("plugin-missing-symbol"));
    EXPECT_THAT(Installation::Named(document, "plugin-missing-symbol")[0]["message"],
                HasSubstr("needed_function"));
}

TEST_F(DoctorPlugin, Write_access_of_others_is_a_warning) {
    fs::permissions(PluginPath(), fs::perms(0757));
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("file-writable-by-others"));
    EXPECT_EQ(m_installation.status, 3);
    fs::permissions(PluginPath(), fs::perms(0755));
    fs::permissions(m_installation.folder.Path("PlugIn"), fs::perms(0757));
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()),
                ElementsAre("directory-writable-by-others"));
    fs::permissions(m_installation.folder.Path("PlugIn"), fs::perms(01757));
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), IsEmpty());
}

/// The finding about the plug-in's own file; its group or its owner.
TEST_F(DoctorPlugin, Write_access_of_group_and_foreign_owner_are_remarks) {
    fs::permissions(PluginPath(), fs::perms(0775));
    const bool isRoot = ::geteuid() == 0;
    if (isRoot) { // whose group and files are everybody's
        ASSERT_EQ(::chown(PluginPath().c_str(), 1, 1), 0);
    }
    const Json document = m_installation.Doctor();
    const auto about = [&](const char *name) {
        std::vector<Json> found;
        for (const Json &finding : Installation::Named(document, name)) {
            if (finding["file"] == PluginPath()) {
                found.push_back(finding["details"]);
            }
        }
        return found;
    };
    const std::string group = std::to_string(isRoot ? 1 : ::getegid());
    EXPECT_THAT(about("writable-by-group"), ElementsAre(Json::array({group})));
    EXPECT_THAT(about("owned-by-another-user"), SizeIs(isRoot ? 1 : 0));
    EXPECT_EQ(m_installation.status, 0);
}

TEST_F(DoctorPlugin, Link_into_writable_directory_is_a_warning) {
    const std::string shared = m_installation.folder.MakeFolder("shared");
    fs::permissions(shared, fs::perms(0757));
    m_installation.Copy(RECORDING_ISP, "shared/plug-in");
    m_installation.Remove(Installation::kIspPlugin);
    fs::create_symlink("../shared/plug-in", PluginPath());
    const Json document = m_installation.Doctor();
    EXPECT_THAT(Installation::Bad(document), ElementsAre("link-into-writable-directory"));
    EXPECT_EQ(Installation::Named(document, "link-into-writable-directory")[0]["file"], shared);
}

TEST_F(DoctorPlugin, Missing_library_gives_status_1) {
    m_installation.Remove("libScalerIsp.so");
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("library-missing"));
    EXPECT_EQ(m_installation.status, 1);
}

TEST_F(DoctorPlugin, Library_of_another_kind_is_reported) {
    m_installation.Copy(RECORDING_ISP, "libScalerIsp.so");
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("library-not-loadable"));
    m_installation.folder.Write("libScalerIsp.so", "rubbish");
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("library-wrong-type"));
    m_installation.Copy(ENDING_LIBRARY, "libScalerIsp.so");
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("library-ends-process"));
    m_installation.Remove("libScalerIsp.so");
    ASSERT_EQ(::mkfifo(m_installation.Library().c_str(), 0600), 0);
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("library-not-a-file"));
}

TEST_F(DoctorPlugin, Text_shows_class_and_remedy) {
    m_installation.Remove("PlugIn");
    const ConsoleResult result = RunConsole({"doctor", "--lib", m_installation.Library()});
    EXPECT_EQ(result.status, 5);
    EXPECT_THAT(result.out, HasSubstr("isp-plugin\n  error    there is no ISP plug-in:"));
    EXPECT_THAT(result.out, HasSubstr(PluginPath()));
    EXPECT_THAT(result.out, HasSubstr("\n           remedy: copy the plug-in of your scaler"));
    EXPECT_THAT(result.out, HasSubstr("1 errors, 0 warnings, "));
    EXPECT_EQ(result.err, "");
}

TEST_F(DoctorPlugin, Usage_error_gives_status_2) {
    EXPECT_EQ(RunConsole({"doctor", "--lib", "x", "--virtual"}).status, 2);
    EXPECT_EQ(RunConsole({"doctor", "x"}).status, 2);
    EXPECT_EQ(RunConsole({"doctor-probe", "isp", "x", "y"}).status, 2);
    EXPECT_THAT(RunConsole({"--help"}).out, Not(HasSubstr("doctor-probe")));
}

} // namespace
