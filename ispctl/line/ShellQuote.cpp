#include "line/ShellQuote.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>

#include "Utf8.h"

namespace ispctl {
namespace {

enum class Quoting { None, Single, Escapes };

bool IsPlain(char32_t value) {
    return value > 0x7F || (value >= U'a' && value <= U'z') || (value >= U'A' && value <= U'Z') ||
           (value >= U'0' && value <= U'9') ||
           std::u32string_view(U"-_./=,:+@%").find(value) != std::u32string_view::npos;
}

/// What a shell must do with this argument.
Quoting QuotingOf(std::string_view argument, Charset charset) {
    Quoting quoting = argument.empty() ? Quoting::Single : Quoting::None;
    while (!argument.empty()) {
        const FirstCharacter first = DecodeFirst(argument);
        if (first.length == 0 || IsControl(first.value) ||
            (charset == Charset::Ascii && first.length > 1)) {
            return Quoting::Escapes;
        }
        quoting = IsPlain(first.value) ? quoting : Quoting::Single;
        argument.remove_prefix(first.length);
    }
    return quoting;
}

std::string EscapedBytes(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        text += fmt::format("\\x{:02X}", static_cast<std::uint8_t>(byte));
    }
    return text;
}

std::string ShownAs(std::string_view bytes, const FirstCharacter &first, Quoting quoting,
                    Charset charset) {
    if (quoting == Quoting::Single) {
        return bytes == "'" ? "'\\''" : std::string(bytes);
    }
    if (quoting == Quoting::None) {
        return std::string(bytes);
    }
    if (bytes == "'" || bytes == "\\") {
        return "\\" + std::string(bytes);
    }
    const bool shown = first.length > 0 && !IsControl(first.value) &&
                       (charset == Charset::Utf8 || first.length == 1);
    return shown ? std::string(bytes) : EscapedBytes(bytes);
}

} // namespace

std::vector<ShownCharacter> QuotedCharacters(std::string_view argument, Charset charset) {
    const Quoting quoting = QuotingOf(argument, charset);
    std::vector<ShownCharacter> shown;
    for (std::size_t offset = 0; offset < argument.size();) {
        const FirstCharacter first = DecodeFirst(argument.substr(offset));
        const std::size_t length = std::max<std::size_t>(first.length, 1);
        shown.push_back(
            {ShownAs(argument.substr(offset, length), first, quoting, charset), offset});
        offset += length;
    }
    if (shown.empty()) {
        shown.push_back({"", 0});
    }
    if (quoting != Quoting::None) {
        shown.front().text.insert(0, quoting == Quoting::Single ? "'" : "$'");
        shown.back().text += "'";
    }
    return shown;
}

std::string QuoteForShell(std::string_view argument, Charset charset) {
    std::string text;
    for (const ShownCharacter &character : QuotedCharacters(argument, charset)) {
        text += character.text;
    }
    return text;
}

std::string QuoteForShell(const std::vector<std::string> &arguments, Charset charset) {
    std::string text;
    for (const std::string &argument : arguments) {
        text += (text.empty() ? "" : " ") + QuoteForShell(argument, charset);
    }
    return text;
}

} // namespace ispctl
