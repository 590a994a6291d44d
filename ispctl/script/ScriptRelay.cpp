#include "script/ScriptRelay.h"

#include <fmt/format.h>

#include "ChildProcess.h"
#include "LibraryRun.h"
#include "RelayedText.h"
#include "ResultInfo.h"

namespace ispctl {
namespace {

std::string DescribeEnd(const RunOutcome &outcome) {
    switch (outcome.end) {
    case RunEnd::Signal:
        return NameOfSignal(outcome.number) + " ended the process";
    case RunEnd::Unheard:
        return "the reports of the process could not be read";
    default:
        return fmt::format("the process ended (exit status {})", outcome.number);
    }
}

} // namespace

ExitStatus RelayScript(Session &session) {
    const auto ordering = ConsoleStreams::ShareOneTarget() ? ChildProcess::Ordering::OnePipe
                                                           : ChildProcess::Ordering::TwoPipes;
    ChildProcess child(session.arguments, ordering, RunSignals::Stop::AtFirst);
    LibraryRun run(child, session.streams);
    run.WaitForFrame();
    RelayedText view(session.streams);
    const RunOutcome outcome = run.Run({&view});
    run.NotifyEnd(view, outcome, kExitSuccess);
    if (outcome.end == RunEnd::Interrupted) {
        return kExitInterrupted;
    }
    if (outcome.end != RunEnd::Returned) {
        return session.Fail(StatusOfOutcome(outcome),
                            fmt::format("failed: {} while the communication library was in use; "
                                        "the state of the device is unknown",
                                        DescribeEnd(outcome)));
    }
    if (!run.Problem().empty()) {
        return session.Fail(kExitFileError, "the output is incomplete: " + run.Problem());
    }
    return static_cast<ExitStatus>(outcome.code.value_or(kExitFailed));
}

} // namespace ispctl
