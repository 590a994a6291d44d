// What doctor says about settings files, searches and the locale, and where paths look.

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "Installation.h"
#include "support/EnvGuard.h"
#include "support/TestLocale.h"

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using Json = nlohmann::json;

class DoctorSettings : public testing::Test {
  protected:
    std::vector<std::string> BadWith(const std::string &name, const std::string &bytes) {
        m_installation.folder.Write(name, bytes);
        return Installation::Bad(m_installation.Doctor());
    }

    Installation m_installation;
    EnvGuard m_locale{"LC_ALL", "C.UTF-8"};
};

struct LineRow {
    const char *description;
    std::string bytes;
    std::vector<std::string> bad;
    const char *message;
};

TEST_F(DoctorSettings, Lines_that_reader_never_sees_are_named) {
    const LineRow rows[] = {
        {"good", "[A]\nk=1\n\n[B]\nk=2", {}, ""},
        {"long line",
         "[A]\nk=" + std::string(1022, 'x') + "\nl=2\n",
         {"settings-long-line"},
         "line 2: the line has 1024 characters"},
        {"longest line", "[A]\nk=" + std::string(1021, 'x') + "\nl=2\n", {}, ""},
        {"carriage returns",
         "[A]\r\nk=1\r\n",
         {"settings-carriage-return"},
         "line 1: the line ends in a carriage return (as 2 lines do)"},
        {"mark", "\xEF\xBB\xBF[A]\nk=1\n", {"settings-byte-order-mark"}, ""},
        {"outside", "k=1\n[A]\n", {"settings-key-outside-section"}, "line 1: the key k"},
        {"after end",
         "[A]\nk=1\n\nl=2\n",
         {"settings-key-after-end"},
         "line 4: the key is never "
         "read, because line 3"},
        {"second section",
         "[A]\nk=1\n\n[A]\nl=2\n",
         {"settings-section-repeated"},
         "line 4: the section [A]"},
        {"second key", "[A]\nk=1\nk=2\n", {"settings-key-repeated"}, "line 3: the key k"},
        {"spaces", "[A]\nk = 1\n", {"settings-key-spaces"}, "line 2: a space follows the key k"},
        {"tab", "[A]\nk\t=1\n", {"settings-tab"}, "line 2"},
        {"tab after section",
         "[A]\t\nk=1\n",
         {"settings-tab", "settings-key-outside-section"},
         "line 1"},
        {"nul", std::string("[A]\nk=1\0x\n", 10), {"settings-nul"}, "line 2"},
        {"encoding", "[A]\nk=\xFC\n", {"settings-encoding"}, "line 2: not text"},
        {"binary", std::string(300, '\0'), {"settings-nul"}, "line 1"},
        {"empty", "", {}, ""},
    };
    for (const LineRow &row : rows) {
        SCOPED_TRACE(row.description);
        EXPECT_EQ(BadWith("IspSetting.ini", row.bytes), row.bad);
        EXPECT_EQ(m_installation.status, row.bad.empty() ? 0 : 3);
        if (!row.bad.empty()) {
            const Json document = m_installation.Doctor();
            EXPECT_THAT(Installation::Named(document, row.bad[0])[0]["message"],
                        HasSubstr(row.message));
        }
    }
}

TEST_F(DoctorSettings, First_lines_are_named_and_others_are_counted) {
    std::string bytes = "[A]\nk=1\n";
    for (int i = 0; i < 33; ++i) {
        bytes += "k=2\n";
    }
    m_installation.folder.Write("IspSetting.ini", bytes);
    const Json document = m_installation.Doctor();
    EXPECT_THAT(Installation::Named(document, "settings-key-repeated"), SizeIs(30));
    const auto more = Installation::Named(document, "settings-more");
    ASSERT_THAT(more, SizeIs(1));
    EXPECT_EQ(more[0]["details"], Json::array({"3"}));
}

