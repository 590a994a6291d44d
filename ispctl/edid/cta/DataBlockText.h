#ifndef ISPCTL_EDID_CTA_DATA_BLOCK_TEXT_H
#define ISPCTL_EDID_CTA_DATA_BLOCK_TEXT_H

#include <string>
#include <vector>

#include "edid/cta/CtaBlock.h"

namespace ispctl::edid {

using Lines = std::vector<std::string>;

/// A data block in words.
struct DataBlockText {
    std::string kind;
    Lines facts;
};

/// RETURNS the data blocks of a CTA block in their order. REQUIRES: 128 bytes.
std::vector<DataBlockText> DescribeDataBlocks(View block);

/// RETURNS revision and features of a CTA block's head. REQUIRES: 128 bytes.
Lines DescribeCtaHead(View block);

/// A bit of a payload and what it stands for.
struct PayloadBit {
    std::uint8_t byte;
    std::uint8_t bit;
    const char *name;
};

/// RETURNS the names of the bits that are set, in the order of the table; bytes that the payload
/// lacks count as 0.
template <std::size_t N> Lines NamesOfBits(View payload, const PayloadBit (&rows)[N]) {
    Lines names;
    for (const PayloadBit &row : rows) {
        if (row.byte < payload.size() && (payload[row.byte] >> row.bit & 1U) != 0) {
            names.emplace_back(row.name);
        }
    }
    return names;
}

/// RETURNS a byte of a payload, 0 if the payload is shorter.
inline unsigned int ByteOr0(View payload, std::size_t index) {
    return index < payload.size() ? payload[index] : 0U;
}

} // namespace ispctl::edid

#endif
