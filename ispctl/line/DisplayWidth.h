#ifndef ISPCTL_LINE_DISPLAY_WIDTH_H
#define ISPCTL_LINE_DISPLAY_WIDTH_H

#include <cstddef>
#include <string_view>

namespace ispctl {

/// How many columns of a terminal a character takes: 0 for marks that combine with the character
/// before them, 2 for East Asian wide characters and pictures.
std::size_t DisplayWidth(char32_t value);

/// The same for valid UTF-8.
std::size_t DisplayWidth(std::string_view text);

} // namespace ispctl

#endif
