#include "script/ScriptCommand.h"

#include <filesystem>
#include <fmt/format.h>
#include <vector>

#include "FileIo.h"
#include "HexDump.h"
#include "LibraryApi.h"
#include "LibraryPaths.h"
#include "RunWire.h"
#include "Utf8.h"
#include "script/ScriptCheck.h"
#include "script/ScriptLexer.h"
#include "script/ScriptRelay.h"
#include "script/ScriptText.h"

namespace ispctl {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Far more than any script needs. UNITS: bytes.
constexpr std::size_t kMaxScript = 16 * 1024 * 1024;
constexpr std::size_t kMaxOutput = 64 * 1024 * 1024;

/// Reads a script as bytes, or assembles it from text. RETURNS nothing on failure, with its exit
/// status in status.
std::optional<Bytes> ReadScript(const std::string &file, bool isText, ExitStatus &status,
                                Session &session) {
    std::string error;
    const auto content = ReadInputFile(file, kMaxScript, error);
    if (!content) {
        status = session.Fail(kExitFileError, error);
        return std::nullopt;
    }
    if (!isText) {
        return Bytes(content->begin(), content->end());
    }
    try {
        return AssembleScript(*content);
    } catch (const ScriptError &reason) {
        session.streams.Print(Stream::Error, fmt::format("{}:{}:{}: {}\n", file, reason.Line(),
                                                         reason.Column(), reason.what()));
        status = kExitFailed;
        return std::nullopt;
    }
}

void PrintReport(const std::string &file, const ScriptReport &report, Session &session) {
    for (const std::string &problem : report.problems) {
        session.streams.Print(Stream::Error, fmt::format("{}: {}\n", file, problem));
    }
    if (report.problemCount > report.problems.size()) {
        session.streams.Print(Stream::Error,
                              fmt::format("{}: {} more problems\n", file,
                                          report.problemCount - report.problems.size()));
    }
    for (const std::string &note : report.notes) {
        session.streams.Print(Stream::Error, fmt::format("{}: note: {}\n", file, note));
    }
}

struct CheckedScript {
    Bytes bytes;
    ScriptReport report;
};

/// Reads a script and prints what is to be said about it. RETURNS nothing if it cannot be read,
/// with the exit status in status.
std::optional<CheckedScript> ReadAndCheck(const std::string &file, bool isText, ExitStatus &status,
                                          Session &session) {
    auto bytes = ReadScript(file, isText, status, session);
    if (!bytes) {
        return std::nullopt;
    }
    CheckedScript script{std::move(*bytes), {}};
    script.report = CheckScript(script.bytes);
    PrintReport(file, script.report, session);
    return script;
}

ExitStatus RunWithLibrary(const ScriptOptions &options, const Bytes &script,
                          const ScriptReport &report, Session &session) {
    std::string error;
    const auto library = ScalerLibrary::Open(
        options.library.empty() ? InstalledLibraryPath().string() : options.library, error);
    if (!library) {
        return session.Fail(kExitUsage, error);
    }
    const auto api = LibraryApi::Find(*library, error);
    if (!api) {
        return session.Fail(kExitUsage, error);
    }
    if (options.virtualScaler) {
        session.streams.PrintMessage("virtual scaler: no hardware is touched");
    }
    const std::string path =
        std::filesystem::absolute(options.virtualScaler ? VirtualCommLibraryPath().string()
                                                        : options.comm)
            .string();
    auto wide = WideFromUtf8(path);
    if (!wide) {
        return session.Fail(kExitUsage, fmt::format("{} is not valid UTF-8", path));
    }
    const LibraryApi::Comm comm = api->CreateComm();
    if (comm->LoadCommDllFile(wide->data()) != 1) {
        return session.Fail(kExitNoPlugin,
                            fmt::format("cannot load {} as a communication library", path));
    }
    if (const unsigned int status = comm->Initiallize(); status != 0) {
        return session.Fail(
            kExitFailed,
            fmt::format("cannot initialise the communication library (status 0x{:X})", status));
    }
    if (options.channel) {
        const auto channel = static_cast<STRUCT_ENUM_COMM_ID>(*options.channel);
        if (const unsigned int status = comm->SetCommByID(channel); status != 0) {
            return session.Fail(kExitFailed, fmt::format("cannot select channel {} (status 0x{:X})",
                                                         *options.channel, status));
        }
    }
    const ScriptResult result = api->RunScript(script, report.outputBytes, *comm);
    session.streams.Print(Stream::Output, HexDump(result.output));
    session.streams.PrintMessage(DescribeScriptResult(result.code));
    return result.code == 0 ? kExitSuccess : kExitFailed;
}

ExitStatus CheckAndRun(const ScriptOptions &options, Session &session) {
    ExitStatus status = kExitSuccess;
    const auto script = ReadAndCheck(options.file, options.text, status, session);
    if (!script) {
        return status;
    }
    const ScriptReport &report = script->report;
    if (!report.problems.empty()) {
        return session.Fail(kExitFailed, "the script was not run");
    }
    if (report.outputBytes > kMaxOutput) {
        return session.Fail(kExitFailed,
                            fmt::format("the script was not run: it reads {} bytes, more than the "
                                        "maximum of {}",
                                        report.outputBytes, kMaxOutput));
    }
    return RunWithLibrary(options, script->bytes, report, session);
}

} // namespace

