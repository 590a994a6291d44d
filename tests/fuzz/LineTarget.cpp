// Command lines through the export, with plug-ins that record. A refused line reaches no plug-in;
// an accepted one reaches them with exactly the records of the C++ API's parser; a second call is
// the first one again. "@" stands for the directory of the library, and no other place is named.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <vector>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "modules/ModuleCalls.h"
#include "scaler_isp/OperateScaler.h"
#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/common/CCpTransform.h"
#include "scaler_isp/entry/CommandLineSplit.h"
#include "scaler_isp/entry/Globals.h"

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

constexpr int kRefused = -1;
constexpr int kAnswers[] = {0, 6, 0x1234};

std::string Bytes(const void *begin, std::size_t size) {
    return {static_cast<const char *>(begin), size};
}

/// What is meaningful of a record; padding is not.
std::string MeaningOf(const Setting &setting) {
    const STRUCT_C_STYLE_MAP_FW &map = setting.stMapFw;
    FUZZ_CHECK(map.ulFwCount <= SCALER_ISP_MAX_BANKS, std::to_string(map.ulFwCount));
    std::string bytes = Bytes(&setting, offsetof(Setting, ucSlaveAddress) + 1);
    const auto *after = &setting.bAutoSearchFW;
    bytes += Bytes(after, offsetof(Setting, stMapFw) - offsetof(Setting, bAutoSearchFW) +
                              sizeof map.ulFwCount);
    bytes += Bytes(map.ulTargetBank, map.ulFwCount * sizeof map.ulTargetBank[0]);
    for (std::uint32_t i = 0; i < map.ulFwCount; ++i) {
        bytes += Bytes(&map.stFwBank[i].ulFileBank, sizeof map.stFwBank[i].ulFileBank);
        bytes += Bytes(map.stFwBank[i].wszFwPath, sizeof map.stFwBank[i].wszFwPath);
    }
    bytes += Bytes(&setting.stFlagSetting,
                   offsetof(Setting, stI2CWrite) - offsetof(Setting, stFlagSetting));
    bytes += Bytes(&setting.wszSettingFile, sizeof setting.wszSettingFile);
    bytes += Bytes(&setting.szBootFwPath, sizeof setting.szBootFwPath);
    return bytes + Bytes(&setting.stMergeFwInfo, sizeof setting.stMergeFwInfo);
}

/// A record that a function of the ISP plug-in received.
struct ReceivedSetting {
    std::string function;
    std::string meaning;
    bool operator==(const ReceivedSetting &) const = default;
};

/// One call of the export and what the plug-ins saw.
struct Call {
    int result = 0;
    std::vector<std::string> names;
    std::vector<ReceivedSetting> settings;
    std::vector<std::string> signs;
    bool operator==(const Call &) const = default;
};

bool IsSignCall(const std::string &name) {
    return name == "SignFwExport" || name == "VerifySignatureExport";
}

Call CallLibrary(const std::wstring &line, int answer) {
    Call call;
    ModuleCalls calls;
    calls.answer = [&](const ModuleCall &received) {
        call.names.push_back(received.name);
        if (IsSignCall(received.name)) {
            call.signs.push_back(Bytes(received.first, sizeof(SignArgs)));
        } else if (received.name != "SetUIFunction" && received.name != "SetIDev") {
            call.settings.push_back(
                {received.name, MeaningOf(*static_cast<const Setting *>(received.first))});
        }
        return answer;
    };
    call.result = OperateScaler(line.c_str(), nullptr, nullptr, nullptr);
    return call;
}

const std::string &LibraryDirectory() {
    static const std::string directory = [] {
        OperateScaler(L"tool", nullptr, nullptr, nullptr);
        return CCpTransform().ConvertUnicodeStringToUTF8(
            std::wstring(std::wstring_view(g_cpStrCurDir)));
    }();
    return directory;
}

/// The line that an input stands for. A "/" of the input would reach files of the machine.
std::string LineOf(const std::string &text) {
    std::string line = "tool ";
    for (const char c : text) {
        if (c == '@') {
            line += LibraryDirectory();
        } else {
            line += c == '/' ? '_' : c == '\0' ? ' ' : c;
        }
    }
    return line;
}

/// The records of an accepted line as the parser of the C++ API makes them.
void CompareWithParser(const std::string &line, const Call &call) {
    std::vector<std::string> tokens;
    if (ParseCommandLineParameter(tokens, line) == 0) {
        FUZZ_CHECK(call.result == kRefused && call.names.empty(), line);
        return;
    }
    std::vector<const char *> arguments;
    for (const std::string &token : tokens) {
        arguments.push_back(token.c_str());
    }
    arguments.push_back(nullptr);
    const auto parser = std::make_unique<CCpIspArgsParse>();
    parser->SetCurrentDir(LibraryDirectory());
    const int accepted = parser->ParseArgs(static_cast<int>(tokens.size()), arguments.data());
    FUZZ_CHECK((accepted == 1) == (call.result != kRefused), line);
    FUZZ_CHECK(accepted == 1 || call.names.empty(), line);
    if (accepted == 0) {
        return;
    }
    const auto setting = std::make_unique<Setting>(parser->GetISPCmdSetting());
    const std::string expected = MeaningOf(*setting);
    const auto withoutMap = std::make_unique<Setting>(*setting);
    withoutMap->ClearMapFW();
    const std::string expectedOfKey = MeaningOf(*withoutMap);     // the key is no firmware file
    const bool mayProgramBoot = setting->szBootFwPath[0] != '\0'; // which has a record of its own
    for (const ReceivedSetting &received : call.settings) {
        const bool isKey = received.function == "GetKeyFromFlash";
        FUZZ_CHECK(mayProgramBoot || received.meaning == (isKey ? expectedOfKey : expected), line);
    }
    const SignArgs signs = parser->GetDigitalSignArgs();
    for (const std::string &received : call.signs) {
        // Whether to sign or to verify is decided by the run.
        FUZZ_CHECK(received.substr(sizeof signs.enumSignActionType) ==
                       Bytes(&signs, sizeof signs).substr(sizeof signs.enumSignActionType),
                   line);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr std::size_t kLongest = 2000;
    if (size > kLongest) {
        return -1;
    }
    FuzzInput input(data, size);
    const int answer = kAnswers[input.Below(std::size(kAnswers))];
    const std::string line = LineOf(input.Rest());
    const std::wstring wide = CCpTransform().ConvertUTF8StringToUnicode(line);
    if (wide.empty()) { // nothing that a caller could have written as characters
        const std::wstring bytes(line.begin(), line.end());
        FUZZ_CHECK(CallLibrary(bytes, answer).result == kRefused || !line.empty(), line);
        return 0;
    }
    const Call call = CallLibrary(wide, answer);
    FUZZ_CHECK(CallLibrary(wide, answer) == call, line);
    CompareWithParser(line, call);
    return 0;
}
