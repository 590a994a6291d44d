#include "script/ScriptCommand.h"

#include <filesystem>
#include <fmt/format.h>
#include <vector>

#include "comm/CommProcess.h"
#include "explain/StagedFiles.h"
#include "script/ScriptCheck.h"
#include "script/ScriptInput.h"
#include "script/ScriptRunner.h"
#include "script/ScriptText.h"

namespace ispctl {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kMaxOutput = 64 * 1024 * 1024; ///< UNITS: bytes

ScriptForm FormOf(const ScriptOptions &options) {
    return options.text     ? ScriptForm::Text
           : options.binary ? ScriptForm::Bytes
                            : ScriptForm::Detected;
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

/// A script and what was found out about it.
struct CheckedScript {
    std::vector<ScriptStep> steps;
    ScriptReport report; ///< of all steps
    std::size_t requests = 0;
};

/// Checks each step alone: the runner starts anew after a DDC/CI request.
CheckedScript Check(std::vector<ScriptStep> steps) {
    CheckedScript script{std::move(steps), {}, 0};
    for (const ScriptStep &step : script.steps) {
        const ScriptReport report = CheckScript(step.records);
        ScriptReport &all = script.report;
        all.problems.insert(all.problems.end(), report.problems.begin(), report.problems.end());
        all.notes.insert(all.notes.end(), report.notes.begin(), report.notes.end());
        all.problemCount += report.problemCount;
        all.records += report.records;
        all.outputBytes += report.outputBytes;
        script.requests += step.ddc ? 1U : 0U;
    }
    return script;
}

/// Reads a script and prints what is to be said about it. RETURNS nothing if it cannot be read,
/// with the exit status in status.
std::optional<CheckedScript> ReadAndCheck(const std::string &file, ScriptForm form,
                                          ExitStatus &status, Session &session) {
    auto input = ReadScript(file, form, status, session);
    if (!input) {
        return std::nullopt;
    }
    CheckedScript script = Check(std::move(input->steps));
    PrintReport(ShownName(file), script.report, session);
    if (script.report.problemCount > 0 && !input->whyBytes.empty()) {
        session.streams.PrintMessage(input->whyBytes);
    }
    return script;
}

/// The bytes of a script for those who run it themselves. RETURNS nothing, with the exit status in
/// status, if a request has none.
std::optional<Bytes> OnlyRecords(const std::string &file, const std::vector<ScriptStep> &steps,
                                 ExitStatus &status, Session &session) {
    for (const ScriptStep &step : steps) {
        if (step.ddc) {
            session.streams.Print(
                Stream::Error,
                fmt::format("{}:{}:{}: no record can express ddc; ispctl script run sends it\n",
                            ShownName(file), step.ddc->line, step.ddc->column));
            status = kExitFailed;
        }
    }
    return status == kExitSuccess ? std::optional(steps.front().records) : std::nullopt;
}

ExitStatus CheckAndRun(const ScriptOptions &options, Session &session) {
    ExitStatus status = kExitSuccess;
    const auto script = ReadAndCheck(options.file, FormOf(options), status, session);
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
    return RunSteps(options, script->steps, session);
}

} // namespace

ExitStatus AssembleCommand(const ScriptOptions &options, Session &session) {
    ExitStatus status = kExitSuccess;
    const auto script = ReadAndCheck(options.file, ScriptForm::Text, status, session);
    const auto bytes =
        script ? OnlyRecords(options.file, script->steps, status, session) : std::nullopt;
    if (!bytes) {
        return status;
    }
    if (options.output.empty()) {
        session.streams.Print(Stream::Output, ByteListOfScript(*bytes));
        return status;
    }
    if (options.output == "-") {
        session.streams.Write(Stream::Output, std::string(bytes->begin(), bytes->end()));
        return status;
    }
    std::error_code ignored;
    if (std::filesystem::equivalent(options.file, options.output, ignored)) {
        return session.Fail(kExitUsage,
                            options.output + " is the script itself: name another file");
    }
    std::string error;
    StagedFiles staged;
    const bool written =
        staged.Add(options.output, std::string(bytes->begin(), bytes->end()), error) &&
        staged.Commit(error);
    return written ? status : session.Fail(kExitFileError, error);
}

ExitStatus ListCommand(const ScriptOptions &options, Session &session) {
    ExitStatus status = kExitSuccess;
    const auto script = ReadScript(options.file, FormOf(options), status, session);
    const auto bytes =
        script ? OnlyRecords(options.file, script->steps, status, session) : std::nullopt;
    if (bytes) {
        session.streams.Print(Stream::Output, ListScript(*bytes));
    }
    return status;
}

ExitStatus CheckCommand(const ScriptOptions &options, Session &session) {
    ExitStatus status = kExitSuccess;
    const auto script = ReadAndCheck(options.file, FormOf(options), status, session);
    if (!script) {
        return status;
    }
    const ScriptReport &report = script->report;
    std::size_t bytes = 0;
    for (const ScriptStep &step : script->steps) {
        bytes += step.records.size();
    }
    session.streams.Print(
        Stream::Output,
        fmt::format("{} bytes, {} records, {}{} bytes read, {} problems\n", bytes, report.records,
                    script->requests > 0 ? fmt::format("{} DDC/CI requests, ", script->requests)
                                         : "",
                    report.outputBytes, report.problemCount));
    return report.problems.empty() ? kExitSuccess : kExitFailed;
}

ExitStatus RunScriptCommand(const ScriptOptions &options, Session &session) {
    if (!options.UsesBus()) {
        return session.Fail(kExitUsage, "no communication library: use --comm LIB or --virtual");
    }
    return RunInCommProcess(session, OutputOf::Process,
                            [&] { return CheckAndRun(options, session); });
}

} // namespace ispctl
