// What check-plugin says about good and broken plug-ins: the real program on real plug-ins.

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/resource.h>
#include <sys/stat.h>

#include "ConsoleProcess.h"
#include "scaler_isp/abi/CommandSetting.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::json;

/// The document of `check-plugin --json --call FILE`.
Json Checked(const std::string &file) {
    const ConsoleResult result = RunConsole({"check-plugin", "--json", "--call", file});
    Json document = Json::parse(result.out);
    EXPECT_EQ(document["status"], result.status);
    EXPECT_EQ(result.err, "");
    return document;
}

/// The names of the findings of these classes. What is not good has a remedy.
std::vector<std::string> Named(const Json &document, const std::vector<std::string> &classes) {
    std::vector<std::string> names;
    for (const Json &finding : document["findings"]) {
        const std::string severity = finding["class"];
        if (std::find(classes.begin(), classes.end(), severity) != classes.end()) {
            names.push_back(finding["name"]);
            EXPECT_TRUE(severity == "ok" || finding["remedy"] != "") << finding;
        }
    }
    return names;
}

std::vector<std::string> Bad(const Json &document) {
    return Named(document, {"warning", "error"});
}

struct FaultRow {
    const char *fault;
    const char *finding;
    int status;
    const char *words; ///< in its message
};

/// Expects that a fault is found, and nothing else.
void ExpectFound(const char *plugin, const FaultRow &row) {
    SCOPED_TRACE(row.fault);
    const EnvGuard guard("BROKEN_PLUGIN", row.fault);
    const Json document = Checked(plugin);
    const auto bad = Bad(document);
    EXPECT_THAT(bad, Contains(row.finding)) << document.dump(1);
    EXPECT_THAT(bad, testing::Each(row.finding));
    EXPECT_EQ(document["status"], row.status);
    EXPECT_THAT(document["findings"].dump(), HasSubstr(row.words));
}

TEST(CheckPlugin, Isp_plugin_without_fault_passes) {
    const Json document = Checked(BROKEN_ISP);
    EXPECT_THAT(Bad(document), IsEmpty()) << document.dump(1);
    EXPECT_EQ(document["status"], 0);
    EXPECT_EQ(document["kind"], "isp");
    EXPECT_EQ(document["verdict"], "passed");
    EXPECT_THAT(Named(document, {"remark"}), testing::Each("optional-function-missing"));
}

TEST(CheckPlugin, Sign_plugin_without_fault_passes) {
    const Json document = Checked(BROKEN_SIGN);
    EXPECT_THAT(Bad(document), IsEmpty()) << document.dump(1);
    EXPECT_EQ(document["kind"], "sign");
    EXPECT_THAT(Named(document, {"ok"}), Contains("own-signature-verified"));
}

TEST(CheckPlugin, Function_that_ends_process_is_named) {
    const FaultRow rows[] = {
#if !defined(__SANITIZE_ADDRESS__) // which turns the signal into an exit status
        {"crash", "call-crashes", 7, "IspFlash with an empty bank map ends the process (SIGSEGV)"},
        {"abort", "call-crashes", 7, "(SIGABRT)"},
        {"crash-at-unload", "call-crashes", 7, "unloading the plug-in"},
        {"null-callback", "call-crashes", 7, "without callbacks"},
#endif
        {"exit", "call-exits", 7, "(exit status 3)"},
        {"throw", "call-throws", 1, "the bus is not there"},
        {"throw-number", "call-throws", 1, "not a std::exception"},
    };
    for (const FaultRow &row : rows) {
        if (std::string(row.fault) == "crash-at-unload") {
            const EnvGuard guard("BROKEN_PLUGIN", row.fault);
            // The first process that loads it only looks the functions up.
            const Json document = Checked(BROKEN_ISP);
            EXPECT_THAT(Bad(document), ElementsAre("plugin-ends-process"));
            EXPECT_EQ(document["status"], 7);
            continue;
        }
        ExpectFound(BROKEN_ISP, row);
    }
}

