#ifndef SCALER_ISP_SIMULATOR_ISP_PLAN_H
#define SCALER_ISP_SIMULATOR_ISP_PLAN_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "isp/Device.h"

namespace virtual_scaler {

/// What one bank shall hold.
struct BankImage {
    std::uint32_t bank;
    std::string source; ///< for messages
    Bytes bytes;        ///< a whole bank; the end of a file is padded with 0xFF
};

using Plan = std::vector<BankImage>;

/// Reads every bank of the map from its file before anything is erased, so that a bad file leaves
/// the flash as it is. Throws Failure.
Plan LoadPlan(const STRUCT_C_STYLE_MAP_FW &map, const MemoryFile &memory);

/// Adds each bank once more, `offset` banks higher.
void AddCopies(Plan &plan, std::uint32_t offset, const MemoryFile &memory);

/// Puts bytes over the plan; banks outside the plan are added with what the flash holds around
/// them.
void AddBytes(Plan &plan, std::uint32_t address, const Bytes &bytes, const MemoryFile &memory);

/// What the plan puts at an address; nothing unless it covers the whole range.
std::optional<Bytes> PlannedBytes(const Plan &plan, std::uint32_t address, std::uint32_t count);

} // namespace virtual_scaler

#endif
