#include "edid/EdidBytes.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <utility>

namespace ispctl::edid {
namespace {

constexpr std::ptrdiff_t kToleratedHeaderErrors = 2;

std::ptrdiff_t HeaderErrors(View edid) {
    return std::inner_product(std::begin(kHeader), std::end(kHeader), edid.begin(),
                              std::ptrdiff_t{0}, std::plus<>(), std::not_equal_to<>());
}

} // namespace

bool HasHeader(View edid) {
    return edid.size() >= std::size(kHeader) && HeaderErrors(edid) == 0;
}

bool HasBaseBlock(View edid) {
    return WholeBlocks(edid) > 0 && HeaderErrors(edid) <= kToleratedHeaderErrors;
}

std::uint8_t ExpectedChecksum(View block) {
    const unsigned int sum = std::accumulate(block.begin(), block.begin() + kChecksumOffset, 0U);
    return static_cast<std::uint8_t>(0U - sum);
}

bool IsVersionAtLeast(View edid, unsigned int version, unsigned int revision) {
    return std::pair<unsigned int, unsigned int>(edid[18], edid[19]) >=
           std::pair(version, revision);
}

} // namespace ispctl::edid