TEST(CheckPlugin, Function_that_ends_its_thread_is_named) {
    const EnvGuard guard("BROKEN_PLUGIN", "end-thread");
    const Json document = Checked(BROKEN_ISP);
    EXPECT_EQ(document["status"], 7) << document.dump(1);
    EXPECT_THAT(document["findings"].dump(), HasSubstr("IspFlash with an empty bank map ends"));
}

TEST(CheckPlugin, Function_that_blocks_gets_20_seconds) {
    ExpectFound(BROKEN_ISP, {"block", "call-blocks", 1, "did not return within 20 seconds"});
}

TEST(CheckPlugin, Report_of_isp_plugin_is_examined) {
    const FaultRow rows[] = {
        {"progress-101", "progress-out-of-range", 1, "a progress of 101 percent"},
        {"progress-negative", "progress-out-of-range", 1, "a progress of -1 percent"},
        {"progress-falls", "progress-backwards", 1, "from 60 to 40 percent"},
        {"escape", "escape-sequence", 3, "\\\\x1B[31mred"},
        {"escape-c1", "escape-sequence", 3, "{9B}"},
        {"escape-printed", "escape-sequence", 3, "\\\\x1B[2J"},
        {"no-text", "message-not-text", 3, "110000"},
        {"first-surrogate", "message-not-text", 3, "800}"},
        {"last-surrogate", "message-not-text", 3, "DFFF"},
        {"null-text", "message-not-text", 3, "a null pointer"},
        {"change", "record-changed", 1, "at offset 2092"},
        {"library-code", "call-returns-library-code", 3, "0x4003"},
        {"long-key", "key-too-long", 1, "more than 1220 bytes"},
        {"no-key", "key-empty", 3, "anybody can sign for a key of zeros"},
    };
    for (const FaultRow &row : rows) {
        ExpectFound(BROKEN_ISP, row);
    }
}

TEST(CheckPlugin, What_a_call_leaves_behind_is_found) {
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // their heap does not say
    ExpectFound(BROKEN_ISP, {"leak", "memory-left", 3, "IspFlash"});
#endif
    ExpectFound(BROKEN_ISP, {"leak-file", "descriptors-left", 3, "leaves 1 files open"});
    const EnvGuard guard("BROKEN_PLUGIN", "cache");
    EXPECT_THAT(Bad(Checked(BROKEN_ISP)), IsEmpty());
}

TEST(CheckPlugin, Slow_function_is_not_repeated) {
    const EnvGuard guard("BROKEN_PLUGIN", "slow");
    const Json document = Checked(BROKEN_ISP);
    EXPECT_EQ(document["status"], 0);
    EXPECT_THAT(Named(document, {"warning", "error"}), IsEmpty());
    EXPECT_THAT(document["findings"].dump(), HasSubstr("not-repeated"));
}

TEST(CheckPlugin, Empty_success_is_a_remark) {
    const std::pair<const char *, const char *> rows[] = {{"firmware-ignored", "firmware-not-read"},
                                                          {"no-dump", "dump-missing"}};
    for (const auto &[fault, finding] : rows) {
        SCOPED_TRACE(fault);
        const EnvGuard guard("BROKEN_PLUGIN", fault);
        const Json document = Checked(BROKEN_ISP);
        EXPECT_THAT(Named(document, {"remark"}), Contains(finding));
        EXPECT_EQ(document["status"], 0);
    }
}

TEST(CheckPlugin, Wrong_signature_must_be_rejected) {
    const FaultRow rows[] = {
        {"accepts-all", "wrong-signature-accepted", 1, "a signature that nobody has made"},
        {"accepts-flash-key", "wrong-signature-accepted", 1, "--dsmode 4"},
        {"ignores-firmware", "wrong-signature-accepted", 1, "changed after signing"},
        {"wrong-own", "own-signature-rejected", 3, "--dsmode 2"},
        {"no-signature-file", "signature-missing", 1, "no signature file"},
        {"changes-record", "record-changed", 1, "at offset 16"},
#if !defined(__SANITIZE_ADDRESS__)
        {"crash", "call-crashes", 7, "(SIGABRT)"},
#endif
    };
    for (const FaultRow &row : rows) {
        ExpectFound(BROKEN_SIGN, row);
    }
}

