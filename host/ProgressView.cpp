#include "ProgressView.h"

#include <algorithm>
#include <fmt/format.h>

#include "ResultWords.h"
#include "Utf8.h"

namespace ispctl {
namespace {

constexpr int kBarWidth = 40;
constexpr std::string_view kEraseLine = "\r\033[K";

// The library ends a coloured line with the colour's end behind the line end.
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

} // namespace

ProgressView::ProgressView(const ConsoleStreams &streams)
    : m_streams(streams), m_bar(streams.IsTerminal(Stream::Error)) {}

void ProgressView::EraseBar() {
    if (m_barShown) {
        m_streams.Write(Stream::Error, kEraseLine);
        m_barShown = false;
    }
}

void ProgressView::DrawBar() {
    const int percent = std::clamp(m_percent, 0, 100);
    const int filled = percent * kBarWidth / 100;
    const std::string bar = fmt::format("{}{}[{:#<{}}{:-<{}}] {:3} %", m_midLine ? "\n" : "",
                                        kEraseLine, "", filled, "", kBarWidth - filled, m_percent);
    // A full bar stays; a later action, after a boot firmware for instance, gets a bar of its own.
    m_streams.Write(Stream::Error, percent == 100 ? bar + "\n" : bar);
    m_barShown = percent < 100;
    m_midLine = false;
}

void ProgressView::PrintLine(int percent) {
    const int tenth = percent / 10;
    if (tenth != m_tenth) {
        m_streams.Write(Stream::Error, fmt::format("progress {} %\n", percent));
        m_tenth = tenth;
    }
}

void ProgressView::OnProgress(int percent) {
    const bool changed = percent != m_percent;
    m_percent = percent;
    if (!m_bar) {
        PrintLine(percent);
    } else if (changed || (!m_barShown && percent < 100)) {
        DrawBar();
    }
}

void ProgressView::OnMessage(std::wstring_view text) {
    std::string line = EscapeWide(text).text;
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
    if (redraw) {
        DrawBar();
    }
}

void ProgressView::OnConsole(Stream stream, std::string_view bytes) {
    if (m_bar && m_streams.IsTerminal(stream)) {
        EraseBar();
        const std::string_view text = WithoutTrailingColours(bytes);
        m_midLine = text.empty() ? m_midLine : text.back() != '\n';
    }
    m_streams.Write(stream, bytes);
}

void ProgressView::OnResult(int code) {
    EraseBar();
    std::string line = m_midLine ? "\n" : "";
    if (code == 0) {
        line += "ispctl: success\n";
    } else {
        const std::string shown = code == -1 ? "-1" : HexOfResult(code);
        const bool inside = m_percent != kNone && m_percent < 100;
        line += fmt::format("ispctl: failed with {}{}: {}\n", shown,
                            inside ? fmt::format(" at {} %", m_percent) : "",
                            WordsOfResult(code).meaning);
    }
    m_streams.Write(Stream::Error, line);
}

} // namespace ispctl
