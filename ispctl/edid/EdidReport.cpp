#include "edid/EdidReport.h"

#include <algorithm>

#include "edid/Problems.h"

namespace ispctl::edid {
namespace {

/// What may explain a problem: the form, unless the user knows it or there was nothing to read.
std::string HowItWasRead(const Input &input) {
    const bool isEmpty = !input.problems.empty() && input.problems.front().id == FindingId::NoBytes;
    if (input.source == FormSource::Option || isEmpty) {
        return "";
    }
    const std::string better =
        input.betterForm == nullptr
            ? ""
            : fmt::format("; with --form {} it is an EDID", input.betterForm);
    return fmt::format(" (read as {}: {}{})", WordOf(input.form), MeaningOf(input.form), better);
}

} // namespace

bool Report::IsReadable() const {
    return std::none_of(problems.begin(), problems.end(), [](const Finding &problem) {
        return problem.id == FindingId::Unreadable || problem.id == FindingId::TooLarge;
    });
}

ExitStatus Report::Status() const {
    if (!IsReadable()) {
        return kExitFileError;
    }
    return problems.empty() ? kExitSuccess : kExitFailed;
}

std::string Report::Reason() const {
    const std::string problem = problems.empty() ? "no EDID" : problems.front().Text();
    if (!IsReadable()) {
        return problem;
    }
    const bool isSyntax = !input.problems.empty();
    return fmt::format("{}: {}{}{}", file, isSyntax ? "" : "not an EDID: ", problem,
                       HowItWasRead(input));
}

Report MakeReport(std::string file, Input input) {
    Report report;
    report.file = std::move(file);
    report.input = std::move(input);
    report.problems =
        report.input.problems.empty() ? ProblemsOf(report.input.bytes) : report.input.problems;
    report.remarks = report.input.remarks;
    if (report.HasFacts()) {
        const Findings remarks = RemarksOf(report.input.bytes);
        report.remarks.insert(report.remarks.end(), remarks.begin(), remarks.end());
    }
    return report;
}

Report MakeUnreadable(std::string file, Finding problem) {
    Report report;
    report.file = std::move(file);
    report.problems.push_back(std::move(problem));
    return report;
}

} // namespace ispctl::edid
