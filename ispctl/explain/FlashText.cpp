#include "explain/FlashText.h"

#include <fmt/format.h>

namespace ispctl {
namespace {

constexpr std::string_view kColourStart = "\033[";
constexpr const char *kColourEnd = "\033[m";
// Green, yellow, blue, magenta, cyan; red is for overlaps.
constexpr int kFileColours[] = {32, 33, 34, 35, 36};
constexpr int kOverlapColour = 31;

std::string Coloured(char letter, int colour) {
    return fmt::format("{}1;{}m{}{}", kColourStart, colour, letter, kColourEnd);
}

int ColourOf(const FlashFile &file) {
    return kFileColours[file.colour % std::size(kFileColours)];
}

std::string Cell(const FlashPicture &picture, std::size_t bank) {
    const char letter = LetterOf(picture, bank);
    const auto &uses = picture.cells[bank];
    if (uses.empty()) {
        return {letter};
    }
    return Coloured(letter, uses.size() > 1 ? kOverlapColour : ColourOf(picture.files[uses[0]]));
}

} // namespace

std::string FlashText(const FlashPicture &picture, Charset charset) {
    std::string text = "  bank  address   0 1 2 3 4 5 6 7 8 9 A B C D E F\n";
    for (std::size_t row = 0; row < kFlashBanks; row += kPictureColumns) {
        text += fmt::format("  {:4}  0x{:06X} ", row, row * kBankSize);
        for (std::size_t column = 0; column < kPictureColumns; ++column) {
            text += " " + Cell(picture, row + column);
        }
        text += "\n";
    }
    text += "        0x1000000 end of the flash; one cell is one bank of 64 KiB\n";
    for (const FlashFile &file : picture.files) {
        text += fmt::format("  {} {}{}: {}\n", Coloured(file.letter, ColourOf(file)),
                            Visible(file.name, Layout::OneLine, charset),
                            file.boot ? " (boot firmware, programmed first)" : "",
                            DescribeBanks(file.banks));
    }
    for (const std::string &remark : RemarksOf(picture)) {
        text += fmt::format("  {} {}\n", Coloured('#', kOverlapColour), remark);
    }
    return text;
}

std::string StripColours(std::string_view text) {
    std::string stripped;
    while (!text.empty()) {
        const auto start = text.find(kColourStart);
        stripped += text.substr(0, start);
        const auto end = start == std::string_view::npos ? start : text.find('m', start);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return stripped;
}

} // namespace ispctl
