#ifndef ISPCTL_LINE_WRAP_TEXT_H
#define ISPCTL_LINE_WRAP_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace ispctl {

/// How many spaces stand before the first line of a text, and before the others.
struct Indent {
    std::size_t first = 0;
    std::size_t others = 2;
};

/// Text in lines of at most this many columns, if its words allow, each with its newline.
std::string WrapText(std::string_view text, std::size_t width, Indent indent = {});

} // namespace ispctl

#endif