TEST_F(DoctorSettings, First_candidates_are_listed_and_others_are_counted) {
    for (int i = 0; i < 52; ++i) {
        m_installation.folder.Write(std::to_string(i) + ".bin", "x");
    }
    const Json document = m_installation.Doctor();
    EXPECT_THAT(Installation::Named(document, "candidate-rejected"), SizeIs(3 * 50));
    const auto more = Installation::Named(document, "candidates-more");
    ASSERT_THAT(more, SizeIs(1));
    EXPECT_EQ(more[0]["details"], Json::array({"2"}));
}

TEST_F(DoctorSettings, Characters_count_and_not_bytes) {
    std::string line = "[A]\nk=";
    for (int i = 0; i < 1000; ++i) {
        line += "ü";
    }
    EXPECT_THAT(BadWith("IspSetting.ini", line), IsEmpty());
    const EnvGuard ascii("LC_ALL", "C");
    EXPECT_THAT(BadWith("IspSetting.ini", line), ElementsAre("settings-long-line"));
}

TEST_F(DoctorSettings, Endless_and_huge_files_are_never_read) {
    const std::string path = m_installation.folder.Path("IspSetting.ini");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("settings-not-a-file"));
    EXPECT_EQ(m_installation.status, 1);
    fs::remove(path);
    fs::create_symlink("/dev/zero", path);
    const Json document = m_installation.Doctor();
    EXPECT_THAT(Installation::Bad(document), Contains("settings-not-a-file"));
    EXPECT_THAT(Installation::Named(document, "search-skipped"), SizeIs(1));
    fs::remove(path);
    m_installation.folder.Write("IspSetting.ini", "");
    fs::resize_file(path, 64ULL << 30U);
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("settings-too-large"));
    fs::remove(path);
    fs::create_directory(path);
    EXPECT_THAT(Installation::Bad(m_installation.Doctor()), ElementsAre("settings-not-a-file"));
}

TEST_F(DoctorSettings, User_defined_keys_are_checked) {
    const std::string file = "IspUserDefined.txt";
    EXPECT_THAT(BadWith(file, "[UserDefinedInfo]\nModelName=M27\nRecordSIMode=0\n"), IsEmpty());
    EXPECT_THAT(BadWith(file, "[UserDefinedInfo]\nModel=M27\n"),
                ElementsAre("user-defined-unknown-key"));
    EXPECT_THAT(BadWith(file, "[UserDefinedInfo]\nIgnoreSIName=yes\n"),
                ElementsAre("user-defined-not-a-number"));
    EXPECT_THAT(BadWith(file, "[UserDefined]\nModelName=M27\n"),
                ElementsAre("user-defined-section-missing"));
    for (const char *number : {"0", "-1", "+12", "0x1F", "-0X1f"}) {
        EXPECT_THAT(BadWith(file, std::string("[UserDefinedInfo]\nIgnoreSIName=") + number + "\n"),
                    IsEmpty())
            << number;
    }
    for (const char *number : {"0x", "-", "1F", "0x1G", "1.0"}) {
        EXPECT_THAT(BadWith(file, std::string("[UserDefinedInfo]\nIgnoreSIName=") + number + "\n"),
                    ElementsAre("user-defined-not-a-number"))
            << number;
    }
}

/// "auto: reason" of each candidate that is not accepted, "auto" of each that is.
std::vector<std::string> Candidates(const Json &document, const std::string &name) {
    std::vector<std::string> found;
    for (const Json &finding : document["findings"]) {
        const bool candidate =
            finding["name"] == "candidate-accepted" || finding["name"] == "candidate-rejected";
        if (candidate && std::string(finding["file"]).ends_with("/" + name)) {
            const Json &details = finding["details"];
            found.push_back(std::string(details[0]) +
                            (details.size() > 1 ? ": " + std::string(details[1]) : ""));
        }
    }
    return found;
}

