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

/// One opcode of the register scripts; its number is its place in the table.
struct Opcode {
    std::uint8_t code;
    std::string_view name;
    OpcodeKind kind;
    std::vector<Operand> operands;

    /// UNITS: bytes, the opcode's own included, data bytes not.
    std::size_t Length() const;
};

/// All opcodes, by number.
std::span<const Opcode> Opcodes();

/// RETURNS null for a name that is none.
const Opcode *FindOpcode(std::string_view name);

/// RETURNS the big-endian number of these bytes.
std::uint32_t BigEndian(std::span<const std::uint8_t> bytes);

/// One record of a script as the runner meets it.
struct ScriptRecord {
    const Opcode *opcode = nullptr; ///< null: unknown
    std::size_t offset = 0;
    std::span<const std::uint8_t> bytes;   ///< opcode, operands and data, cut at the end
    std::size_t length = 0;                ///< what the record needs
    std::uint32_t block = 0;               ///< L while it runs
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

/// Cuts a script into records, one after the other. The last one may be unknown or not whole; then
/// the rest of the script belongs to it.
void ForEachRecord(std::span<const std::uint8_t> script,
                   const std::function<void(const ScriptRecord &)> &take);

} // namespace ispctl

#endif
