#include "explain/FlashSvg.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

#include "Utf8.h"
#include "VisibleText.h"
#include "explain/XmlText.h"

namespace ispctl {
namespace {

// Light fills, so that the black letters stay readable on all of them, and on paper.
constexpr std::string_view kFileColours[] = {"#9BD3A6", "#F4D279", "#9FC5F0", "#D9B3E6",
                                             "#8FD8D8", "#F2B99B", "#C5CF8A", "#C9C1B2"};
constexpr std::string_view kOverlapColour = "#E5736B";
constexpr std::string_view kFreeColour = "#FFFFFF";

// UNITS: of the viewBox.
constexpr std::size_t kCell = 30;
constexpr std::size_t kLeft = 100;
constexpr std::size_t kTop = 28;
constexpr std::size_t kLine = 18;
constexpr std::size_t kWidth = kLeft + kPictureColumns * kCell + 20;
constexpr std::size_t kGridEnd = kTop + kFlashBanks / kPictureColumns * kCell;
// As many characters of the legend as fit into the width. UNITS: characters.
constexpr std::size_t kLegendColumns = 74;

std::string Text(std::size_t x, std::size_t y, std::string_view anchor, std::string_view text) {
    return fmt::format("<text x=\"{}\" y=\"{}\" text-anchor=\"{}\">{}</text>\n", x, y, anchor,
                       XmlText(text));
}

std::string Tooltip(const FlashPicture &picture, std::size_t bank) {
    std::string text = fmt::format("bank {}, 0x{:06X}: ", bank, bank * kBankSize);
    const auto &uses = picture.cells[bank];
    for (std::size_t i = 0; i < uses.size(); ++i) {
        text += (i > 0 ? " and " : "") + picture.files[uses[i]].name;
    }
    return uses.empty() ? text + "not used" : text;
}

std::string Cell(const FlashPicture &picture, std::size_t bank) {
    const auto &uses = picture.cells[bank];
    const std::size_t x = kLeft + bank % kPictureColumns * kCell;
    const std::size_t y = kTop + bank / kPictureColumns * kCell;
    const std::string_view fill = uses.size() > 1 ? kOverlapColour
                                  : uses.empty()  ? kFreeColour
                                                  : SvgColourOf(picture.files[uses.front()]);
    std::string cell = fmt::format("<g><title>{}</title><rect x=\"{}\" y=\"{}\" width=\"{}\" "
                                   "height=\"{}\" fill=\"{}\" stroke=\"#999999\"/>",
                                   XmlText(Tooltip(picture, bank)), x, y, kCell, kCell, fill);
    if (!uses.empty()) {
        cell += Text(x + kCell / 2, y + kCell * 2 / 3, "middle",
                     std::string(1, LetterOf(picture, bank)));
    }
    return cell + "</g>\n";
}

std::string Grid(const FlashPicture &picture) {
    std::string grid;
    for (std::size_t column = 0; column < kPictureColumns; ++column) {
        grid += Text(kLeft + column * kCell + kCell / 2, kTop - 8, "middle",
                     fmt::format("{:X}", column));
    }
    for (std::size_t bank = 0; bank < kFlashBanks; ++bank) {
        if (bank % kPictureColumns == 0) {
            grid += Text(kLeft - 8, kTop + bank / kPictureColumns * kCell + kCell * 2 / 3, "end",
                         fmt::format("0x{:06X}", bank * kBankSize));
        }
        grid += Cell(picture, bank);
    }
    grid += fmt::format("<line x1=\"{}\" y1=\"{}\" x2=\"{}\" y2=\"{}\" stroke=\"#000000\" "
                        "stroke-width=\"2\"/>\n",
                        kLeft, kGridEnd, kLeft + kPictureColumns * kCell, kGridEnd);
    return grid + Text(kLeft, kGridEnd + kLine, "start", "end of the flash, 0x1000000 (16 MiB)");
}

/// Cuts a text into lines of the legend; never within a character.
std::vector<std::string> Wrapped(std::string_view text) {
    std::vector<std::string> lines(1);
    for (std::size_t columns = 0; !text.empty(); ++columns) {
        if (columns == kLegendColumns) {
            lines.emplace_back();
            columns = 0;
        }
        const std::size_t length = std::max<std::size_t>(DecodeFirst(text).length, 1);
        lines.back() += text.substr(0, length);
        text.remove_prefix(length);
    }
    return lines;
}

void AppendLegend(std::string &svg, std::size_t &y, std::string_view fill, std::string_view text) {
    svg += fmt::format("<rect x=\"10\" y=\"{}\" width=\"12\" height=\"12\" fill=\"{}\" "
                       "stroke=\"#999999\"/>\n",
                       y - 11, fill);
    for (const std::string &line : Wrapped(Visible(text, Layout::OneLine, Charset::Utf8))) {
        svg += Text(28, y, "start", line);
        y += kLine;
    }
}

} // namespace

std::string_view SvgColourOf(const FlashFile &file) {
    return kFileColours[file.colour % std::size(kFileColours)];
}

std::string FlashSvg(const FlashPicture &picture, SvgParts parts) {
    std::string content = Grid(picture);
    std::size_t y = kGridEnd + 2 * kLine + 6;
    if (parts == SvgParts::GridAndLegend) {
        for (const FlashFile &file : picture.files) {
            AppendLegend(content, y, SvgColourOf(file),
                         fmt::format("{} {}{}: {}", file.letter, file.name,
                                     file.boot ? " (boot firmware, programmed first)" : "",
                                     DescribeBanks(file.banks)));
        }
        for (const std::string &remark : RemarksOf(picture)) {
            AppendLegend(content, y, kOverlapColour, "# " + remark);
        }
    }
    return fmt::format("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 {} {}\" "
                       "font-family=\"monospace\" font-size=\"13\" role=\"img\">\n"
                       "<title>flash banks and the files that go there</title>\n"
                       "<rect width=\"100%\" height=\"100%\" fill=\"#FFFFFF\"/>\n{}</svg>\n",
                       kWidth, y, content);
}

} // namespace ispctl
