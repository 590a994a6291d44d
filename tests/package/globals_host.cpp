// A host that calls DoIsp itself and gives the callbacks through the globals of the entry module.
// Built twice: as position-independent code, and without, where the program holds copies of the
// exported objects and the library must use the same ones. Plug-ins lie next to the library.

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "scaler_isp/ScalerIsp.h"

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

int failures = 0;

void Expect(bool condition, const char *what) {
    if (!condition) {
        std::fprintf(stderr, "failed: %s\n", what);
        ++failures;
    }
}

// What the plug-in has called: its progress is 1 for each IspFlash, its hub call comes from there.
int g_progress = 0;
std::wstring g_message;
int g_hubCalls = 0;
void *g_hubDevice = nullptr;

void Progress(int percent) {
    g_progress += percent;
}
void Message(wchar_t *text) {
    g_message = text;
}
void *HubDevice() {
    ++g_hubCalls;
    return g_hubDevice;
}

struct Outcome {
    int result;
    int progress;
    int hubCalls;
};

Outcome Run(Setting &setting, SignArgs &sign, void *device, void *hubDevice) {
    g_progress = 0;
    g_hubCalls = 0;
    g_hubDevice = hubDevice;
    const int result = DoIsp(&setting, &sign, device);
    return {result, g_progress, g_hubCalls};
}

/// A software signature that is verified before the firmware is programmed.
void TestHubAfterTheSignature(void *device, void *hub) {
    const auto setting = std::make_unique<Setting>();
    const auto sign = std::make_unique<SignArgs>();
    setting->enumActionType = ENUM_ACTION_ISP;
    setting->enumIspMode = SCALER_ISP_MODE_NORMAL;
    setting->enumDigitalSignatureType = ENUM_SIGN_TYPE_SW;
    setting->enumCommID = COMM_ID_HUB;

    Outcome outcome = Run(*setting, *sign, device, nullptr);
    Expect(outcome.result == SCALER_ISP_NO_HUB_DEVICE, "no device after the signature: 0x2B0D");
    Expect(outcome.hubCalls == 1 && outcome.progress == 0, "and nothing is programmed");

    outcome = Run(*setting, *sign, device, hub);
    Expect(outcome.result == 0, "with a device the run goes on");
    Expect(outcome.progress == 1, "and the plug-in programs");
    Expect(outcome.hubCalls == 2, "after the library and the plug-in have asked for it");
    Expect(g_message == L"programmed", "the plug-in has the message callback, too");

    outcome = Run(*setting, *sign, nullptr, nullptr);
    Expect(outcome.result == 0 && outcome.hubCalls == 1, "without a handle only the plug-in asks");

    setting->enumCommID = COMM_ID_NONE;
    outcome = Run(*setting, *sign, device, nullptr);
    Expect(outcome.result == 0 && outcome.hubCalls == 1, "and so it is on another channel");
}

/// Boot firmware, programmed before the action in factory mode.
void TestHubAfterTheBootPass(void *device, void *hub, const std::string &bootFile) {
    const auto setting = std::make_unique<Setting>();
    const auto sign = std::make_unique<SignArgs>();
    setting->enumActionType = ENUM_ACTION_ISP;
    setting->enumIspMode = SCALER_ISP_MODE_FACTORY;
    setting->enumBootCodeType = SCALER_ISP_NEW_BOOT_CODE;
    setting->enumCommID = COMM_ID_HUB;
    bootFile.copy(setting->szBootFwPath, sizeof setting->szBootFwPath - 1);

    Outcome outcome = Run(*setting, *sign, device, nullptr);
    Expect(outcome.result == SCALER_ISP_NO_HUB_DEVICE, "no device after the boot pass: 0x2B0D");
    Expect(outcome.progress == 1, "and only the boot firmware is programmed");
    outcome = Run(*setting, *sign, device, hub);
    Expect(outcome.result == 0 && outcome.progress == 2, "with a device the action follows");
}

void TestCallbacks(const std::string &bootFile) {
    g_funcReturnProg = &Progress;
    g_funcShowMsg = &Message;
    g_funcNxGetHubDev = &HubDevice;
    int handles[2] = {};
    TestHubAfterTheSignature(&handles[0], &handles[1]);
    TestHubAfterTheBootPass(&handles[0], &handles[1], bootFile);

    Expect(OperateScaler(L"host --isp --fw f.bin", nullptr, nullptr, nullptr) == -1,
           "no such file");
    Expect(g_funcReturnProg == nullptr && g_funcShowMsg == nullptr,
           "an entry call stores its own callbacks");
    Expect(g_funcNxGetHubDev == &HubDevice, "but for the one of the hub");
    g_funcNxGetHubDev = nullptr;
}

void TestNames(const std::wstring &directory) {
    Expect(STR_ISP_DLL_PATH == std::wstring(L"PlugIn/libIsp.dylib"), "the ISP plug-in's path");
    Expect(STR_SIGN_VERIFY_DLL == std::wstring(L"libSignVerify.dylib"), "the other one's name");
    Expect(g_cpStrCurDir == directory.c_str(), "the library's directory");
    Expect(g_cpStrSettingFilePath == (directory + L"IspSetting.ini").c_str(), "the settings file");
}

void TestParser(const std::wstring &directory) {
    Expect(OperateScaler(L"host --resetmcu", nullptr, nullptr, nullptr) == 0, "a good line");
    Expect(g_pcArgsParse == nullptr, "leaves no parser");
    Expect(OperateScaler(L"host \"a", nullptr, nullptr, nullptr) == -1, "bad quotes");
    Expect(g_pcArgsParse != nullptr, "leave one");
    const std::string current = g_pcArgsParse != nullptr ? g_pcArgsParse->GetCurrentDir() : "";
    Expect(std::wstring(current.begin(), current.end()) == directory, "that knows its directory");
    Expect(OperateScaler(L"host --resetmcu", nullptr, nullptr, nullptr) == 0, "the next good line");
    Expect(g_pcArgsParse == nullptr, "removes it");
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: globals_host LIBRARY-DIRECTORY\n");
        return 2;
    }
    const std::string directory = std::string(argv[1]) + "/"; // a build folder with an ASCII name
    const std::wstring wide(directory.begin(), directory.end());
    Expect(g_pcArgsParse == nullptr && g_funcReturnProg == nullptr && g_funcShowMsg == nullptr &&
               g_funcNxGetHubDev == nullptr,
           "the pointers are null at the start");
    Expect(g_cpStrCurDir.IsEmpty() && g_cpStrSettingFilePath.IsEmpty(), "the paths are empty");
    TestParser(wide);
    TestNames(wide);
    TestCallbacks(directory + "boot.bin");
    return failures == 0 ? 0 : 1;
}
