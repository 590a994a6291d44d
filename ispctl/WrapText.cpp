#include "WrapText.h"

#include <algorithm>

#include "line/DisplayWidth.h"

namespace ispctl {

std::string WrapText(std::string_view text, const TextLayout &layout, std::string_view prefix) {
    std::string wrapped(prefix);
    std::size_t column = DisplayWidth(prefix);
    bool beginsLine = true;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        const std::size_t width = DisplayWidth(word);
        if (!beginsLine && column + 1 + width > layout.width) {
            wrapped += "\n" + std::string(layout.indent, ' ');
            column = layout.indent;
        } else if (!beginsLine) {
            wrapped += ' ';
            ++column;
        }
        wrapped += word;
        column += width;
        beginsLine = false;
        text.remove_prefix(std::min(word.size() + 1, text.size()));
    }
    return wrapped + "\n";
}

} // namespace ispctl
