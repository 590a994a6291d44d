#ifndef ISPCTL_LINE_TYPOGRAPHY_H
#define ISPCTL_LINE_TYPOGRAPHY_H

#include <string>
#include <string_view>

namespace ispctl {

/// What was typed before a word processor or a messenger replaced characters of the keyboard.
struct Retyped {
    std::string meant;
    char32_t first = 0; ///< the first character that was replaced; 0: there is none
};

/// Without the typographic quotes at both ends. There may be only one: the other one may belong to
/// another word.
Retyped WithoutQuotes(std::string_view word);

/// With "--" for the dashes at the beginning if one of them is typographic and a name follows.
Retyped WithPlainDashes(std::string_view word);

} // namespace ispctl

#endif
