#include "line/Typography.h"

#include <algorithm>

#include "Utf8.h"

namespace ispctl {
namespace {

bool IsDash(char32_t value) {
    return (value >= U'\u2010' && value <= U'\u2015') || value == U'\u2212';
}

bool IsQuote(char32_t value) {
    return (value >= U'\u2018' && value <= U'\u201F') || value == U'\u00AB' || value == U'\u00BB';
}

} // namespace

Retyped WithoutQuotes(std::string_view word) {
    Retyped retyped;
    for (FirstCharacter first; !word.empty(); word.remove_prefix(first.length)) {
        first = DecodeFirst(word);
        if (first.length == 0 || !IsQuote(first.value)) {
            break;
        }
        retyped.first = retyped.first == 0 ? first.value : retyped.first;
    }
    // Characters of which the last is a quote: walk, because UTF-8 is read from the front.
    std::size_t end = 0;
    char32_t quote = 0;
    for (std::size_t at = 0; at < word.size();) {
        const FirstCharacter next = DecodeFirst(word.substr(at));
        const bool isQuote = next.length > 0 && IsQuote(next.value);
        at += std::max<std::size_t>(next.length, 1);
        end = isQuote ? end : at;
        quote = isQuote ? next.value : 0;
    }
    retyped.first = retyped.first == 0 ? quote : retyped.first;
    retyped.meant = word.substr(0, end);
    return retyped;
}

Retyped WithPlainDashes(std::string_view word) {
    Retyped retyped{std::string(word), 0};
    std::string_view rest = word;
    for (FirstCharacter first; !rest.empty(); rest.remove_prefix(first.length)) {
        first = DecodeFirst(rest);
        if (first.length == 0 || (first.value != U'-' && !IsDash(first.value))) {
            break;
        }
        retyped.first = retyped.first == 0 && IsDash(first.value) ? first.value : retyped.first;
    }
    const bool isName = !rest.empty() && ((rest[0] | 0x20) >= 'a' && (rest[0] | 0x20) <= 'z');
    if (retyped.first == 0 || !isName) {
        return {std::string(word), 0};
    }
    retyped.meant = "--" + std::string(rest);
    return retyped;
}

} // namespace ispctl
