#include "LibraryReason.h"

#include <algorithm>
#include <fmt/format.h>
#include <vector>

#include "LibraryPaths.h"
#include "doctor/LibraryCheck.h"

namespace ispctl {
namespace {

using Paths = std::vector<std::filesystem::path>;

std::string Listed(const Paths &paths) {
    std::string text;
    for (const auto &path : paths) {
        // Two directories of an installation can be the same one.
        if (text.find(path.string()) == std::string::npos) {
            text += (text.empty() ? "" : " and ") + path.string();
        }
    }
    return text;
}

std::string ReasonIn(const doctor::Report &report) {
    const doctor::Finding &finding = report.Findings().front();
    std::string text =
        fmt::format("cannot open the library: {}; {}", MessageOf(finding), RemedyOf(finding));
    if (finding.id == doctor::FindingId::LibraryMissing) {
        text +=
            fmt::format("; without --lib it is looked for as {}, with --virtual as {}",
                        Listed(InstalledLibraryCandidates()), Listed(VirtualLibraryCandidates()));
    }
    return text;
}

} // namespace

std::string WhyNotLoadable(const std::filesystem::path &file) {
    doctor::Report report;
    std::string ignored;
    return doctor::CheckLoadable(file.string(), doctor::FindingsOfLibrary(), report, ignored)
               ? ""
               : ReasonIn(report);
}

std::string WordsOfLoader(const std::filesystem::path &file, const std::string &text) {
    doctor::Report report;
    std::string line = text;
    std::replace(line.begin(), line.end(), '\n', ' ');
    doctor::ReportLoader(file.string(), line, doctor::FindingsOfLibrary(), report);
    return ReasonIn(report);
}

} // namespace ispctl
