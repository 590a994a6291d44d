#include "script/ScriptCommand.h"

#include <cstdio>
#include <filesystem>
#include <fmt/format.h>
#include <vector>

#include "HexDump.h"
#include "InputFile.h"
#include "Places.h"
#include "Toolkit.h"
#include "Utf8.h"
#include "script/ScriptCheck.h"
#include "script/ScriptLexer.h"
#include "script/ScriptText.h"

namespace ispctl {
namespace {

using Bytes = std::vector<std::uint8_t>;

ExitStatus Fail(ExitStatus status, const std::string &text) {
    fmt::print(stderr, "ispctl: {}\n", text);
    return status;
}

/// Reads a script: its bytes, or text that is assembled. RETURNS the status of a failure in status.
std::optional<Bytes> ReadScript(const std::string &file, bool isText, ExitStatus &status) {
    std::string error;
    const auto content = ReadInputFile(file, error);
    if (!content) {
        status = Fail(kExitWrongUse, error);
        return std::nullopt;
    }
    if (!isText) {
        return Bytes(content->begin(), content->end());
    }
    try {
        return AssembleScript(*content);
    } catch (const ScriptError &reason) {
        fmt::print(stderr, "{}:{}:{}: {}\n", file, reason.Line(), reason.Column(), reason.what());
        status = kExitFailedRun;
        return std::nullopt;
    }
}

void SayReport(const std::string &file, const ScriptReport &report) {
    for (const std::string &problem : report.problems) {
        fmt::print(stderr, "{}: {}\n", file, problem);
    }
    for (const std::string &note : report.notes) {
        fmt::print(stderr, "{}: note: {}\n", file, note);
    }
}

ExitStatus RunOn(const ScriptOptions &options, const Bytes &script, const ScriptReport &report) {
    std::string error;
    const auto library = ScalerLibrary::Open(
        options.library.empty() ? InstalledLibrary().string() : options.library, error);
    if (!library) {
        return Fail(kExitWrongUse, error);
    }
    const auto toolkit = Toolkit::Find(*library, error);
    if (!toolkit) {
        return Fail(kExitWrongUse, error);
    }
    if (options.virtualScaler) {
        fmt::print(stderr, "ispctl: virtual scaler: no hardware is touched\n");
    }
    const std::string path =
        std::filesystem::absolute(options.virtualScaler ? VirtualCommLibrary().string()
                                                        : options.comm)
            .string();
    auto wide = WideFromUtf8(path);
    if (!wide) {
        return Fail(kExitWrongUse, fmt::format("{} is not valid UTF-8", path));
    }
    const Toolkit::Comm comm = toolkit->MakeComm();
    if (comm->LoadCommDllFile(wide->data()) != 1) {
        return Fail(kExitWrongUse,
                    fmt::format("{} cannot be loaded as a communication library", path));
    }
    if (const unsigned int status = comm->Initiallize(); status != 0) {
        return Fail(kExitFailedRun, fmt::format("Initiallize: status 0x{:X}", status));
    }
    if (options.channel) {
        const auto channel = static_cast<STRUCT_ENUM_COMM_ID>(*options.channel);
        if (const unsigned int status = comm->SetCommByID(channel); status != 0) {
            return Fail(kExitFailedRun,
                        fmt::format("channel {}: status 0x{:X}", *options.channel, status));
        }
    }
    const ScriptResult result = toolkit->RunScript(script, report.outputBytes, *comm);
    fmt::print("{}", HexDump(result.output));
    std::fflush(stdout);
    fmt::print(stderr, "ispctl: {}\n", WordsOfScriptResult(result.code));
    return result.code == 0 ? kExitSuccess : kExitFailedRun;
}

} // namespace

std::string WordsOfScriptResult(int code) {
    switch (code) {
    case 0:
        return "success";
    case 1:
        return "failed with 0x1: an unknown opcode, or status 1 of the communication library";
    case 2:
        return "failed with 0x2: an opcode that is not supported, or status 2 of the communication "
               "library";
    case 3:
        return "failed with 0x3: a poll ran out of tries, or status 3 of the communication library";
    case 6:
        return "failed with 0x6: the communication library does not offer a function that the "
               "script needs";
    default:
        return fmt::format("failed with 0x{:X}: status of the communication library",
                           static_cast<unsigned int>(code));
    }
}

ExitStatus AssembleCommand(const ScriptOptions &options) {
    ExitStatus status = kExitSuccess;
    const auto script = ReadScript(options.file, true, status);
    if (!script) {
        return status;
    }
    const ScriptReport report = CheckScript(*script);
    SayReport(options.file, report);
    if (options.output.empty()) {
        fmt::print("{}", ByteListOfScript(*script));
        return status;
    }
    std::string error;
    const bool written =
        WriteOutputFile(options.output, std::string(script->begin(), script->end()), error);
    return written ? status : Fail(kExitWrongUse, error);
}

ExitStatus ListCommand(const ScriptOptions &options) {
    ExitStatus status = kExitSuccess;
    if (const auto script = ReadScript(options.file, false, status)) {
        fmt::print("{}", ListScript(*script));
    }
    return status;
}

ExitStatus CheckCommand(const ScriptOptions &options) {
    ExitStatus status = kExitSuccess;
    const auto script = ReadScript(options.file, options.text, status);
    if (!script) {
        return status;
    }
    const ScriptReport report = CheckScript(*script);
    SayReport(options.file, report);
    fmt::print("{} bytes, {} records, {} bytes read, {} problems\n", script->size(), report.records,
               report.outputBytes, report.problems.size());
    return report.problems.empty() ? kExitSuccess : kExitFailedRun;
}

ExitStatus RunScriptCommand(const ScriptOptions &options) {
    if (options.comm.empty() && !options.virtualScaler) {
        return Fail(kExitWrongUse, "no communication library: give --comm FILE, or --virtual");
    }
    ExitStatus status = kExitSuccess;
    const auto script = ReadScript(options.file, options.text, status);
    if (!script) {
        return status;
    }
    const ScriptReport report = CheckScript(*script);
    SayReport(options.file, report);
    if (!report.problems.empty()) {
        return Fail(kExitFailedRun, "the script was not run");
    }
    return RunOn(options, *script, report);
}

} // namespace ispctl
