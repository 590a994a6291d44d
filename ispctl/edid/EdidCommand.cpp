#include "edid/EdidCommand.h"

#include <algorithm>
#include <fmt/format.h>

#include "comm/CommProcess.h"
#include "edid/EdidBus.h"
#include "edid/EdidJson.h"
#include "edid/EdidReport.h"
#include "edid/EdidSource.h"
#include "edid/EdidView.h"
#include "explain/StagedFiles.h"

namespace ispctl {
namespace {

constexpr const char *kStandardOutput = "-";

edid::FormOption FormOf(const EdidOptions &options) {
    return options.form == "binary" ? edid::FormOption::Binary
           : options.form == "hex"  ? edid::FormOption::Hex
           : options.form == "list" ? edid::FormOption::List
                                    : edid::FormOption::Detect;
}

/// RETURNS why the options contradict each other; empty if they do not.
std::string UsageError(const EdidOptions &options) {
    if (options.files.empty() == !options.UsesBus()) {
        return options.UsesBus() ? "name either FILE or a communication library"
                                 : "name FILE, - for standard input, or read a display with "
                                   "--comm LIB; see ispctl edid --help";
    }
    if (options.fixChecksum && options.output.empty()) {
        return "--fix-checksum needs -o OUT: the input is not changed";
    }
    if (options.output == kStandardOutput && (options.json || options.text)) {
        return fmt::format("-o - writes the bytes to standard output, where {} writes something "
                           "else: name a file for -o",
                           options.json ? "--json" : "--text");
    }
    if (!options.output.empty() && options.files.size() > 1) {
        return "-o writes one EDID: name one FILE";
    }
    return "";
}

/// Corrects the checksum of each whole block and reports it.
void FixChecksums(edid::Bytes &bytes, const std::string &file, Session &session) {
    for (std::size_t number = 0; number < edid::WholeBlocks(bytes); ++number) {
        const std::uint8_t expected = edid::ExpectedChecksum(edid::BlockOf(bytes, number));
        std::uint8_t &checksum = bytes[number * edid::kBlockBytes + edid::kChecksumOffset];
        if (checksum != expected) {
            session.streams.Print(
                Stream::Error,
                fmt::format("{}: block {}: checksum 0x{:02X} corrected to 0x{:02X}\n", file, number,
                            checksum, expected));
            checksum = expected;
        }
    }
}

edid::Report ReadReport(const EdidOptions &options, const std::string &file, Session &session) {
    edid::Finding problem;
    const auto content = edid::ReadSource(file, problem);
    if (!content) {
        return edid::MakeUnreadable(file, std::move(problem));
    }
    edid::Input input = edid::ReadInput(*content, FormOf(options));
    // Only what is an EDID is corrected: in anything else these bytes are no checksums.
    if (options.fixChecksum && edid::HasBaseBlock(input.bytes)) {
        FixChecksums(input.bytes, file, session);
    }
    return edid::MakeReport(file, std::move(input));
}

/// Writes the bytes to the file of -o. RETURNS kExitSuccess, or another status with a message.
/// REQUIRES: the report has facts.
ExitStatus WriteOutput(const EdidOptions &options, const edid::Report &report, Session &session) {
    const std::string bytes(report.input.bytes.begin(), report.input.bytes.end());
    if (options.output == kStandardOutput) {
        session.streams.Write(Stream::Output, bytes);
        return kExitSuccess;
    }
    std::string error;
    StagedFiles staged;
    if (!staged.Add(options.output, bytes, error) || !staged.Commit(error)) {
        return session.Fail(kExitFileError, error);
    }
    return kExitSuccess;
}

/// Facts first, then problems: the facts are right even if a checksum is not.
void ShowReport(const EdidOptions &options, const edid::Report &report, Session &session) {
    if (!report.HasFacts()) {
        session.streams.PrintMessage(report.Reason());
        return;
    }
    if (options.text) {
        const std::string head = options.files.size() > 1 ? "// file " + report.file + "\n" : "";
        session.streams.Print(Stream::Output, head + edid::WriteByteList(report.input.bytes));
    } else if (options.output != kStandardOutput) {
        const std::string head = options.files.size() > 1 ? "== " + report.file + "\n" : "";
        session.streams.Print(Stream::Output, head + edid::WriteView(report));
    }
    for (const edid::Finding &problem : report.problems) {
        session.streams.Print(Stream::Error, fmt::format("{}: {}\n", report.file, problem.Text()));
    }
    if (!report.problems.empty()) {
        session.streams.PrintMessage("invalid EDID");
    }
}

ExitStatus ShowReports(const EdidOptions &options, const std::vector<edid::Report> &reports,
                       Session &session) {
    ExitStatus status = kExitSuccess;
    if (options.json) {
        session.streams.Write(Stream::Output, edid::WriteJson(reports));
    }
    for (const edid::Report &report : reports) {
        status = std::max(status, report.Status());
        if (!options.json) {
            ShowReport(options, report, session);
        } else if (!report.HasFacts()) {
            session.streams.PrintMessage(report.Reason());
        }
    }
    return status;
}

ExitStatus WriteAndShow(const EdidOptions &options, const std::vector<edid::Report> &reports,
                        Session &session) {
    // The bytes come first: whoever reads the facts may close the pipe.
    const bool isWanted = !options.output.empty();
    const edid::Report &report = reports.front();
    const ExitStatus written =
        isWanted && report.HasFacts() ? WriteOutput(options, report, session) : kExitSuccess;
    const ExitStatus shown = ShowReports(options, reports, session);
    if (isWanted && !report.HasFacts()) {
        session.Fail(shown, fmt::format("{} is not written: no EDID was read", options.output));
    }
    return std::max(written, shown);
}

ExitStatus ReadAndShow(const EdidOptions &options, Session &session) {
    ExitStatus status = kExitSuccess;
    auto input = ReadBus(options, session, status);
    if (!input) {
        return status;
    }
    session.json = false; // the document says it
    const std::string name = options.virtualScaler ? "virtual bus" : options.comm;
    if (status != kExitSuccess) {
        // Part of an EDID is worth a look, but must not replace a file that has all of it.
        if (!options.output.empty()) {
            session.Fail(status, fmt::format("{} is not written: the EDID was not read completely",
                                             options.output));
        }
        return std::max(status,
                        ShowReports(options, {edid::MakeReport(name, std::move(*input))}, session));
    }
    if (options.fixChecksum && edid::HasBaseBlock(input->bytes)) {
        FixChecksums(input->bytes, name, session);
    }
    return WriteAndShow(options, {edid::MakeReport(name, std::move(*input))}, session);
}

} // namespace

ExitStatus EdidCommand(const EdidOptions &options, Session &session) {
    if (const std::string error = UsageError(options); !error.empty()) {
        session.json = options.json;
        return session.Fail(kExitUsage, error);
    }
    if (options.UsesBus()) {
        session.json = options.json; // until there is a document
        const bool isForPrograms =
            options.json || options.text || options.output == kStandardOutput;
        return RunInCommProcess(session, isForPrograms ? OutputOf::Work : OutputOf::Process,
                                [&] { return ReadAndShow(options, session); });
    }
    std::vector<edid::Report> reports;
    for (const std::string &file : options.files) {
        reports.push_back(ReadReport(options, file, session));
    }
    return WriteAndShow(options, reports, session);
}

} // namespace ispctl
