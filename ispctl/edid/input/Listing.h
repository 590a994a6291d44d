#ifndef ISPCTL_EDID_INPUT_LISTING_H
#define ISPCTL_EDID_INPUT_LISTING_H

#include "edid/input/SourceText.h"

namespace ispctl::edid {

/// The hexadecimal digits in the output of a program.
struct Listing {
    Token digits;          ///< the first ones
    std::size_t count = 0; ///< how many EDIDs the listing contains; 0: it is no such listing
};

/// The lines after a property "EDID:", as xrandr writes them.
Listing FindProperty(std::string_view text);
/// The block at the top of a decoder's listing, up to its line of dashes.
Listing FindDecoderBlock(std::string_view text);
/// Whether this is a listing of xrandr that has no property "EDID:".
bool IsListingWithoutEdid(std::string_view text);
/// The bytes after "EDID"=hex: in a file that Windows' registry editor wrote, which continues a
/// line after a backslash.
Listing FindRegFileValue(std::string_view text);
/// What is between < and >, as a system's registry shows it.
Listing FindAngleBrackets(std::string_view text);

} // namespace ispctl::edid

#endif
