#include "doctor/SearchCheck.h"

#include <algorithm>
#include <fmt/format.h>

#include "doctor/FileState.h"
#include "doctor/Probe.h"
#include "doctor/SearchProbe.h"

namespace ispctl::doctor {
namespace {

namespace fs = std::filesystem;

// What the library prints ends in a newline, or not.
std::string OneLine(std::string text) {
    text.erase(text.find_last_not_of(" \n") + 1);
    std::replace(text.begin(), text.end(), '\n', ';');
    return text.empty() ? "no reason is given" : text;
}

// RETURNS whether the library may open every candidate: a FIFO would block it.
bool CheckCandidateFiles(const Places &places, Report &report) {
    bool harmless = true;
    std::error_code ignored;
    fs::directory_iterator at(places.directory, ignored);
    for (; !ignored && at != fs::directory_iterator(); at.increment(ignored)) {
        const std::string name = at->path().filename().string();
        if (!name.ends_with(".bin") || name == ".bin") {
            continue;
        }
        const FileState state = StateOf(at->path());
        if (state.kind == FileState::Kind::Directory || state.kind == FileState::Kind::Special) {
            harmless = false;
            report.Add(FindingId::CandidateNotFile, at->path().string(), state.description);
        }
    }
    return harmless;
}

// The names that a search accepts.
std::vector<std::string> AcceptedBy(const std::string &search, const ProbeOutcome &outcome) {
    std::vector<std::string> names;
    for (const Notice &notice : outcome.notices) {
        if (notice.size() == 4 && notice[0] == "candidate" && notice[2] == search &&
            notice[3].empty()) {
            names.push_back(notice[1]);
        }
    }
    return names;
}

void ReportSearch(const Notice &notice, const ProbeOutcome &outcome, Report &report) {
    const std::string &search = notice[1];
    const auto accepted = AcceptedBy(search, outcome);
    if (notice[2] == "found") {
        report.Add(FindingId::SearchFinds, "", search,
                   accepted.size() == 1 ? accepted.front() : "a file");
    } else {
        report.Add(FindingId::SearchFails, "", search, OneLine(notice[3]));
    }
}

void ReportCandidate(const Notice &notice, const Places &places, Report &report) {
    const std::string file = (places.directory / notice[1]).string();
    report.Add(notice[3].empty() ? FindingId::CandidateAccepted : FindingId::CandidateRejected,
               file, notice[2], notice[3]);
}

void ReportAll(const ProbeOutcome &outcome, const Places &places, Report &report) {
    for (const Notice &notice : outcome.notices) {
        if (notice.front() == "search" && notice.size() == 4) {
            ReportSearch(notice, outcome, report);
        } else if (notice.front() == "candidate" && notice.size() == 4) {
            ReportCandidate(notice, places, report);
        } else if (notice.front() == "candidates" && notice.size() == 2) {
            const std::size_t count = std::stoul(notice[1]);
            if (count > kMostCandidates) {
                report.Add(FindingId::CandidateMore, places.directory.string(),
                           std::to_string(count - kMostCandidates));
            }
        }
    }
}

} // namespace

bool CheckSearches(const Places &places, Report &report) {
    // An action without firmware lets the library search without opening what it finds.
    const char *action = CheckCandidateFiles(places, report) ? "isp" : "resetmcu";
    const ProbeOutcome outcome =
        RunProbe({kProbeCommand, "search", places.library.string(), action});
    if (outcome.interrupted) {
        return false;
    }
    if (outcome.Find("library-loaded") == nullptr) {
        report.Add(FindingId::SearchSkipped, "", "the library cannot be loaded");
        return true;
    }
    if (const Notice *missing = outcome.Find("no-search"); missing != nullptr) {
        report.Add(FindingId::SearchSkipped, "",
                   fmt::format("the library lacks {}", missing->back()));
    }
    ReportAll(outcome, places, report);
    if (!outcome.end.empty()) {
        report.Add(FindingId::LibraryEnds, places.library.string(), outcome.end);
    }
    return true;
}

} // namespace ispctl::doctor
