// What `ispctl explain` says would be called and passed is what plug-ins then get, for random
// lines.

#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

#include "CommandLine.h"
#include "ConsoleProcess.h"
#include "ScalerLibrary.h"
#include "scaler_isp/args/CommandFacts.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

constexpr int kLines = 120;

/// Options with the values that they may get; "@" stands for a file of the folder.
const std::pair<const char *, Words> kOptions[] = {
    {"--comm", {"1", "6", "19", "20", "x"}},
    {"--slave", {"0", "0x50", "254", "300"}},
    {"--fw1", {"@small.bin", "@three banks.bin", "@missing.bin"}},
    {"--bank1", {"8", "0x20", "255", "0"}},
    {"--bank", {"4", "256"}},
    {"--newboot", {}},
    {"--factory", {}},
    {"--boot", {"@small.bin", "@missing.bin"}},
    {"--hw", {}},
    {"--dsmode", {"1", "2", "3", "4"}},
    {"--reg", {}},
    {"--fwbin", {}},
    {"--userdefined", {"2", "9"}},
    {"--dumplen", {"65536", "0"}},
    {"--dumpaddr", {"0x10000"}},
    {"--dumpname", {"dump", "dump.bin"}},
    {"--flagaddr", {"0x1000"}},
    {"--flagdata", {"1,2,0xFF", "1"}},
    {"--writedata", {"0x50,1,2", "0x6E,0x51,0x82,1,2"}},
    {"--ddccicmd", {}},
    {"--infotype", {"hpscaler", "nothing"}},
    {"--edpmode", {"isp", "readver"}},
    {"--mergefwgen", {"gen1"}},
    {"--write", {"1.2.3"}},
    {"--sendextracmd", {"both"}},
    {"--settingfile", {"@settings.ini", "settings.ini"}},
    {"--comparever", {}},
    {"--ispchannel", {}},
};

class ExplainedCall : public testing::Test {
  protected:
    ExplainedCall() {
        const fs::path library = REAL_LIBRARY;
        m_library = m_folder.Path(library.filename().string());
        fs::copy_file(library, m_library);
        m_folder.MakeFolder("PlugIn");
        fs::copy_file(DUMPING_PLUGIN, m_folder.Path("PlugIn/libIsp.dylib"));
        fs::copy_file(DUMPING_PLUGIN, m_folder.Path("libSignVerify.dylib"));
        m_folder.Write("small.bin", "x");
        m_folder.Write("three banks.bin", std::string(3 * 65536, 'x'));
        m_folder.Write("key", "x");
    }

    Words RandomLine(std::mt19937 &random) const {
        const auto chance = [&](unsigned percent) { return random() % 100 < percent; };
        const auto &action =
            ScalerIspFacts::kActions[random() % std::size(ScalerIspFacts::kActions)];
        // Most options are for programming.
        Words line{"--" + std::string(chance(20) ? "isp" : action.name)};
        if (chance(85)) {
            line.insert(line.end(), {"--fw", chance(50) ? Resolved("@small.bin")
                                                        : Resolved("@three banks.bin")});
        }
        if (chance(35)) {
            line.insert(line.end(), {"--sw", "--dsmode", chance(50) ? "3" : "4", "--signfile",
                                     Resolved("@key"), "--vkfile", Resolved("@key"), "--skfile",
                                     Resolved("@key"), "--nextvkfile", Resolved("@key")});
        }
        for (const auto &[option, values] : kOptions) {
            if (chance(12)) {
                line.emplace_back(option);
                if (!values.empty()) {
                    line.push_back(Resolved(values[random() % values.size()]));
                }
            }
        }
        return line;
    }
    std::string Resolved(const std::string &value) const {
        return value.starts_with("@") ? m_folder.Path(value.substr(1)) : value;
    }

    nlohmann::json Explain(const Words &line) const {
        Words all{"explain", "--json", "--lib", m_library, "--record", m_folder.Path("explained")};
        all.insert(all.end(), line.begin(), line.end());
        return nlohmann::json::parse(RunConsole(all).out);
    }