// The function that makes a signature is not to blame if another one accepts it for anything.
TEST(CheckPlugin, Accepted_signature_is_fault_of_verifying_function) {
    for (const char *fault : {"accepts-all", "ignores-firmware"}) {
        SCOPED_TRACE(fault);
        const EnvGuard guard("BROKEN_PLUGIN", fault);
        const Json document = Checked(BROKEN_SIGN);
        for (const Json &finding : document["findings"]) {
            if (finding["name"] == "wrong-signature-accepted") {
                EXPECT_THAT(std::string(finding["message"]), StartsWith("VerifySignatureExport"));
            }
        }
        EXPECT_THAT(document["findings"].dump(), HasSubstr("changed after signing"));
        EXPECT_THAT(Named(document, {"ok"}), Not(Contains("own-signature-verified")));
    }
}

TEST(CheckPlugin, Missing_function_gives_status_5) {
    const Json document = Checked(WITHOUT_ISP_FLASH);
    EXPECT_THAT(Bad(document), ElementsAre("function-missing"));
    EXPECT_EQ(document["status"], 5);
}

TEST(CheckPlugin, Library_without_plugin_functions_gives_status_5) {
    const Json document = Checked(REAL_LIBRARY);
    EXPECT_THAT(Bad(document), ElementsAre("not-a-plugin"));
    EXPECT_EQ(document["status"], 5);
    EXPECT_TRUE(document["kind"].is_null());
}

TEST(CheckPlugin, Plugin_that_ends_while_loading_gives_status_7) {
    const EnvGuard guard("ENDING_PLUGIN", "exit");
    const Json document = Checked(ENDING_PLUGIN);
    EXPECT_THAT(Bad(document), ElementsAre("plugin-ends-process"));
    EXPECT_EQ(document["status"], 7);
}

class BadFile : public testing::Test {
  protected:
    /// Expects one line that names file and remedy.
    void ExpectLine(const std::string &file, int status, const std::string &words) {
        SCOPED_TRACE(words);
        const ConsoleResult result = RunConsole({"check-plugin", "--call", file});
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err, StartsWith("ispctl: "));
        EXPECT_THAT(result.err, HasSubstr(file));
        EXPECT_THAT(result.err, HasSubstr(words));
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }

    TempFolder m_folder;
};

TEST_F(BadFile, Is_refused_with_one_line) {
    ExpectLine(m_folder.Path("missing"), 8, "does not exist");
    ExpectLine(m_folder.MakeFolder("directory"), 8, "is a directory");
    ASSERT_EQ(::mkfifo(m_folder.Path("fifo").c_str(), 0600), 0);
    ExpectLine(m_folder.Path("fifo"), 8, "is a FIFO");
    ExpectLine("/dev/zero", 8, "is a device");
    ExpectLine(m_folder.Write("empty", ""), 5, "an empty file");
    ExpectLine(m_folder.Write("text", "hello\n"), 5, "not a shared library");
    std::string bytes = m_folder.Read(fs::relative(BROKEN_ISP, m_folder.Path()).string());
    bytes[18] = bytes[18] == char(183) ? 62 : char(183);
#if !defined(__APPLE__)
    ExpectLine(m_folder.Write("other", bytes), 5, "is built for");
#endif
}

// The loader maps a file that ends early, and the process ends at the first page that is not there.
#if !defined(__APPLE__)
TEST_F(BadFile, Of_a_library_that_ends_early_is_named) {
    const std::string bytes = m_folder.Read(fs::relative(BROKEN_ISP, m_folder.Path()).string());
    for (const std::size_t size : {bytes.size() / 2, bytes.size() / 8, std::size_t{64}}) {
        ExpectLine(m_folder.Write("half", bytes.substr(0, size)), 5,
                   "is a truncated ELF file (" + std::to_string(size) + " of at least ");
    }
}
#endif

