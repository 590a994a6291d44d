#ifndef ISPCTL_EDID_BASE_FACTS_H
#define ISPCTL_EDID_BASE_FACTS_H

#include <optional>
#include <string>
#include <vector>

#include "edid/EdidBytes.h"

namespace ispctl::edid {

/// When a display was made. Weeks 55 to 254 are reserved: then neither week nor model year is
/// known.
struct MadeIn {
    std::optional<int> week; ///< 1 to 54
    std::optional<int> year;
    std::optional<int> modelYear; ///< instead of both others
};

/// One fact that is not part of any other list.
struct Fact {
    const char *key;   ///< in JSON
    const char *label; ///< in the report
    std::string text;
};

// All REQUIRE a whole base block.

/// RETURNS three letters; '?' for a value that is not a letter.
std::string ManufacturerOf(View edid);
MadeIn MadeInOf(View edid);
/// RETURNS the serial number of bytes 12 to 15; nothing if it is 0, which means "not used".
std::optional<std::uint32_t> SerialOf(View edid);
std::string VersionOf(View edid);

/// RETURNS input, image size, gamma, features and chromaticity.
std::vector<Fact> BaseFactsOf(View edid);

} // namespace ispctl::edid

#endif