std::string DescribeScriptResult(int code) {
    switch (code) {
    case 0:
        return "success";
    case 1:
        return "failed with 0x1: unknown opcode, or status 1 of the communication library";
    case 2:
        return "failed with 0x2: unsupported opcode, or status 2 of the communication library";
    case 3:
        return "failed with 0x3: a poll used up its tries, or status 3 of the communication "
               "library";
    case 6:
        return "failed with 0x6: the communication library lacks a function that the script needs";
    default:
        return fmt::format("failed with 0x{:X}: status of the communication library",
                           static_cast<unsigned int>(code));
    }
}

ExitStatus AssembleCommand(const ScriptOptions &options, Session &session) {
    ExitStatus status = kExitSuccess;
    const auto script = ReadAndCheck(options.file, true, status, session);
    if (!script) {
        return status;
    }
    if (options.output.empty()) {
        session.streams.Print(Stream::Output, ByteListOfScript(script->bytes));
        return status;
    }
    std::string error;
    const bool written = WriteOutputFile(
        options.output, std::string(script->bytes.begin(), script->bytes.end()), error);
    return written ? status : session.Fail(kExitFileError, error);
}

ExitStatus ListCommand(const ScriptOptions &options, Session &session) {
    ExitStatus status = kExitSuccess;
    if (const auto script = ReadScript(options.file, false, status, session)) {
        session.streams.Print(Stream::Output, ListScript(*script));
    }
    return status;
}

ExitStatus CheckCommand(const ScriptOptions &options, Session &session) {
    ExitStatus status = kExitSuccess;
    const auto script = ReadAndCheck(options.file, options.text, status, session);
    if (!script) {
        return status;
    }
    const ScriptReport &report = script->report;
    session.streams.Print(Stream::Output,
                          fmt::format("{} bytes, {} records, {} bytes read, {} problems\n",
                                      script->bytes.size(), report.records, report.outputBytes,
                                      report.problemCount));
    return report.problems.empty() ? kExitSuccess : kExitFailed;
}

ExitStatus RunScriptCommand(const ScriptOptions &options, Session &session) {
    if (options.comm.empty() && !options.virtualScaler) {
        return session.Fail(kExitUsage, "no communication library: use --comm LIB or --virtual");
    }
    if (session.link == nullptr) {
        return RelayScript(session);
    }
    if (!session.link->Send(FrameKind::Ready, "")) {
        return kExitUsage;
    }
    ExitStatus status = kExitUsage;
    try {
        status = CheckAndRun(options, session);
    } catch (const std::exception &error) {
        session.Fail(status, error.what());
    }
    session.link->Send(FrameKind::Result, BytesOf(RunResult{status, 1, 1}));
    return status;
}

} // namespace ispctl
