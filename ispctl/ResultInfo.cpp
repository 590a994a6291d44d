#include "ResultInfo.h"

#include <csignal>
#include <fmt/format.h>
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
        return "stopped by the second Ctrl-C";
    case RunEnd::Unheard:
        return "the reports of the library's process could not be read";
    default:
        return "";
    }
}

} // namespace

ResultInfo DescribeResult(int code, bool pluginCalled) {
    if (code == SCALER_ISP_REFUSED) {
        return {"SCALER_ISP_REFUSED", pluginCalled ? kGaveUp : kRefused};
    }
    switch (code) {
#define ISPCTL_RESULT_CASE(NAME, VALUE, MEANING, CAUSE, REMEDY)                                    \
    case VALUE:                                                                                    \
        return {#NAME, MEANING};
        SCALER_ISP_RESULT_CODES(ISPCTL_RESULT_CASE)
#undef ISPCTL_RESULT_CASE
    default:
        return {"", "error code of the plug-in (see its documentation)"};
    }
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
    const std::string end = DescribeEnd(outcome);
    if (!outcome.code) {
        return end;
    }
    const auto meaning = std::string(DescribeResult(*outcome.code, outcome.pluginCalled).meaning);
    if (end.empty()) {
        return meaning;
    }
    return (*outcome.code == 0 ? "the library returned success" : meaning) + "; after that " + end;
}

std::string_view DeviceAfter(const RunOutcome &outcome) {
    return outcome.pluginCalled ? "the state of the device is unknown" : "nothing was done";
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
