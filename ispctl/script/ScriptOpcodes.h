#ifndef ISPCTL_SCRIPT_SCRIPT_OPCODES_H
#define ISPCTL_SCRIPT_SCRIPT_OPCODES_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace ispctl {

/// What a record does; see scaler_isp/common/script/script_opcodes.def.
enum class OpcodeKind {
    WAIT,
    CALL,
    READ,
    BLOCK_WRITE,
    BLOCK_READ,
    POLL,
    CALL_AND_SKIP,
    UNSUPPORTED
};

/// One operand of a record.
struct Operand {
    std::string_view name;
    std::size_t bytes; ///< 1, 2 or 4, big-endian
    bool isBlockLength;
};

/// One opcode of the register scripts; its code is its index in the table.
struct Opcode {
    std::uint8_t code;
    std::string_view name;
    OpcodeKind kind;
    std::vector<Operand> operands;

    /// UNITS: bytes, opcode and operands without data bytes.
    std::size_t Length() const;
};

/// All opcodes, indexed by code.
std::span<const Opcode> Opcodes();

/// RETURNS null for an unknown name.
const Opcode *FindOpcode(std::string_view name);

/// RETURNS the value of big-endian bytes.
std::uint32_t BigEndian(std::span<const std::uint8_t> bytes);

/// One record of a script as the runner reads it.
struct ScriptRecord {
    const Opcode *opcode = nullptr; ///< null: unknown
    std::size_t offset = 0;
    std::span<const std::uint8_t>
        bytes;               ///< opcode, operands and data, truncated at the end of the script
    std::size_t length = 0;  ///< length of the complete record
    std::uint32_t block = 0; ///< the last block length L, which CALL_AND_SKIP uses
    std::span<const std::uint8_t> skipped; ///< bytes after a CALL_AND_SKIP record that do not run

    bool IsComplete() const {
        return opcode != nullptr && bytes.size() == length;
    }
    /// The value of an operand. REQUIRES: IsComplete().
    std::uint32_t Value(std::size_t operand) const;
    std::span<const std::uint8_t> Data() const {
        return bytes.subspan(opcode->Length());
    }
};

/// Splits a script into records. The last one may be unknown or incomplete; it then includes the
/// rest of the script.
void ForEachRecord(std::span<const std::uint8_t> script,
                   const std::function<void(const ScriptRecord &)> &visit);

} // namespace ispctl

#endif
