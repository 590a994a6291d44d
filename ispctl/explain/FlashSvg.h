#ifndef ISPCTL_EXPLAIN_FLASH_SVG_H
#define ISPCTL_EXPLAIN_FLASH_SVG_H

#include <string>

#include "explain/FlashPicture.h"

namespace ispctl {

enum class SvgParts {
    GridAndLegend, ///< a file of its own
    Grid,          ///< within a page that has its own legend
};

/// The picture as an svg element, without an XML declaration. It refers to nothing outside itself.
std::string FlashSvg(const FlashPicture &picture, SvgParts parts);

/// The fill of a file's cells: "#RRGGBB".
std::string_view SvgColourOf(const FlashFile &file);

} // namespace ispctl

#endif
