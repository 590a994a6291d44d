// Who ends a run: the library, which may return the code on this line, or the plug-in, which may
// return any. The real library with the recording plug-ins.

#include <filesystem>
#include <gmock/gmock.h>

#include "Installation.h"
#include "support/EnvGuard.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using Json = nlohmann::json;
using Words = std::vector<std::string>;

constexpr std::uintmax_t kBytesOf513Banks = 512 * 65536 + 1;

struct Row {
    const char *description;
    const char *answers; ///< of the plug-ins
    Words line;
    int code;
    int status;
    const char *source;
    const char *stage;
    const char *device = "unknown";
};

class ResultSource : public testing::Test {
  protected:
    Json ResultOf(const Words &line) {
        Words words{"run", "--json", "--lib", m_installation.Library(), "--allow", kAllowed};
        words.insert(words.end(), line.begin(), line.end());
        const ConsoleResult result = RunConsole(words);
        const auto begin = result.out.find("{\"event\":\"result\"");
        EXPECT_NE(begin, std::string::npos) << result.out << result.err;
        Json event = Json::parse(result.out.substr(begin));
        EXPECT_EQ(event["status"], result.status);
        return event;
    }
    Words Signed(Words action) const {
        action.insert(action.end(), {"--fw", m_firmware, "--sw", "--dsmode", "2", "--signfile",
                                     m_signature, "--keypair", "0"});
        return action;
    }
    std::string BootOf513Banks() const {
        std::string file = m_here.Write("boot.bin", "");
        fs::resize_file(file, kBytesOf513Banks);
        return file;
    }
    void Answer(const std::string &answers) const {
        m_here.Write("answers.txt", answers);
    }

    static constexpr const char *kAllowed = "action-always-fails,firmware-too-large";
    Installation m_installation;
    TempFolder m_here;
    EnvGuard m_locale{"LC_ALL", "C.UTF-8"};
    EnvGuard m_answers{"BLACKBOX_DIR", m_here.Path()};
    std::string m_firmware = m_here.Write("fw.bin", "firmware");
    std::string m_signature = m_here.Write("fw.sig", "signature");
    std::string m_key = m_here.Write("key.pem", "key");
};

TEST_F(ResultSource, Code_is_of_library_only_if_line_can_end_with_it) {
    const Words plain{"--isp", "--fw", m_firmware};
    const Words boot{"--isp",     "--fw",      m_firmware, "--sw",
                     "--factory", "--newboot", "--boot",   BootOf513Banks()};
    const Row rows[] = {
        {"wrong signature", "VerifySignatureExport returns 0\n", Signed({"--isp"}), 0x4003, 6,
         "library", "verify"},
        {"wrong signature of --verify", "VerifySignatureExport returns 0\n", Signed({"--verify"}),
         0x4003, 6, "library", "verify", "untouched"},
        {"nothing verified", "IspFlash returns 0x4003\n", plain, 0x4003, 1, "plug-in", "call"},
        {"signing failed",
         "SignFwExport returns 0\n",
         {"--sign", "--fw", m_firmware, "--sw", "--dsmode", "2", "--keypair", "0"},
         0x4002,
         1,
         "library",
         "call",
         "untouched"},
        {"nothing signed", "IspFlash returns 0x4002\n", plain, 0x4002, 1, "plug-in", "call"},
        {"boot firmware too large", "", boot, 0xDA0, 1, "library", "call"},
        {"no boot firmware", "IspFlash returns 0xDA0\n", plain, 0xDA0, 1, "plug-in", "call"},
        {"working copy of verification", "IspFlash returns 0xD69\n", Signed({"--isp"}), 0xD69, 1,
         "library", "call"},
        {"no working copy", "IspFlash returns 0xD69\n", plain, 0xD69, 1, "plug-in", "call"},
        {"no hub", "IspFlash returns 0x2B0D\n", plain, 0x2B0D, 1, "plug-in", "call"},
        {"own code", "IspFlash returns 0x7001\n", plain, 0x7001, 1, "plug-in", "call"},
        {"function that plug-in has", "IspFlash returns 6\n", plain, 6, 1, "plug-in", "call"},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.description);
        Answer(row.answers);
        const Json event = ResultOf(row.line);
        EXPECT_EQ(event["code"], row.code);
        EXPECT_EQ(event["status"], row.status);
        EXPECT_EQ(event["source"], row.source);
        EXPECT_EQ(event["stage"], row.stage);
        EXPECT_EQ(event["device"], row.device);
    }
}

TEST_F(ResultSource, Sign_plugin_that_cannot_be_used_is_named_with_remedy) {
    m_installation.Remove(Installation::kSignPlugin);
    for (const bool isVerifyOnly : {true, false}) {
        const Json event = ResultOf(Signed({isVerifyOnly ? "--verify" : "--isp"}));
        EXPECT_EQ(event["code"], 0x4004);
        EXPECT_EQ(event["status"], 5);
        EXPECT_EQ(event["source"], "library");
        EXPECT_EQ(event["stage"], "load");
        // A line that programs has loaded the ISP plug-in before, and called it.
        EXPECT_EQ(event["device"], isVerifyOnly ? "untouched" : "unknown");
        ASSERT_EQ(event["advice"].size(), 2U);
        EXPECT_THAT(event["advice"][0],
                    HasSubstr(m_installation.folder.Path(Installation::kSignPlugin)));
    }
}

TEST_F(ResultSource, Function_that_no_plugin_can_have_is_explained) {
    const Json event = ResultOf({"--erase"});
    EXPECT_EQ(event["code"], 6);
    EXPECT_EQ(event["status"], 5);
    EXPECT_EQ(event["device"], "untouched");
    EXPECT_THAT(event["advice"][0], HasSubstr("--erase never calls a plug-in function"));
}

TEST_F(ResultSource, Function_that_plugin_lacks_is_named) {
    m_installation.Copy(WITHOUT_ISP_EEPROM, Installation::kIspPlugin);
    const Json event = ResultOf({"--edpisp"});
    EXPECT_EQ(event["code"], 6);
    EXPECT_EQ(event["status"], 5);
    EXPECT_THAT(event["advice"][0],
                HasSubstr("libIsp.dylib lacks IspEeprom, which --edpisp calls"));
}

} // namespace
