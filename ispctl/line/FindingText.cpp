#include "line/FindingText.h"

#include <algorithm>

#include "WrapText.h"
#include "line/DisplayWidth.h"
#include "line/ShellQuote.h"

namespace ispctl {
namespace {

constexpr std::string_view kIndent = "  ";
constexpr std::string_view kEllipsis = "...";

/// One character of the shown line.
struct Cell {
    std::string text;
    std::size_t width = 0;
    bool isMarked = false;
};

/// The line as typed, with the cells of the finding's word marked.
std::vector<Cell> CellsOf(const Finding &finding, const std::vector<std::string> &arguments,
                          Charset charset) {
    std::vector<Cell> cells;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (i > 0) {
            cells.push_back({" ", 1, false});
        }
        for (const ShownCharacter &shown : QuotedCharacters(arguments[i], charset)) {
            const bool isMarked = finding.argument == i && shown.offset >= finding.offset &&
                                  shown.offset < finding.offset + finding.length;
            cells.push_back({shown.text, DisplayWidth(shown.text), isMarked});
        }
    }
    return cells;
}

std::size_t WidthOf(const std::vector<Cell> &cells, std::size_t first, std::size_t last) {
    std::size_t width = 0;
    for (std::size_t i = first; i < last; ++i) {
        width += cells[i].width;
    }
    return width;
}

/// A part of the cells: from first to before last.
struct Window {
    std::size_t first = 0;
    std::size_t last = 0;
};

/// The largest window around the marked word that fits; the word's beginning is always in it.
Window CutAround(const std::vector<Cell> &cells, std::size_t width) {
    if (WidthOf(cells, 0, cells.size()) <= width) {
        return {0, cells.size()};
    }
    const std::size_t ellipses = 2 * kEllipsis.size();
    const std::size_t available = width > ellipses ? width - ellipses : 1;
    const auto marked =
        std::find_if(cells.begin(), cells.end(), [](const Cell &cell) { return cell.isMarked; });
    Window window;
    window.first = marked != cells.end() ? static_cast<std::size_t>(marked - cells.begin()) : 0;
    window.last = window.first;
    std::size_t used = 0;
    while (window.last < cells.size() && cells[window.last].isMarked &&
           used + cells[window.last].width <= available) {
        used += cells[window.last++].width;
    }
    // Then in turn one more on both sides, so that the word stands in the middle.
    for (bool hasGrown = true; hasGrown;) {
        hasGrown = false;
        if (window.first > 0 && used + cells[window.first - 1].width <= available) {
            used += cells[--window.first].width;
            hasGrown = true;
        }
        if (window.last < cells.size() && used + cells[window.last].width <= available) {
            used += cells[window.last++].width;
            hasGrown = true;
        }
    }
    return window;
}

std::string LineAndMarks(const std::vector<Cell> &cells, std::size_t width) {
    const Window window = CutAround(cells, width > kIndent.size() ? width - kIndent.size() : 1);
    std::string line(kIndent);
    std::string marks(kIndent);
    if (window.first > 0) {
        line += kEllipsis;
        marks += std::string(kEllipsis.size(), ' ');
    }
    bool isFirst = true;
    bool hasMarks = false;
    for (std::size_t i = window.first; i < window.last; ++i) {
        line += cells[i].text;
        std::string under(cells[i].width, cells[i].isMarked ? '~' : ' ');
        if (cells[i].isMarked && isFirst && !under.empty()) {
            under.front() = '^';
            isFirst = false;
        }
        hasMarks = hasMarks || cells[i].isMarked;
        marks += under;
    }
    line += window.last < cells.size() ? kEllipsis : "";
    marks.erase(marks.find_last_not_of(' ') + 1);
    return line + "\n" + (hasMarks ? marks + "\n" : "");
}

std::string Shown(std::string_view text, const FindingLook &look) {
    return Visible(text, Layout::OneLine, look.charset);
}

} // namespace

std::string FindingText(const Finding &finding, const std::vector<std::string> &arguments,
                        const FindingLook &look) {
    std::string text = std::string(NameOf(finding.severity)) + ": " + Shown(finding.message, look) +
                       " [" + std::string(finding.name) + "]";
    if (!finding.followsFrom.empty()) {
        text += "; follows from " + Shown(finding.followsFrom, look);
        return WrapText(text, {look.width, kIndent.size()});
    }
    text = WrapText(text, {look.width, kIndent.size()});
    if (!arguments.empty()) {
        text += LineAndMarks(CellsOf(finding, arguments, look.charset), look.width);
    }
    if (!finding.suggestion.empty()) {
        text += WrapText("help: " + Shown(finding.suggestion, look), {look.width, kIndent.size()});
    }
    return text;
}

std::string CorrectedText(const CorrectedLine &corrected, const FindingLook &look) {
    if (corrected.arguments.empty()) {
        return "";
    }
    std::string text =
        corrected.remaining.empty() ? "corrected line:\n" : "corrected in part; this remains:\n";
    for (const Finding &finding : corrected.remaining) {
        text += WrapText(Shown(finding.message, look) + " [" + std::string(finding.name) + "]",
                         {look.width, 2 * kIndent.size()}, kIndent);
    }
    text += corrected.remaining.empty() ? "" : "line so far:\n";
    return text + std::string(kIndent) + look.command + " " +
           QuoteForShell(corrected.arguments, look.charset) + "\n";
}

std::string FindingsText(const std::vector<Finding> &findings, const CorrectedLine &corrected,
                         const std::vector<std::string> &arguments, const FindingLook &look) {
    std::string text;
    for (const Finding &finding : findings) {
        text += (text.empty() ? "" : "\n") + FindingText(finding, arguments, look);
    }
    const std::string last = CorrectedText(corrected, look);
    return text + (text.empty() || last.empty() ? "" : "\n") + last;
}

} // namespace ispctl
