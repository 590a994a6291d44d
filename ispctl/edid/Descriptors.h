#ifndef ISPCTL_EDID_DESCRIPTORS_H
#define ISPCTL_EDID_DESCRIPTORS_H

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "edid/EdidBytes.h"

namespace ispctl::edid {

inline constexpr std::size_t kDescriptorBytes = 18;
inline constexpr std::size_t kDescriptors = 4;

/// The kinds of display descriptors that are read.
enum DescriptorTag : std::uint8_t {
    kSerialTag = 0xFF,
    kTextTag = 0xFE,
    kRangeTag = 0xFD,
    kNameTag = 0xFC,
    kStandardTimingsTag = 0xFA,
    kEstablishedTimingsTag = 0xF7,
};

/// RETURNS the four descriptors of 18 bytes. REQUIRES: a whole base block.
std::array<View, kDescriptors> DescriptorsOf(View edid);

/// RETURNS whether 18 bytes are a detailed timing: its pixel clock is not 0.
bool IsTiming(View descriptor);

/// RETURNS the first display descriptor with this tag. REQUIRES: a whole base block.
std::optional<View> FindDescriptor(View edid, DescriptorTag tag);

/// A string of the base block.
struct EdidText {
    const char *kind;  ///< "name", "serial", "text"
    std::string value; ///< UTF-8; a byte of 0x80 and above is read as ISO 8859-1
};

/// RETURNS the strings in their order. REQUIRES: a whole base block.
std::vector<EdidText> TextsOf(View edid);

/// RETURNS all strings of a kind that are not empty, with spaces between them.
std::string JoinTexts(const std::vector<EdidText> &texts, std::string_view kind);

} // namespace ispctl::edid

#endif