TEST_F(DoctorSettings, Only_firmware_file_is_found_by_auto) {
    m_installation.folder.Write("fw.bin", "x");
    const Json document = m_installation.Doctor();
    const auto found = Installation::Named(document, "search-finds");
    ASSERT_THAT(found, SizeIs(1)) << document;
    EXPECT_EQ(found[0]["details"], Json::array({"auto", "fw.bin"}));
    EXPECT_THAT(Candidates(document, "fw.bin"),
                ElementsAre("auto",
                            "prefix: IspSetting.ini has no prefix: key strFwPrefix in the section "
                            "[ISP_Fw]",
                            "userdefined: IspUserDefined.txt does not say what to look for"));
    EXPECT_EQ(m_installation.status, 0);
}

TEST_F(DoctorSettings, Each_candidate_has_its_reasons) {
    m_installation.folder.Write("IspSetting.ini", "[ISP_Fw]\nstrFwPrefix=FW_\n");
    m_installation.folder.Write("IspUserDefined.txt",
                                "[UserDefinedInfo]\nModelName=M27\nVersion=2.13\n"
                                "CapabilityInfo=V\nFindBinUseVerMode=1\n");
    m_installation.folder.Write("FW_M27_V2.13.bin", "x");
    m_installation.folder.Write("M27_V1.0.bin", "x");
    m_installation.folder.Write("other.bin", "x");
    const Json document = m_installation.Doctor();
    const std::string several = "auto: it is one of 3 .bin files; auto accepts only a single one";
    const std::string prefix = "prefix: the name does not begin with \"FW_\" (strFwPrefix)";
    EXPECT_THAT(Candidates(document, "FW_M27_V2.13.bin"),
                ElementsAre(several, "prefix", "userdefined"));
    EXPECT_THAT(Candidates(document, "M27_V1.0.bin"),
                ElementsAre(several, prefix,
                            "userdefined: the name does not contain the version \"2.13\" after "
                            "\"V\""));
    EXPECT_THAT(
        Candidates(document, "other.bin"),
        ElementsAre(several, prefix, "userdefined: the name does not contain \"M27\" (ModelName)"));
    const auto refused = Installation::Named(document, "search-finds-nothing");
    ASSERT_THAT(refused, SizeIs(1));
    EXPECT_EQ(refused[0]["details"], Json::array({"auto", "find more than one bin file!"}));
}

TEST_F(DoctorSettings, Candidate_that_would_block_is_never_opened) {
    ASSERT_EQ(::mkfifo(m_installation.folder.Path("fw.bin").c_str(), 0600), 0);
    const Json document = m_installation.Doctor();
    EXPECT_THAT(Installation::Bad(document), ElementsAre("candidate-not-a-file"));
    EXPECT_THAT(Installation::Named(document, "search-finds"), SizeIs(1));
}

TEST_F(DoctorSettings, Hostile_names_never_act_on_terminal) {
    m_installation.folder.Write("a\033[2J\n\xFF.bin", "x");
    const Json document = m_installation.Doctor();
    const auto found = Installation::Named(document, "candidate-accepted");
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_THAT(found[0]["file"], HasSubstr("a\033[2J\n\\xFF.bin"));
    EXPECT_THAT(found[0]["escaped"], Contains("file"));
    const ConsoleResult text = RunConsole({"doctor", "--lib", m_installation.Library()});
    EXPECT_THAT(text.out, Not(HasSubstr("\033")));
    // A directory with a long name would start a line of its own.
    EXPECT_THAT(text.out, HasSubstr("--searchfw auto accepts"));
    EXPECT_THAT(text.out, HasSubstr(m_installation.folder.Path("a\\x1B[2J\\x0A\\xFF.bin\n")));
}

TEST_F(DoctorSettings, Locale_is_explained) {
    const std::pair<const char *, const char *> rows[] = {
        {"C.UTF-8", "locale-utf8"}, {"C", "locale-ascii"}, {"xx_YY.none", "locale-missing"}};
    for (const auto &[locale, name] : rows) {
        SCOPED_TRACE(locale);
        const EnvGuard guard("LC_ALL", locale);
        const auto found = Installation::Named(m_installation.Doctor(), name);
        ASSERT_THAT(found, SizeIs(1));
        EXPECT_THAT(found[0]["message"], HasSubstr("LC_ALL=" + std::string(locale)));
    }
}

