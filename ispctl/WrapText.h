#ifndef ISPCTL_WRAP_TEXT_H
#define ISPCTL_WRAP_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace ispctl {

/// Where the lines of a text begin and end. UNITS: columns of a terminal.
struct TextLayout {
    std::size_t width = 80; ///< of a whole line
    std::size_t indent = 2; ///< of every line but the first
};

/// Breaks text at its spaces. A word that is wider than a line, such as a path, stays in one piece.
/// \param text    valid UTF-8 without newlines and escape sequences: what Visible makes
/// \param prefix  stands before the first line and is not broken
/// RETURNS lines that end with a newline; at least one.
std::string WrapText(std::string_view text, const TextLayout &layout, std::string_view prefix = {});

} // namespace ispctl

#endif
