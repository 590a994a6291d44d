#include "comm/CommProcess.h"

#include <exception>
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

ExitStatus Relay(Session &session) {
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

} // namespace

ExitStatus RunInCommProcess(Session &session, const std::function<ExitStatus()> &work) {
    if (session.link == nullptr) {
        return Relay(session);
    }
    if (!session.link->Send(FrameKind::Ready, "")) {
        return kExitUsage;
    }
    ExitStatus status = kExitUsage;
    try {
        status = work();
    } catch (const std::exception &error) {
        session.Fail(status, error.what());
    }
    session.link->Send(FrameKind::Result, BytesOf(RunResult{status, 1, 1}));
    return status;
}

} // namespace ispctl
