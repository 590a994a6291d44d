#ifndef ISPCTL_LINE_NEAREST_NAME_H
#define ISPCTL_LINE_NEAREST_NAME_H

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace ispctl {

/// How many insertions, deletions, replacements and exchanges of neighbours lead from one word to
/// the other.
std::size_t EditDistance(std::string_view a, std::string_view b);

/// How far a word is from a candidate that may have been meant; nothing if it is too far. Upper and
/// lower case are taken for equal, and so is the beginning of a candidate if it is long enough.
std::optional<std::size_t> NameDistance(std::string_view word, std::string_view candidate);

/// The candidate that a person most likely meant; empty if none is close enough.
std::string_view NearestName(std::string_view word, std::span<const std::string_view> candidates);

} // namespace ispctl

#endif
