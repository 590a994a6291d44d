#include "ProgressView.h"

#include <algorithm>
#include <fmt/format.h>

#include "ResultInfo.h"
#include "Utf8.h"

namespace ispctl {
namespace {

constexpr std::string_view kEraseLine = "\r\033[K";

// The library resets the colour of a line after its newline, so the newline is not the last
// character.
std::string_view WithoutTrailingColours(std::string_view text) {
    while (!text.empty() && text.back() == 'm') {
        const auto escape = text.rfind("\033[");
        if (escape == std::string_view::npos ||
            text.find_first_not_of("0123456789;", escape + 2) != text.size() - 1) {
            break;
        }
        text = text.substr(0, escape);
    }
    return text;
}

Colours ColoursOf(Stream stream, bool verbatim) {
    return verbatim || ConsoleStreams::HasColours(stream) ? Colours::Keep : Colours::Drop;
}

/// Of the bar between its brackets, so that the complete line fits into the terminal. The last
/// column stays free: some terminals wrap as soon as it is written.
int BarWidth() {
    constexpr int kLongest = 40;
    constexpr int kRest = 9; // "[", "] 100 %" and the free column
    return std::clamp(ConsoleStreams::Width(Stream::Error) - kRest, 1, kLongest);
}

} // namespace

ProgressView::ProgressView(ConsoleStreams &streams, bool verbatim)
    : m_streams(streams), m_output(streams.TheCharset(), ColoursOf(Stream::Output, verbatim),
                                   verbatim ? Nul::Keep : Nul::Show),
      m_error(streams.TheCharset(), ColoursOf(Stream::Error, verbatim),
              verbatim ? Nul::Keep : Nul::Show),
      m_bar(ConsoleStreams::IsTerminal(Stream::Error)),
      m_sharedTarget(ConsoleStreams::ShareOneTarget()) {}

void ProgressView::EraseBar() {
    if (m_barShown) {
        m_streams.Write(Stream::Error, kEraseLine);
        m_barShown = false;
    }
}

void ProgressView::DrawBar() {
    const int percent = std::clamp(m_percent, 0, 100);
    const int width = BarWidth();
    const int filled = percent * width / 100;
    const std::string bar = fmt::format("{}{}[{:#<{}}{:-<{}}] {:3} %", m_midLine ? "\n" : "",
                                        kEraseLine, "", filled, "", width - filled, m_percent);
    // A full bar stays; a later step, for example after a boot firmware, gets a new one.
    m_streams.Write(Stream::Error, percent == 100 ? bar + "\n" : bar);
    m_errorMidLine = false;
    m_barShown = percent < 100;
    m_midLine = false;
}

void ProgressView::PrintLine(int percent) {
    const int tenth = percent / 10;
    if (tenth != m_tenth) {
        m_streams.Write(Stream::Error, fmt::format("progress {} %\n", percent));
        m_errorMidLine = false;
        m_tenth = tenth;
    }
}

void ProgressView::OnProgress(int percent) {
    FinishConsole();
    const bool changed = percent != m_percent;
    m_percent = percent;
    if (!m_bar) {
        PrintLine(percent);
    } else if (changed || (!m_barShown && percent < 100)) {
        DrawBar();
    }
}

void ProgressView::OnMessage(std::wstring_view text) {
    FinishConsole();
    std::string line = Visible(EscapeWide(text).text, Layout::Lines, m_streams.TheCharset());
    if (line.empty() || line.back() != '\n') {
        line += '\n';
    }
    const bool redraw = m_barShown;
    EraseBar();
    if (m_midLine) {
        line.insert(0, "\n");
        m_midLine = false;
    }
    m_streams.Write(Stream::Output, line);
    m_errorMidLine = m_errorMidLine && !m_sharedTarget;
    if (redraw) {
        DrawBar();
    }
}

void ProgressView::ShowConsole(Stream stream, std::string_view shown) {
    const std::string_view text = WithoutTrailingColours(shown);
    if (m_bar && ConsoleStreams::IsTerminal(stream)) {
        EraseBar();
        m_midLine = text.empty() ? m_midLine : text.back() != '\n';
    }
    if ((stream == Stream::Error || m_sharedTarget) && !text.empty()) {
        m_errorMidLine = text.back() != '\n';
    }
    m_streams.Write(stream, shown);
}

void ProgressView::OnConsole(Stream stream, std::string_view bytes) {
    const std::string shown = (stream == Stream::Output ? m_output : m_error).Add(bytes);
    if (!shown.empty()) {
        ShowConsole(stream, shown);
    }
}

// An incomplete character is written before the next event, so that the order is kept.
void ProgressView::FinishConsole() {
    for (const Stream stream : {Stream::Output, Stream::Error}) {
        const std::string shown = (stream == Stream::Output ? m_output : m_error).Finish();
        if (!shown.empty()) {
            ShowConsole(stream, shown);
        }
    }
}

void ProgressView::OnEnd(const RunOutcome &outcome, ExitStatus) {
    FinishConsole();
    EraseBar();
    m_streams.Write(Stream::Error, m_midLine || m_errorMidLine ? "\n" : "");
    m_streams.PrintMessage(SentenceOf(outcome));
    for (const std::string &line : AdviceAfter(outcome)) {
        m_streams.PrintMessage(line);
    }
}

} // namespace ispctl
