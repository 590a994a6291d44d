#include "comm/CommProcess.h"

#include <exception>
#include <fmt/format.h>

#include "ChildProcess.h"
#include "LibraryRun.h"
#include "RelayedText.h"
#include "ResultInfo.h"
#include "RunWire.h"

namespace ispctl {
namespace {

/// The output of the work comes as messages, byte for byte.
class WorkOutput : public RelayedText {
  public:
    using RelayedText::RelayedText;

    bool HasWritten() const {
        return m_hasWritten;
    }
    void OnMessage(std::wstring_view text) override {
        m_hasWritten = true;
        Streams().Write(Stream::Output, std::string(text.begin(), text.end()));
    }
    void OnConsole(Stream, std::string_view bytes) override {
        RelayedText::OnConsole(Stream::Error, bytes);
    }

  private:
    bool m_hasWritten = false;
};

void SendOutput(ParentLink &link, std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size(); i += kMaxMessage) {
        std::wstring wide;
        for (const char byte : bytes.substr(i, kMaxMessage)) {
            wide += static_cast<unsigned char>(byte);
        }
        link.Send(FrameKind::Message,
                  {reinterpret_cast<const char *>(wide.data()), wide.size() * sizeof(wchar_t)});
    }
}

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

ExitStatus Relay(Session &session, OutputOf output) {
    const auto ordering = ConsoleStreams::ShareOneTarget() ? ChildProcess::Ordering::OnePipe
                                                           : ChildProcess::Ordering::TwoPipes;
    ChildProcess child(session.arguments, ordering, RunSignals::Stop::AtFirst);
    LibraryRun run(child, session.streams);
    run.WaitForFrame();
    RelayedText all(session.streams);
    WorkOutput work(session.streams);
    RelayedText &view = output == OutputOf::Work ? work : all;
    const RunOutcome outcome = run.Run({&view});
    run.NotifyEnd(view, outcome, kExitSuccess);
    // A document that was shown is the only one.
    session.json = session.json && !work.HasWritten();
    constexpr std::string_view kStage = "call";
    if (outcome.end == RunEnd::Interrupted) {
        return session.json ? session.Fail(kExitInterrupted,
                                           "stopped; the state of the device is unknown", kStage)
                            : kExitInterrupted;
    }
    if (outcome.end != RunEnd::Returned) {
        return session.Fail(StatusOfOutcome(outcome),
                            fmt::format("failed: {} while the communication library was in use; "
                                        "the state of the device is unknown",
                                        DescribeEnd(outcome)),
                            kStage);
    }
    if (!run.Problem().empty()) {
        return session.Fail(kExitFileError, "the output is incomplete: " + run.Problem(), kStage);
    }
    return static_cast<ExitStatus>(outcome.code.value_or(kExitFailed));
}

} // namespace

ExitStatus RunInCommProcess(Session &session, OutputOf output,
                            const std::function<ExitStatus()> &work) {
    if (session.link == nullptr) {
        return Relay(session, output);
    }
    if (output == OutputOf::Work) {
        session.streams.DivertOutput(
            [&session](std::string_view bytes) { SendOutput(*session.link, bytes); });
    }
    if (!session.link->Send(FrameKind::Ready, "")) {
        return kExitUsage;
    }
    ExitStatus status = kExitFailed; // the bus may have been used by then
    try {
        status = work();
    } catch (const std::exception &error) {
        session.Fail(status, error.what());
    }
    session.link->Send(FrameKind::Result, BytesOf(RunResult{status, 1, 1}));
    return status;
}

} // namespace ispctl
