#ifndef SCALER_ISP_SIMULATOR_ISP_PLAN_H
#define SCALER_ISP_SIMULATOR_ISP_PLAN_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "isp/Device.h"

namespace virtual_scaler {

/// The planned content of one bank.
struct BankImage {
    std::uint32_t bank;
    std::string source; ///< for messages
    Bytes bytes;        ///< a complete bank; the end of a file is padded with 0xFF
};

using Plan = std::vector<BankImage>;

/// Reads every bank of the map from its file before anything is erased, so that a bad file leaves
/// the flash unchanged. Throws Failure.
Plan LoadPlan(const STRUCT_C_STYLE_MAP_FW &map, const MemoryFile &memory);

/// Adds a copy of each bank, `offset` banks higher.
void AddCopies(Plan &plan, std::uint32_t offset, const MemoryFile &memory);

/// Overwrites bytes of the plan; a bank outside it is added with its current content, because a
/// bank can only be programmed completely.
void AddBytes(Plan &plan, std::uint32_t address, const Bytes &bytes, const MemoryFile &memory);

/// RETURNS the planned bytes of a range; nothing unless the plan covers the complete range.
std::optional<Bytes> PlannedBytes(const Plan &plan, std::uint32_t address, std::uint32_t count);

} // namespace virtual_scaler

#endif
