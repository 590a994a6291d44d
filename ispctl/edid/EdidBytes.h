#ifndef ISPCTL_EDID_EDID_BYTES_H
#define ISPCTL_EDID_EDID_BYTES_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace ispctl::edid {

using Bytes = std::vector<std::uint8_t>;
using View = std::span<const std::uint8_t>;

inline constexpr std::size_t kBlockBytes = 128;
inline constexpr std::size_t kChecksumOffset = 127;
inline constexpr std::size_t kExtensionCountOffset = 126;
inline constexpr std::size_t kFeaturesOffset = 24;
/// A bit of the features: any timing within the range limits is displayed, those of the default GTF
/// included. Before version 1.4 it says only the latter.
inline constexpr std::uint8_t kContinuousFrequency = 0x01;
/// An EDID has at most 256 blocks; a file of text is limited to the same size.
inline constexpr std::size_t kMaxInputBytes = 256 * kBlockBytes;
inline constexpr std::uint8_t kHeader[8] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};

/// REQUIRES: offset + 1 is an index of bytes.
inline unsigned int Word(View bytes, std::size_t offset) {
    return bytes[offset] + 256U * bytes[offset + 1];
}

inline std::size_t WholeBlocks(View edid) {
    return edid.size() / kBlockBytes;
}

/// REQUIRES: number < WholeBlocks(edid).
inline View BlockOf(View edid, std::size_t number) {
    return edid.subspan(number * kBlockBytes, kBlockBytes);
}

bool HasHeader(View edid);

/// RETURNS whether the base block can be read: a whole block whose header differs from the right
/// one in at most two bytes, which is how a worn EEPROM looks.
bool HasBaseBlock(View edid);

/// RETURNS the checksum that makes the sum of a block 0.
std::uint8_t ExpectedChecksum(View block);

/// RETURNS whether the version in bytes 18 and 19 is this one or a later one.
/// REQUIRES: a whole base block.
bool IsVersionAtLeast(View edid, unsigned int version, unsigned int revision);

} // namespace ispctl::edid

#endif
