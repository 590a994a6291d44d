#ifndef ISPCTL_LINE_SHELL_QUOTE_H
#define ISPCTL_LINE_SHELL_QUOTE_H

#include <string>
#include <string_view>
#include <vector>

#include "VisibleText.h"

namespace ispctl {

/// One character of an argument as it is shown.
struct ShownCharacter {
    std::string text;
    std::size_t offset = 0; ///< UNITS: bytes; where it begins in the argument
};

/// An argument as it must be typed in a shell, character by character. Everything that acts on a
/// terminal, and for Charset::Ascii everything outside ASCII, is written as $'\xNN', which shells
/// turn back into the bytes. Quotes belong to the first and the last character.
std::vector<ShownCharacter> QuotedCharacters(std::string_view argument, Charset charset);

std::string QuoteForShell(std::string_view argument, Charset charset = Charset::Utf8);

/// All of them with a space between.
std::string QuoteForShell(const std::vector<std::string> &arguments,
                          Charset charset = Charset::Utf8);

} // namespace ispctl

#endif
