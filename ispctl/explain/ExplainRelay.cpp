#include "explain/ExplainRelay.h"

#include <cstdlib>
#include <fmt/format.h>

#include "ChildProcess.h"
#include "LibraryRun.h"
#include "ResultInfo.h"
#include "Utf8.h"
#include "explain/FlashText.h"

namespace ispctl {
namespace {

/// Shows the explanation, which comes as messages, and what the library prints of its own accord.
class ExplanationView : public RunObserver {
  public:
    ExplanationView(const ExplainOptions &options, ConsoleStreams &streams)
        : m_streams(streams), m_output(streams.TheCharset()), m_error(streams.TheCharset()),
          m_json(options.json) {}

    void OnProgress(int) override {}
    void OnMessage(std::wstring_view text) override {
        ShowExplanation(EscapeWide(text).text, m_streams);
    }
    // With --json standard output is one document, whatever the library prints.
    void OnConsole(Stream stream, std::string_view bytes) override {
        const bool output = stream == Stream::Output && !m_json;
        m_streams.Write(output ? Stream::Output : Stream::Error,
                        (output ? m_output : m_error).Add(bytes));
    }
    void OnEnd(const RunOutcome &, ExitStatus) override {
        m_streams.Write(Stream::Output, m_output.Finish());
        m_streams.Write(Stream::Error, m_error.Finish());
    }

  private:
    ConsoleStreams &m_streams;
    VisibleStream m_output;
    VisibleStream m_error;
    bool m_json;
};

std::string DescribeEnd(const RunOutcome &outcome) {
    if (outcome.end == RunEnd::Unheard) {
        return "its process could not be heard to the end";
    }
    return outcome.end == RunEnd::Signal
               ? NameOfSignal(outcome.number) + " ended its process"
               : fmt::format("it ended its process (exit status {})", outcome.number);
}

} // namespace

ExitStatus RelayExplanation(const ExplainOptions &options, Session &session) {
    ChildProcess child(session.arguments, ChildProcess::Ordering::TwoPipes,
                       RunSignals::Stop::AtFirst);
    LibraryRun run(child, session.streams);
    run.WaitForFrame();
    ExplanationView view(options, session.streams);
    const RunOutcome outcome = run.Run({&view});
    run.NotifyEnd(view, outcome, kExitSuccess);
    if (outcome.end == RunEnd::Interrupted) {
        return kExitInterrupted;
    }
    if (outcome.end != RunEnd::Returned) {
        return session.Fail(kExitUsage, "the library cannot be examined: " + DescribeEnd(outcome));
    }
    if (!run.Problem().empty()) {
        return session.Fail(kExitFileError, "the output is incomplete: " + run.Problem());
    }
    return static_cast<ExitStatus>(outcome.code.value_or(kExitUsage));
}

void ShowExplanation(std::string_view text, ConsoleStreams &streams) {
    streams.Write(Stream::Output, ConsoleStreams::HasColours(Stream::Output) ? std::string(text)
                                                                             : StripColours(text));
}

} // namespace ispctl
