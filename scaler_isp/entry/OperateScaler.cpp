#include "scaler_isp/OperateScaler.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "scaler_isp/abi/NewRecord.h"
#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/LibraryDirectory.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/entry/CommandTokens.h"
#include "scaler_isp/entry/Globals.h"
#include "scaler_isp/entry/RunReport.h"

namespace {

using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

// Out of memory is reported as 0, success: hosts have always received 0 if no parser exists.
constexpr int kParserAllocationFailed = 0;

/// The parser of a line with invalid quotes, or without memory for its arguments. The global still
/// points to it, so it must live until the next call replaces it or the library is unloaded.
ZeroedPointer<CCpIspArgsParse> g_parserOfRejectedLine;

/// Owns the parser of one call; the global points to it for the duration of the call.
class CurrentParser {
  public:
    explicit CurrentParser(ZeroedPointer<CCpIspArgsParse> parser) : m_parser(std::move(parser)) {
        g_parserOfRejectedLine.reset();
        g_pcArgsParse = m_parser.get();
    }
    ~CurrentParser() {
        if (m_parser != nullptr && g_pcArgsParse == m_parser.get()) {
            g_pcArgsParse = nullptr;
        }
    }
    CurrentParser(const CurrentParser &) = delete;
    CurrentParser &operator=(const CurrentParser &) = delete;

    CCpIspArgsParse &operator*() const {
        return *m_parser;
    }

    void KeepAfterRejection() {
        g_parserOfRejectedLine = std::move(m_parser);
    }

  private:
    ZeroedPointer<CCpIspArgsParse> m_parser;
};

/// Runs copies, because the plug-in gets a non-const pointer and must not reach the parser's
/// record.
int RunOnCopies(const CCpIspArgsParse &parser, const LibraryDirectory &directory, void *device) {
    const ZeroedPointer<Command> setting = CopyCommandRecord(parser.Setting());
    const std::unique_ptr<SignArgs> signArgs(new (std::nothrow) SignArgs(parser.DigitalSignArgs()));
    if (setting == nullptr || signArgs == nullptr) {
        return SCALER_ISP_REFUSED;
    }
    return RunAndReport(setting.get(), signArgs.get(), directory, device);
}

int ParseAndRun(CurrentParser &parser, const std::string &line, const LibraryDirectory &directory,
                ScalerIspProgressCallback progress, ScalerIspMessageCallback message) {
    (*parser).SetCurrentDir(Utf8FromWide(directory.strName));
    std::vector<std::string> tokens;
    if (!SplitCommandLine(line, tokens)) {
        parser.KeepAfterRejection();
        return SCALER_ISP_REFUSED;
    }
    // Value-initialised, so that a null ends the arguments.
    const std::unique_ptr<const char *[]> argv(new (std::nothrow)
                                                   const char *[tokens.size() + 1]());
    if (argv == nullptr) {
        parser.KeepAfterRejection();
        return SCALER_ISP_REFUSED;
    }
    std::transform(tokens.begin(), tokens.end(), argv.get(),
                   [](const std::string &token) { return token.c_str(); });
    // Only now: after a line that cannot be split, the globals keep the callbacks of the previous
    // call.
    g_funcReturnProg = progress;
    g_funcShowMsg = message;
    if (!(*parser).Parse(static_cast<int>(tokens.size()), argv.get(), directory)) {
        return SCALER_ISP_REFUSED;
    }
    // QUIRK Device_handle_is_discarded: whatever the host passes, the plug-in receives no handle.
    return RunOnCopies(*parser, directory, nullptr);
}

/// The common implementation of both entry points.
int RunCommandLine(const wchar_t *commandLine, ScalerIspProgressCallback progress,
                   ScalerIspMessageCallback message) {
    CCpNxString wide(commandLine);
    if (wide.IsEmpty()) {
        return SCALER_ISP_REFUSED;
    }
    const std::string line = Utf8FromWide(wide);
    const LibraryDirectory directory = FindLibraryDirectory();
    g_cpStrCurDir = directory.strName;
    g_cpStrSettingFilePath = DefaultSettingFile(directory);
    ZeroedPointer<CCpIspArgsParse> newParser = MakeInZeroedMemory<CCpIspArgsParse>();
    if (newParser == nullptr) {
        return kParserAllocationFailed;
    }
    CurrentParser parser(std::move(newParser));
    return ParseAndRun(parser, line, directory, progress, message);
}

int RunCommandLineNoThrow(const wchar_t *commandLine, ScalerIspProgressCallback progress,
                          ScalerIspMessageCallback message) {
    const int result = CatchAll(static_cast<int>(SCALER_ISP_REFUSED),
                                [&] { return RunCommandLine(commandLine, progress, message); });
    // So that the host's next output, on whatever stream, follows ours. A failed flush is ignored,
    // because it says nothing about the device.
    std::fflush(stdout);
    return result;
}

} // namespace

int OperateScaler(const wchar_t *commandLine, void *deviceHandle,
                  ScalerIspProgressCallback progress, ScalerIspMessageCallback message) {
    static_cast<void>(deviceHandle);
    return RunCommandLineNoThrow(commandLine, progress, message);
}

int OperateScalerEx(const wchar_t *commandLine, void *deviceHandle,
                    ScalerIspProgressCallback progress, ScalerIspMessageCallback message,
                    void *reserved) {
    static_cast<void>(deviceHandle);
    static_cast<void>(reserved);
    return RunCommandLineNoThrow(commandLine, progress, message);
}
