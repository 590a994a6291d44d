#include "script/ScriptRelay.h"

#include <fmt/format.h>

#include "ChildProcess.h"
#include "LibraryRun.h"
#include "ResultInfo.h"

namespace ispctl {
namespace {

/// Shows the output of the library's process only: a script reports no progress and no messages.
class TextView : public RunObserver {
  public:
    explicit TextView(ConsoleStreams &streams)
        : m_streams(streams), m_output(streams.TheCharset()), m_error(streams.TheCharset()) {}

    void OnProgress(int) override {}
    void OnMessage(std::wstring_view) override {}
    void OnConsole(Stream stream, std::string_view bytes) override {
        m_streams.Write(stream, (stream == Stream::Output ? m_output : m_error).Add(bytes));
    }
    void OnEnd(const RunOutcome &, ExitStatus) override {
        m_streams.Write(Stream::Output, m_output.Finish());
        m_streams.Write(Stream::Error, m_error.Finish());
    }

  private:
    ConsoleStreams &m_streams;
    VisibleStream m_output;
    VisibleStream m_error;
};

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
    TextView view(session.streams);
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
