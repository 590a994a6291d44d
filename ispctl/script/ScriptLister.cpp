#include <fmt/format.h>

#include "script/ScriptOpcodes.h"
#include "script/ScriptText.h"

namespace ispctl {
namespace {

constexpr std::size_t kBytesPerLine = 16;

std::string HexBytes(std::span<const std::uint8_t> bytes, std::string_view lineStart) {
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text += i == 0 ? "" : i % kBytesPerLine == 0 ? fmt::format(",\n{}", lineStart) : ", ";
        text += fmt::format("0x{:02X}", bytes[i]);
    }
    return text;
}

std::string List(std::span<const std::uint8_t> bytes) {
    return bytes.size() > kBytesPerLine ? fmt::format("{{\n    {}\n}}", HexBytes(bytes, "    "))
                                        : fmt::format("{{{}}}", HexBytes(bytes, ""));
}

// Counts and times are easier to read as decimals.
bool IsDecimal(const Operand &operand) {
    return operand.isBlockLength || operand.name == "ms" || operand.name == "tries" ||
           operand.name == "interval" || operand.name == "inc";
}

std::string Statement(const ScriptRecord &record) {
    std::string text(record.opcode->name);
    const bool writesBlock = record.opcode->kind == OpcodeKind::BLOCK_WRITE;
    const char *separator = " ";
    for (std::size_t i = 0; i < record.opcode->operands.size(); ++i) {
        const Operand &operand = record.opcode->operands[i];
        if (writesBlock && operand.isBlockLength) {
            continue;
        }
        const std::uint32_t value = record.Value(i);
        text += fmt::format("{}{} = ", separator, operand.name);
        text += IsDecimal(operand) ? fmt::format("{}", value)
                                   : fmt::format("0x{:0{}X}", value, 2 * operand.bytes);
        separator = ", ";
    }
    if (writesBlock) {
        text += fmt::format("{}data = {}", separator, List(record.Data()));
    }
    return text + "\n";
}

} // namespace

std::string ListScript(std::span<const std::uint8_t> script) {
    std::string text;
    ForEachRecord(script, [&](const ScriptRecord &record) {
        if (record.opcode == nullptr) {
            text += "// unknown opcode: the runner ends here with result 1\n";
        } else if (!record.IsComplete()) {
            text += fmt::format("// {}: {} of its {} bytes\n", record.opcode->name,
                                record.bytes.size(), record.length);
        }
        text +=
            record.IsComplete() ? Statement(record) : fmt::format("bytes {}\n", List(record.bytes));
        if (!record.skipped.empty()) {
            text += fmt::format("// skipped, the last block length is {}\nbytes {}\n", record.block,
                                List(record.skipped));
        }
    });
    return text;
}

std::string ByteListOfScript(std::span<const std::uint8_t> script) {
    std::string text;
    ForEachRecord(script, [&](const ScriptRecord &record) {
        text += HexBytes(record.bytes, "    ") + ",\n";
        if (!record.skipped.empty()) {
            text += HexBytes(record.skipped, "    ") + ",\n";
        }
    });
    return text;
}

} // namespace ispctl
