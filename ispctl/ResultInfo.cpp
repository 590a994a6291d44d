#include "ResultInfo.h"

#include <algorithm>
#include <csignal>
#include <fmt/format.h>
#include <sstream>
#include <sys/wait.h>

#include "scaler_isp/abi/ResultCodes.h"

namespace ispctl {
namespace {

struct SignalName {
    int signal;
    const char *name;
};

constexpr SignalName kSignals[] = {
    {SIGABRT, "SIGABRT"}, {SIGALRM, "SIGALRM"}, {SIGBUS, "SIGBUS"},   {SIGFPE, "SIGFPE"},
    {SIGHUP, "SIGHUP"},   {SIGILL, "SIGILL"},   {SIGINT, "SIGINT"},   {SIGKILL, "SIGKILL"},
    {SIGPIPE, "SIGPIPE"}, {SIGPROF, "SIGPROF"}, {SIGQUIT, "SIGQUIT"}, {SIGSEGV, "SIGSEGV"},
    {SIGSYS, "SIGSYS"},   {SIGTERM, "SIGTERM"}, {SIGTRAP, "SIGTRAP"}, {SIGUSR1, "SIGUSR1"},
    {SIGUSR2, "SIGUSR2"}, {SIGXCPU, "SIGXCPU"}, {SIGXFSZ, "SIGXFSZ"},
};

// The library returns -1 for a rejected line and for a failure inside a call; a plug-in may also
// return -1 or throw.
constexpr std::string_view kRefused = "the command line was refused";
constexpr std::string_view kGaveUp =
    "the plug-in failed or threw an exception, or a call inside the library failed";

std::string DescribeEnd(const RunOutcome &outcome) {
    switch (outcome.end) {
    case RunEnd::Exit:
        return fmt::format("the plug-in ended the process (exit status {})", outcome.number);
    case RunEnd::Signal:
        return fmt::format("{} ended the process of the library and its plug-ins",
                           NameOfSignal(outcome.number));
    case RunEnd::Interrupted:
        return outcome.inBackup ? "stopped by a signal during the backup"
                                : "stopped by the second Ctrl-C";
    case RunEnd::Unheard:
        return "the reports of the library's process could not be read";
    default:
        return "";
    }
}

/// One row of abi/ResultCodes.h.
struct CodeRow {
    int code;
    std::string_view name;
    std::string_view meaning;
    std::string_view remedy;
};

constexpr CodeRow kCodes[] = {
#define ISPCTL_RESULT_CODE(NAME, VALUE, MEANING, CAUSE, REMEDY) {VALUE, #NAME, MEANING, REMEDY},
    SCALER_ISP_RESULT_CODES(ISPCTL_RESULT_CODE)
#undef ISPCTL_RESULT_CODE
};

const CodeRow *RowOf(int code) {
    const auto *row = std::find_if(std::begin(kCodes), std::end(kCodes),
                                   [code](const CodeRow &r) { return r.code == code; });
    return row != std::end(kCodes) ? row : nullptr;
}

/// The row of a code that the library formed itself; null for one of a plug-in.
const CodeRow *RowOf(const RunOutcome &outcome) {
    return outcome.fromLibrary && outcome.code ? RowOf(*outcome.code) : nullptr;
}

std::string MeaningOfCode(const RunOutcome &outcome) {
    if (outcome.code == SCALER_ISP_REFUSED && !outcome.pluginWords) {
        return std::string(outcome.pluginCalled ? kGaveUp : kRefused);
    }
    if (const CodeRow *row = RowOf(outcome)) {
        return std::string(row->meaning);
    }
    return outcome.pluginWords ? outcome.pluginWords->meaning
                               : "error code of the plug-in (see its documentation)";
}

/// Where programming stopped, as far as progress tells.
std::string AdviceAfterStop(const RunOutcome &outcome) {
    constexpr const char *kRepeat =
        "run the same command again before the device is switched off or disconnected";
    const int percent = std::clamp(outcome.percent.value_or(0), 0, 100);
    if (outcome.banks.empty() || percent == 100) {
        return kRepeat;
    }
    const std::size_t index = outcome.banks.size() * static_cast<std::size_t>(percent) / 100;
    // A plug-in may report a bank as soon as it is written, or only after it is verified.
    const std::string next =
        index + 1 < outcome.banks.size() ? fmt::format(" or {}", outcome.banks[index + 1]) : "";
    return fmt::format("after {} % of {} banks, bank {}{} may be half written; {}", percent,
                       outcome.banks.size(), outcome.banks[index], next, kRepeat);
}

} // namespace

std::string_view NameOfCode(const RunOutcome &outcome) {
    const CodeRow *row = RowOf(outcome);
    if (row == nullptr && outcome.code == SCALER_ISP_REFUSED) {
        return "SCALER_ISP_REFUSED";
    }
    return row != nullptr ? row->name : std::string_view();
}

std::string_view NameInTable(int code) {
    const CodeRow *row = RowOf(code);
    return row != nullptr ? row->name : std::string_view();
}

std::vector<std::string> AdviceAfter(const RunOutcome &outcome) {
    std::vector<std::string> advice;
    if (outcome.IsSuccess()) {
        return advice;
    }
    std::istringstream lines(outcome.detail);
    for (std::string line; std::getline(lines, line);) {
        advice.push_back(line);
    }
    if (outcome.end != RunEnd::Returned && !outcome.inBackup) {
        advice.push_back(AdviceAfterStop(outcome));
    } else if (outcome.pluginWords && !outcome.pluginWords->remedy.empty()) {
        advice.push_back(outcome.pluginWords->remedy);
    } else if (const CodeRow *row = RowOf(outcome); row != nullptr && outcome.detail.empty()) {
        advice.emplace_back(row->remedy);
    }
    return advice;
}

std::string FormatResultCode(int code) {
    return fmt::format("0x{:X}", static_cast<unsigned>(code));
}

std::string NameOfSignal(int signal) {
    for (const SignalName &row : kSignals) {
        if (row.signal == signal) {
            return row.name;
        }
    }
    return fmt::format("signal {}", signal);
}

std::string DescribeStatus(int status) {
    return WIFSIGNALED(status) ? fmt::format(" ({})", NameOfSignal(WTERMSIG(status)))
                               : fmt::format(" (exit status {})", WEXITSTATUS(status));
}

std::string MeaningOf(const RunOutcome &outcome) {
    if (!outcome.problem.empty()) {
        return outcome.problem;
    }
    const std::string end = DescribeEnd(outcome);
    if (!outcome.code) {
        return end;
    }
    const std::string meaning = MeaningOfCode(outcome);
    if (end.empty()) {
        return meaning;
    }
    return (*outcome.code == 0 ? "the library returned success" : meaning) + "; after that " + end;
}

std::string_view DeviceAfter(const RunOutcome &outcome) {
    if (outcome.inBackup) {
        return outcome.end == RunEnd::Interrupted ? "nothing was programmed"
                                                  : "the backup failed, so nothing was programmed";
    }
    if (!outcome.pluginCalled) {
        return "nothing was done";
    }
    return outcome.deviceUntouched ? "the device was not accessed"
                                   : "the state of the device is unknown";
}

std::string SentenceOf(const RunOutcome &outcome) {
    if (outcome.IsSuccess()) {
        return "success";
    }
    std::string code;
    if (outcome.code && *outcome.code != 0) {
        code = *outcome.code == -1 ? " with -1"
                                   : fmt::format(" with {}", FormatResultCode(*outcome.code));
    }
    const bool inside = outcome.percent && *outcome.percent < 100;
    return fmt::format("failed{}{}: {}; {}", code,
                       inside ? fmt::format(" at {} %", *outcome.percent) : "", MeaningOf(outcome),
                       DeviceAfter(outcome));
}

} // namespace ispctl
