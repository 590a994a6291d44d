#ifndef ISPCTL_EDID_FINDING_H
#define ISPCTL_EDID_FINDING_H

#include <fmt/format.h>
#include <optional>
#include <string>
#include <vector>

namespace ispctl::edid {

enum class FindingId {
#define ISPCTL_EDID_FINDING(ID, NAME, MESSAGE) ID,
#include "edid/findings.def"
};

struct FindingRow {
    const char *name;
    const char *message; ///< a format string
};
inline constexpr FindingRow kFindingRows[] = {
#define ISPCTL_EDID_FINDING(ID, NAME, MESSAGE) {NAME, MESSAGE},
#include "edid/findings.def"
};

/// A problem or a remark.
struct Finding {
    FindingId id{};
    std::optional<std::size_t> block;
    std::string message;
    std::size_t line = 0;   ///< of the bad character in a text; 0: none
    std::size_t column = 0; ///< UNITS: characters, from 1

    const char *Name() const {
        return kFindingRows[static_cast<std::size_t>(id)].name;
    }
    /// "block 0: " and the message.
    std::string Text() const {
        return block ? fmt::format("block {}: {}", *block, message) : message;
    }
};
using Findings = std::vector<Finding>;

/// \param arguments  fill the row's message
template <typename... Arguments>
Finding MakeFinding(FindingId id, std::optional<std::size_t> block, const Arguments &...arguments) {
    Finding finding;
    finding.id = id;
    finding.block = block;
    finding.message = fmt::vformat(kFindingRows[static_cast<std::size_t>(id)].message,
                                   fmt::make_format_args(arguments...));
    return finding;
}

} // namespace ispctl::edid

#endif