TEST_F(DoctorSettings, Encoding_other_than_UTF8_is_named_with_what_it_means) {
    if (!HasTestLocale("de_DE.ISO-8859-1")) {
        GTEST_SKIP() << "the locale cannot be made here";
    }
    const EnvironmentLocaleGuard guard("de_DE.ISO-8859-1");
    const EnvGuard leaks("ASAN_OPTIONS", "detect_leaks=0"); // glibc never frees its copy of LOCPATH
    const auto found = Installation::Named(m_installation.Doctor(), "locale-other");
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0]["details"], Json::array({"ISO-8859-1"}));
    // Every byte is a character there: the name is read as another one.
    const std::string directory = m_installation.folder.MakeFolder("\xC3\xBC");
    fs::create_symlink(REAL_LIBRARY, directory + "/libScalerIsp.so");
    const ConsoleResult result =
        RunConsole({"doctor", "--json", "--lib", directory + "/libScalerIsp.so"});
    EXPECT_THAT(Installation::Named(Json::parse(result.out), "directory-misread"), SizeIs(1));
}

TEST_F(DoctorSettings, Variable_that_names_locale_is_named) {
    const EnvGuard all("LC_ALL", "");
    const EnvGuard type("LC_CTYPE", "");
    {
        const EnvGuard lang("LANG", "C.UTF-8");
        EXPECT_EQ(Installation::Named(m_installation.Doctor(), "locale-utf8")[0]["details"],
                  Json::array({"LANG=C.UTF-8"}));
    }
    const EnvGuard lang("LANG", "");
    EXPECT_EQ(Installation::Named(m_installation.Doctor(), "locale-ascii")[0]["details"],
              Json::array({"no LC_ALL, LC_CTYPE or LANG"}));
}

TEST_F(DoctorSettings, Directory_that_is_not_text_is_a_warning) {
    const std::string directory = m_installation.folder.MakeFolder("d\xFF");
    const std::string library = directory + "/libScalerIsp.so";
    fs::create_symlink(REAL_LIBRARY, library);
    fs::create_directory(directory + "/PlugIn");
    fs::copy_file(RECORDING_ISP, directory + "/PlugIn/libIsp.dylib");
    const ConsoleResult result = RunConsole({"doctor", "--json", "--lib", library});
    EXPECT_EQ(result.status, 3);
    const Json document = Json::parse(result.out);
    EXPECT_THAT(Installation::Bad(document), ElementsAre("directory-not-text"));
    EXPECT_THAT(Installation::Named(document, "plugin-loads"), SizeIs(1));
}

TEST_F(DoctorSettings, Paths_name_every_place) {
    const ConsoleResult json = RunConsole({"paths", "--json", "--lib", m_installation.Library()});
    EXPECT_EQ(json.status, 0);
    const std::pair<const char *, const char *> rows[] = {
        {"library", "libScalerIsp.so"},
        {"isp-plugin", Installation::kIspPlugin},
        {"sign-plugin", Installation::kSignPlugin},
        {"settings-file", "IspSetting.ini"},
        {"user-defined-file", "IspUserDefined.txt"}};
    const Json document = Json::parse(json.out);
    for (const auto &[name, file] : rows) {
        SCOPED_TRACE(name);
        const Json &paths = document["paths"];
        const auto row = std::find_if(paths.begin(), paths.end(), [wanted = name](const Json &r) {
            return r["name"] == wanted;
        });
        ASSERT_NE(row, paths.end());
        EXPECT_EQ((*row)["path"], m_installation.folder.Path(file));
        EXPECT_EQ((*row)["exists"], m_installation.folder.Exists(file));
    }
    const ConsoleResult text = RunConsole({"paths", "--lib", "/no/lib"});
    EXPECT_EQ(text.status, 0);
    EXPECT_THAT(text.out, HasSubstr("isp-plugin               no   /no/PlugIn/libIsp.dylib\n"));
}

} // namespace
