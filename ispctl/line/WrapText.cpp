#include "line/WrapText.h"

#include <algorithm>

#include "line/DisplayWidth.h"

namespace ispctl {

std::string WrapText(std::string_view text, std::size_t width, Indent indent) {
    std::string wrapped(indent.first, ' ');
    std::size_t column = indent.first;
    bool isFirstOfLine = true;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        const std::size_t wordWidth = DisplayWidth(word);
        if (!isFirstOfLine && column + 1 + wordWidth > width) {
            wrapped += "\n" + std::string(indent.others, ' ');
            column = indent.others;
        } else if (!isFirstOfLine) {
            wrapped += ' ';
            ++column;
        }
        wrapped += word;
        column += wordWidth;
        isFirstOfLine = false;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return wrapped + "\n";
}

} // namespace ispctl