    /// Calls OperateScaler in a process of its own. RETURNS whether it returned 0.
    bool Call(const Words &line) const {
        const pid_t process = ::fork();
        if (process == 0) {
            ::alarm(60);
            std::freopen("/dev/null", "w", stdout);
            std::string error;
            const auto library = ispctl::ScalerLibrary::Open(m_library, error);
            const auto command = ispctl::BuildCommandLine(
                line, [&](const std::string &text) { return library->Split(text); });
            ::_exit(library->Run(command.line, nullptr, nullptr) == 0 ? 0 : 1);
        }
        int status = 0;
        ::waitpid(process, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    Words CallsOfPlugIns() const {
        Words calls;
        std::istringstream lines(m_folder.Exists("calls.txt") ? m_folder.Read("calls.txt") : "");
        for (std::string line; std::getline(lines, line);) {
            calls.push_back(line);
        }
        return calls;
    }
    void ExpectSameRecord(const char *dumped, const char *explained) const {
        if (m_folder.Exists(dumped)) {
            EXPECT_TRUE(m_folder.Read(dumped) == m_folder.Read(explained)) << dumped;
        }
    }
    void ForgetFiles() const {
        for (const char *file :
             {"calls.txt", "command.rec", "sign.rec", "explained", "explained.sign"}) {
            fs::remove(m_folder.Path(file));
        }
    }

    TempFolder m_folder;
    EnvGuard m_dumps{"DUMP_FOLDER", m_folder.Path()};
    std::string m_library;
};

Words FunctionsOf(const nlohmann::json &plan) {
    Words functions;
    for (const auto &step : plan) {
        if (!step["function"].is_null()) {
            functions.push_back(step["function"]);
        }
    }
    return functions;
}

bool PlansFailure(const nlohmann::json &plan) {
    return std::any_of(plan.begin(), plan.end(), [](const nlohmann::json &step) {
        return step["step"] == "call-nothing" && !step["results"].empty();
    });
}

TEST_F(ExplainedCall, Plan_and_records_are_what_plug_ins_get) {
    std::mt19937 random(20);
    int accepted = 0;
    int signatures = 0;
    for (int i = 0; i < kLines; ++i) {
        const Words line = RandomLine(random);
        SCOPED_TRACE(testing::PrintToString(line));
        ForgetFiles();
        const auto document = Explain(line);
        EXPECT_EQ(CallsOfPlugIns(), Words()) << "explain opens no plug-in";
        const bool succeeded = Call(line);
        EXPECT_EQ(CallsOfPlugIns(), FunctionsOf(document["plan"]));
        EXPECT_EQ(succeeded, document["accepted"] && !PlansFailure(document["plan"]));
        ExpectSameRecord("command.rec", "explained");
        ExpectSameRecord("sign.rec", "explained.sign");
        accepted += document["accepted"] ? 1 : 0;
        signatures += m_folder.Exists("sign.rec") ? 1 : 0;
    }
    EXPECT_GT(accepted, kLines / 3);
    EXPECT_GT(signatures, 5);
}

TEST_F(ExplainedCall, Boot_pass_comes_before_the_action) {
    const Words line{"--isp",      "--factory",
                     "--newboot",  "--sw",
                     "--dsmode",   "2",
                     "--keypair",  "0",
                     "--signfile", Resolved("@key"),
                     "--boot",     Resolved("@small.bin"),
                     "--fw",       Resolved("@three banks.bin")};
    const auto document = Explain(line);
    EXPECT_TRUE(Call(line));
    EXPECT_EQ(CallsOfPlugIns(), (Words{"SetUIFunction", "IspFlash", "IspFlash"}));
    // Both passes call the same function; the record of the last call is the action's.
    const auto &plan = document["plan"];
    EXPECT_EQ(plan[plan.size() - 4]["step"], "program-boot-firmware");
    EXPECT_EQ(plan[plan.size() - 3]["step"], "call-action");
    EXPECT_EQ(FunctionsOf(document["plan"]), CallsOfPlugIns());
    ExpectSameRecord("command.rec", "explained");
}

TEST_F(ExplainedCall, Key_from_flash_is_read_before_the_signature_check) {
    const Words line{
        "--isp",          "--sw",         "--dsmode",       "4",    "--signfile",
        Resolved("@key"), "--nextvkfile", Resolved("@key"), "--fw", Resolved("@small.bin")};
    const auto document = Explain(line);
    EXPECT_TRUE(Call(line));
    EXPECT_EQ(CallsOfPlugIns(),
              (Words{"SetUIFunction", "GetKeyFromFlash", "VerifySignatureExport", "IspFlash"}));
    EXPECT_EQ(FunctionsOf(document["plan"]), CallsOfPlugIns());
    ExpectSameRecord("sign.rec", "explained.sign");
}

} // namespace
