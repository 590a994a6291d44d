#ifndef ISPCTL_SCRIPT_SCRIPT_TEXT_H
#define ISPCTL_SCRIPT_SCRIPT_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "script/DdcCi.h"
#include "script/ScriptErrors.h"

namespace ispctl {

/// A request that no record can express; ispctl sends it between records.
struct DdcStatement {
    DdcRequest request;
    std::size_t line = 0;
    std::size_t column = 0;
};

/// Records, and the request after them; the last step has none.
struct ScriptStep {
    std::vector<std::uint8_t> records;
    std::optional<DdcStatement> ddc;
};

/// A script text as it is to be run; with errors it must not be.
struct AssembledScript {
    std::vector<ScriptStep> steps = std::vector<ScriptStep>(1);
    ScriptErrors errors;
};

/// Assembles script text into bytes. One statement per line; a list in braces may span lines:
///
///     const kPanel = 0x0120                  a named number
///     WriteRegEx kPanel, 0x5A                positional operands
///     WriteRegEx addr = kPanel, value = 0x5A named operands
///     WriteRegs 0x10, 1, {0x01, 0x02}        data bytes last; the length is computed
///     WriteRegs addr = 0x10, inc = 1, data = {0x01, 0x02}
///     bytes {0x1B, 0xFF}                     raw bytes
///     ddc get 0x10                           reads a VCP feature over DDC/CI
///     ddc set 0x10 50                        writes one
AssembledScript AssembleScript(std::string_view text);

/// RETURNS text that AssembleScript converts back to exactly these bytes, even if they are not
/// valid records.
std::string ListScript(std::span<const std::uint8_t> script);

/// RETURNS the script as a byte list of the C++ API, one record per line.
std::string ByteListOfScript(std::span<const std::uint8_t> script);

} // namespace ispctl

#endif
