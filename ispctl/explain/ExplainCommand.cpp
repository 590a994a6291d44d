#include "explain/ExplainCommand.h"

#include <fmt/format.h>
#include <optional>

#include "FileIo.h"
#include "OutputNames.h"
#include "RunWire.h"
#include "Utf8.h"
#include "explain/ExplainHtml.h"
#include "explain/ExplainJson.h"
#include "explain/ExplainLine.h"
#include "explain/ExplainRelay.h"
#include "explain/ExplainText.h"
#include "explain/FlashSvg.h"
#include "explain/FlashText.h"
#include "explain/StagedFiles.h"

namespace ispctl {
namespace {

/// The bytes of a record that is in a file; its size tells which record it is.
struct RecordFile {
    RecordKind record;
    std::string bytes;
};

std::optional<RecordFile> ReadRecord(const std::string &name, std::string &error) {
    const std::size_t command = SizeOf(RecordKind::Command);
    const std::size_t sign = SizeOf(RecordKind::Sign);
    InputFault fault;
    auto bytes = name == "-"
                     ? ReadInput(InputSource::StandardInput(), "standard input", command, fault)
                     : ReadInput(InputSource::Open(name), name, command, fault);
    if (!bytes) {
        error = std::move(fault.text);
        return std::nullopt;
    }
    if (bytes->size() != command && bytes->size() != sign) {
        error = fmt::format("{} is not a record: it has {} bytes, a command record has {}, a sign "
                            "record {}",
                            name, bytes->size(), command, sign);
        return std::nullopt;
    }
    return RecordFile{bytes->size() == command ? RecordKind::Command : RecordKind::Sign,
                      std::move(*bytes)};
}

std::optional<Explanation> Decode(const ExplainOptions &options, std::string &error) {
    auto file = ReadRecord(options.decode, error);
    if (!file) {
        return std::nullopt;
    }
    Explanation explanation;
    if (file->record == RecordKind::Command) {
        explanation.command = std::move(file->bytes);
        explanation.banks = BankUsesOf(explanation.command);
        explanation.flash = DrawFlash(explanation.banks);
    } else {
        explanation.sign = std::move(file->bytes);
    }
    return explanation;
}

bool Compare(const ExplainOptions &options, Explanation &explanation, std::string &error) {
    if (options.diff.empty()) {
        return true;
    }
    const auto file = ReadRecord(options.diff, error);
    if (!file) {
        return false;
    }
    for (const auto &[record, bytes] : RecordsOf(explanation)) {
        if (record == file->record) {
            explanation.comparedFile = options.diff;
            explanation.differences = CompareRecords(record, bytes, file->bytes);
            return true;
        }
    }
    error = fmt::format("{} cannot be compared: there is no {} record here", options.diff,
                        NameOf(file->record));
    return explanation.library.empty() ? false : !explanation.accepted;
}

/// The name of a file to write; empty if it is standard output.
std::string FileOf(const std::string &name) {
    return name == "-" ? "" : name;
}

/// RETURNS why the options contradict each other; empty if they do not.
std::string UsageError(const ExplainOptions &options) {
    if (options.decode.empty() == options.arguments.empty()) {
        return options.decode.empty() ? "no arguments for the library; see ispctl explain --help"
                                      : "--decode shows a file; it cannot be combined with "
                                        "arguments for the library";
    }
    if (options.record == "-") {
        return "--record writes FILE and FILE.sign, so it cannot write to standard output: name a "
               "file (./- is one named -)";
    }
    if (options.svg == "-" && options.html == "-") {
        return "--svg - and --html - both write to standard output: name a file for one of them";
    }
    return options.OutputIsFile() && options.json
               ? "--json writes to standard output, too: name a file for --svg and --html"
               : "";
}

bool AreOutputsFree(const ExplainOptions &options, std::string &error) {
    const std::string taken =
        FindTakenOutput({FileOf(options.svg), FileOf(options.html), options.record,
                         options.record.empty() ? "" : options.record + ".sign"},
                        options.arguments);
    if (!taken.empty()) {
        error =
            fmt::format("{} is not written: the command line or another option names it", taken);
    }
    return taken.empty();
}

std::string SvgFile(const Explanation &explanation) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" +
           FlashSvg(explanation.flash, SvgParts::GridAndLegend);
}

bool WriteFiles(const ExplainOptions &options, const Explanation &explanation, std::string &error) {
    if (!AreOutputsFree(options, error)) {
        return false;
    }
    StagedFiles files;
    const auto add = [&](const std::string &name, const std::string &bytes) {
        return name.empty() || bytes.empty() || files.Add(name, bytes, error);
    };
    const std::string sign = options.record.empty() ? "" : options.record + ".sign";
    return add(FileOf(options.svg), SvgFile(explanation)) &&
           add(FileOf(options.html), ExplainHtml(explanation)) &&
           add(options.record, explanation.command) && add(sign, explanation.sign) &&
           files.Commit(error);
}

/// What goes to standard output.
std::string OutputOf(const ExplainOptions &options, const Explanation &explanation,
                     const Session &session) {
    if (options.OutputIsFile()) {
        return options.svg == "-" ? SvgFile(explanation) : ExplainHtml(explanation);
    }
    const Charset charset = session.streams.TheCharset();
    return options.json ? ExplainJson(explanation, charset)
                        : ExplainText(explanation, {charset, WidthOfExplanation(session)});
}

/// Shows text that may hold the colours of FlashText: the library's process sends it, because only
/// the process at the terminal knows whether there is one.
void Show(const std::string &text, Session &session) {
    if (session.link == nullptr) {
        ShowExplanation(text, session.streams);
        return;
    }
    const std::wstring wide = WideFromUtf8(text).value_or(L"");
    for (std::size_t i = 0; i < wide.size(); i += kMaxMessage) {
        const std::wstring part = wide.substr(i, kMaxMessage);
        session.link->Send(FrameKind::Message, {reinterpret_cast<const char *>(part.data()),
                                                part.size() * sizeof(wchar_t)});
    }
}

ExitStatus Present(const ExplainOptions &options, Explanation explanation, Session &session) {
    std::string error;
    explanation.choice = options.all ? FieldChoice::All : FieldChoice::NotDefault;
    if (!Compare(options, explanation, error) || !WriteFiles(options, explanation, error)) {
        return session.Fail(kExitFileError, error);
    }
    Show(OutputOf(options, explanation, session), session);
    const bool ofRefusedLine = !explanation.library.empty() && !explanation.accepted;
    if (ofRefusedLine && !(options.record.empty() && options.diff.empty())) {
        session.streams.PrintMessage("the line is refused, so no record is passed to a plug-in: "
                                     "nothing was written for --record or compared for --diff");
    }
    return StatusOf(explanation);
}

ExitStatus ExplainInLibraryProcess(const ExplainOptions &options, Session &session) {
    if (!session.link->Send(FrameKind::Ready, "")) {
        return kExitUsage;
    }
    ExitStatus status = kExitUsage;
    try {
        std::string error;
        auto explanation = ExplainLine(options, error);
        status = explanation ? Present(options, std::move(*explanation), session)
                             : session.Fail(kExitUsage, error);
    } catch (const std::exception &reason) {
        session.Fail(status, reason.what());
    }
    session.link->Send(FrameKind::Result, BytesOf(RunResult{status, 0, 1}));
    return status;
}

} // namespace

ExitStatus ExplainCommand(const ExplainOptions &options, Session &session) {
    if (const std::string error = UsageError(options); !error.empty()) {
        return session.Fail(kExitUsage, error);
    }
    if (!options.decode.empty()) {
        std::string error;
        auto explanation = Decode(options, error);
        return explanation ? Present(options, std::move(*explanation), session)
                           : session.Fail(kExitFileError, error);
    }
    return session.link == nullptr ? RelayExplanation(options, session)
                                   : ExplainInLibraryProcess(options, session);
}

} // namespace ispctl