TEST(CheckPlugin, Text_ends_with_verdict) {
    const ConsoleResult result = RunConsole({"check-plugin", BROKEN_ISP});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.out, HasSubstr("IspFlash (required) is present"));
    EXPECT_THAT(result.out, HasSubstr("repeat with --call"));
    EXPECT_THAT(result.out, EndsWith("libIsp.dylib: passed (0 errors, 0 warnings, 6 remarks)\n"));
    EXPECT_EQ(result.err, "");
}

TEST(CheckPlugin, Help_shows_examples_before_options) {
    const std::string help = RunConsole({"check-plugin", "--help"}).out;
    EXPECT_LT(help.find("Examples:"), help.find("Options:"));
    EXPECT_THAT(RunConsole({"--help"}).out, Not(HasSubstr("check-plugin-call")));
    EXPECT_EQ(RunConsole({"check-plugin"}).status, 2);
    EXPECT_EQ(RunConsole({"check-plugin-call", "a", "b", "0", "c"}).status, 2);
}

TEST(CheckPlugin, Temporary_directory_is_needed_and_left_empty) {
    const TempFolder folder;
    {
        const EnvGuard guard("TMPDIR", folder.Path().c_str());
        EXPECT_EQ(Checked(BROKEN_ISP)["status"], 0);
    }
    EXPECT_TRUE(fs::is_empty(folder.Path()));
    const EnvGuard guard("TMPDIR", folder.Path("missing").c_str());
    const ConsoleResult result = RunConsole({"check-plugin", "--call", BROKEN_ISP});
    EXPECT_EQ(result.status, 8);
    EXPECT_THAT(result.err, HasSubstr("TMPDIR"));
}

TEST(CheckPlugin, Temporary_directory_must_fit_into_a_record) {
    constexpr std::size_t kFits = 226;
    const TempFolder folder;
    std::string path = folder.Path() + std::string(kFits - folder.Path().size(), 'd');
    fs::create_directory(path);
    {
        const EnvGuard guard("TMPDIR", path.c_str());
        EXPECT_EQ(Checked(BROKEN_ISP)["status"], 0);
    }
    path += "d";
    fs::create_directory(path);
    const EnvGuard guard("TMPDIR", path.c_str());
    const ConsoleResult result = RunConsole({"check-plugin", "--call", BROKEN_ISP});
    EXPECT_EQ(result.status, 8);
    EXPECT_THAT(result.err, HasSubstr("the path in TMPDIR is too long"));
    EXPECT_TRUE(fs::is_empty(path));
}

TEST(CheckPlugin, Temporary_directory_without_space_is_left_empty) {
    const TempFolder folder;
    const EnvGuard guard("TMPDIR", folder.Path().c_str());
    const rlimit before = [] {
        rlimit limit{};
        ::getrlimit(RLIMIT_FSIZE, &limit);
        return limit;
    }();
    const auto ignored = ::signal(SIGXFSZ, SIG_IGN);
    rlimit small = before;
    small.rlim_cur = SCALER_ISP_BANK_BYTES / 2; // less than a firmware has
    ::setrlimit(RLIMIT_FSIZE, &small);
    const ConsoleResult result = RunConsole({"check-plugin", "--call", BROKEN_ISP});
    ::setrlimit(RLIMIT_FSIZE, &before);
    ::signal(SIGXFSZ, ignored);
    EXPECT_EQ(result.status, 8);
    EXPECT_THAT(result.err, HasSubstr("firmware.bin"));
    EXPECT_TRUE(fs::is_empty(folder.Path()));
}

#if defined(VIRTUAL_ISP)
TEST(CheckPlugin, Virtual_scaler_passes) {
    const Json isp = Checked(VIRTUAL_ISP);
    EXPECT_THAT(Bad(isp), IsEmpty()) << isp.dump(1);
    EXPECT_EQ(isp["status"], 0);
#if defined(VIRTUAL_SIGN)
    const Json sign = Checked(VIRTUAL_SIGN);
    EXPECT_THAT(Bad(sign), IsEmpty()) << sign.dump(1);
    EXPECT_THAT(Named(sign, {"ok"}), Contains("own-signature-verified"));
#endif
}
#endif

} // namespace
