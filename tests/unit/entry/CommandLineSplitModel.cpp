#include "unit/entry/CommandLineSplitModel.h"

#include <cstddef>

namespace model {
namespace {

using Tokens = std::vector<std::string>;

/// Whether `part` stands at a place of a text, compared letter by letter.
bool StandsAt(const std::string &text, int place, const std::string &part) {
    for (int i = 0; i < static_cast<int>(part.size()); ++i) {
        if (place + i >= static_cast<int>(text.size()) ||
            text[static_cast<std::size_t>(place + i)] != part[static_cast<std::size_t>(i)]) {
            return false;
        }
    }
    return true;
}

/// Replaces the first place of `part`; nothing where there is none.
bool ReplaceFirst(std::string &text, const std::string &part, const std::string &with) {
    for (int place = 0; place < static_cast<int>(text.size()); ++place) {
        if (StandsAt(text, place, part)) {
            std::string result;
            for (int i = 0; i < place; ++i) {
                result += text[static_cast<std::size_t>(i)];
            }
            result += with;
            for (auto i = static_cast<std::size_t>(place) + part.size(); i < text.size(); ++i) {
                result += text[i];
            }
            text = result;
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<Tokens> SplitTokens(const std::string &line) {
    const int length = static_cast<int>(line.size());
    std::vector<int> places; // what each search finds; the end of the line where nothing is left
    int quotes = 0;
    for (const char c : line) {
        quotes += c == '"' ? 1 : 0;
    }
    if (quotes % 2 == 1) {
        return std::nullopt;
    }
    for (int n = 0, from = 1; n < quotes; ++n) {
        int place = from;
        while (place < length && line[static_cast<std::size_t>(place)] != '"') {
            ++place;
        }
        places.push_back(place < length ? place : length);
        from = place + 1;
    }
    std::vector<std::string> segments;
    for (std::size_t n = 1; n < places.size(); n += 2) {
        const int opening = places[n - 1];
        const int closing = places[n];
        if (closing < length && closing - opening == 1) {
            return std::nullopt;
        }
        std::string segment;
        for (int i = opening; i <= closing && i < length; ++i) {
            segment += line[static_cast<std::size_t>(i)];
        }
        segments.push_back(segment);
    }
    std::string copy = line;
    for (const std::string &segment : segments) {
        ReplaceFirst(copy, segment, "\"\"");
    }
    Tokens tokens;
    std::string token;
    for (const char c : copy + " ") {
        if (c != ' ') {
            token += c;
        } else if (!token.empty()) {
            tokens.push_back(token);
            token.clear();
        }
    }
    std::size_t k = 0;
    for (std::string &word : tokens) {
        if (k >= segments.size()) {
            break;
        }
        std::string inner;
        for (std::size_t i = 1; i + 1 < segments[k].size(); ++i) {
            inner += segments[k][i];
        }
        k += ReplaceFirst(word, "\"\"", inner) ? 1U : 0U;
    }
    return tokens;
}

} // namespace model
