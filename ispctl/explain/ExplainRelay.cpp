#include "explain/ExplainRelay.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>

#include "ChildProcess.h"
#include "LibraryRun.h"
#include "RelayedText.h"
#include "ResultInfo.h"
#include "RunCommand.h"
#include "Utf8.h"
#include "explain/FlashText.h"

namespace ispctl {
namespace {

/// Shows the explanation, which comes as messages, and what the library prints of its own accord.
class ExplanationView : public RelayedText {
  public:
    ExplanationView(const ExplainOptions &options, ConsoleStreams &streams)
        : RelayedText(streams), m_isDocument(options.json || options.OutputIsFile()) {}

    void OnMessage(std::wstring_view text) override {
        ShowExplanation(EscapeWide(text).text, Streams());
    }
    // If standard output is one document, it stays one, whatever the library prints.
    void OnConsole(Stream stream, std::string_view bytes) override {
        RelayedText::OnConsole(m_isDocument ? Stream::Error : stream, bytes);
    }

  private:
    bool m_isDocument;
};

// Of the library's process only: it has no other use for its environment, as no plug-in is opened.
constexpr const char *kWidthVariable = "ISPCTL_COLUMNS";

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
    const std::string width = std::to_string(ConsoleStreams::Width(Stream::Output));
    ::setenv(kWidthVariable, width.c_str(), 1);
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
        return ReportNotCalled(session.json, kExitUsage, "open",
                               "the library cannot be examined: " + DescribeEnd(outcome), {},
                               session.streams);
    }
    if (!run.Problem().empty()) {
        return session.Fail(kExitFileError, "the output is incomplete: " + run.Problem());
    }
    return static_cast<ExitStatus>(outcome.code.value_or(kExitUsage));
}

std::size_t WidthOfExplanation(const Session &session) {
    int width = ConsoleStreams::Width(Stream::Output);
    if (const char *text = std::getenv(kWidthVariable);
        session.link != nullptr && text != nullptr) {
        std::from_chars(text, text + std::strlen(text), width);
    }
    return static_cast<std::size_t>(std::max(width, 1));
}

void ShowExplanation(std::string_view text, ConsoleStreams &streams) {
    streams.Write(Stream::Output, ConsoleStreams::HasColours(Stream::Output) ? std::string(text)
                                                                             : StripColours(text));
}

} // namespace ispctl
