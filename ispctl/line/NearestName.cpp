#include "line/NearestName.h"

#include <algorithm>
#include <string>
#include <vector>

namespace ispctl {
namespace {

constexpr std::size_t kShortestBeginning = 3;

std::string LowerCase(std::string_view word) {
    std::string lower(word);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return lower;
}

/// One mistake in a short word, up to three in a long one.
std::size_t LargestDistance(std::size_t length) {
    return length <= 2 ? 0 : length <= 4 ? 1 : length <= 8 ? 2 : 3;
}

} // namespace

std::size_t EditDistance(std::string_view a, std::string_view b) {
    // Three rows of the table: exchanging two neighbours refers to the row before the last.
    std::vector<std::size_t> before(b.size() + 1);
    std::vector<std::size_t> last(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        last[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        before.swap(last);
        last.swap(row);
    }
    return last[b.size()];
}

std::optional<std::size_t> NameDistance(std::string_view word, std::string_view candidate) {
    const std::string lower = LowerCase(word);
    const bool isBeginning = lower.size() >= kShortestBeginning && candidate.starts_with(lower) &&
                             lower.size() < candidate.size();
    const std::size_t distance = isBeginning ? 1 : EditDistance(lower, candidate);
    return distance <= LargestDistance(lower.size()) ? std::optional(distance) : std::nullopt;
}

std::string_view NearestName(std::string_view word, std::span<const std::string_view> candidates) {
    std::string_view nearest;
    std::optional<std::size_t> smallest;
    for (const std::string_view candidate : candidates) {
        const auto distance = NameDistance(word, candidate);
        if (distance && (!smallest || *distance < *smallest)) {
            smallest = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

} // namespace ispctl
