#include "script/ScriptOpcodes.h"

#include <algorithm>

namespace ispctl {
namespace {

// Parses the OPERANDS column, for example "w:addr L:length i:inc".
std::vector<Operand> ParseOperands(std::string_view text) {
    std::vector<Operand> operands;
    while (!text.empty()) {
        const std::string_view item = text.substr(0, text.find(' '));
        const char letter = item.front();
        const std::size_t bytes = letter == 'd' ? 4 : letter == 'w' || letter == 'L' ? 2 : 1;
        operands.push_back({item.substr(2), bytes, letter == 'L'});
        text.remove_prefix(std::min(item.size() + 1, text.size()));
    }
    return operands;
}

ScriptRecord RecordAt(std::span<const std::uint8_t> script, std::size_t offset,
                      std::uint32_t block) {
    ScriptRecord record;
    record.offset = offset;
    record.block = block;
    const std::span<const std::uint8_t> rest = script.subspan(offset);
    record.bytes = rest;
    if (rest.front() >= Opcodes().size()) {
        record.length = 1;
        return record;
    }
    record.opcode = &Opcodes()[rest.front()];
    record.length = record.opcode->Length();
    if (rest.size() < record.length) {
        return record;
    }
    record.bytes = rest.first(record.length);
    for (std::size_t i = 0; i < record.opcode->operands.size(); ++i) {
        if (record.opcode->operands[i].isBlockLength) {
            record.block = record.Value(i);
        }
    }
    if (record.opcode->kind == OpcodeKind::BLOCK_WRITE) {
        record.length += record.block;
        record.bytes = rest.first(std::min(rest.size(), record.length));
    }
    if (record.opcode->kind == OpcodeKind::CALL_AND_SKIP) {
        const auto following = rest.subspan(record.length);
        record.skipped = following.first(std::min<std::size_t>(following.size(), record.block));
    }
    return record;
}

} // namespace

std::size_t Opcode::Length() const {
    std::size_t length = 1;
    for (const Operand &operand : operands) {
        length += operand.bytes;
    }
    return length;
}

std::span<const Opcode> Opcodes() {
    static const std::vector<Opcode> table = {
#define SCALER_ISP_OPCODE(CODE, NAME, KIND, OPERANDS, ACTION)                                      \
    {CODE, #NAME, OpcodeKind::KIND, ParseOperands(OPERANDS)},
#include "scaler_isp/common/script/script_opcodes.def"
    };
    return table;
}

const Opcode *FindOpcode(std::string_view name) {
    const auto found = std::find_if(Opcodes().begin(), Opcodes().end(),
                                    [&](const Opcode &opcode) { return opcode.name == name; });
    return found != Opcodes().end() ? &*found : nullptr;
}

std::uint32_t BigEndian(std::span<const std::uint8_t> bytes) {
    std::uint32_t value = 0;
    for (const std::uint8_t byte : bytes) {
        value = value << 8U | byte;
    }
    return value;
}

std::uint32_t ScriptRecord::Value(std::size_t operand) const {
    std::size_t operandOffset = 1;
    for (std::size_t i = 0; i < operand; ++i) {
        operandOffset += opcode->operands[i].bytes;
    }
    return BigEndian(bytes.subspan(operandOffset, opcode->operands[operand].bytes));
}

void ForEachRecord(std::span<const std::uint8_t> script,
                   const std::function<void(const ScriptRecord &)> &visit) {
    std::uint32_t block = 0;
    for (std::size_t offset = 0; offset < script.size();) {
        const ScriptRecord record = RecordAt(script, offset, block);
        visit(record);
        block = record.block;
        offset += record.bytes.size() + record.skipped.size();
    }
}

} // namespace ispctl
