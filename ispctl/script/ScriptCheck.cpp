#include "script/ScriptCheck.h"

#include <fmt/format.h>

#include "script/ScriptOpcodes.h"

namespace ispctl {
namespace {

// A script full of problems must not exhaust memory with their messages.
constexpr std::size_t kMaxRemarks = 1000;

void CheckSkip(const ScriptRecord &record, ScriptReport &report) {
    if (record.block == 0 || report.notes.size() >= kMaxRemarks) {
        return;
    }
    report.notes.push_back(fmt::format(
        "offset {}: {} follows a block of {} bytes, so the runner skips the next {} bytes",
        record.offset, record.opcode->name, record.block, record.block));
    if (record.skipped.size() < record.block) {
        report.notes.push_back(
            fmt::format("offset {}: only {} of them are left, so the script ends there",
                        record.offset, record.skipped.size()));
    }
}

void CheckRecord(const ScriptRecord &record, ScriptReport &report) {
    const auto problem = [&](const std::string &text) {
        if (report.problems.size() < kMaxRemarks) {
            report.problems.push_back(fmt::format("offset {}: {}", record.offset, text));
        }
        ++report.problemCount;
    };
    if (record.opcode == nullptr) {
        problem(fmt::format("unknown opcode 0x{:02X}", record.bytes.front()));
        return;
    }
    if (!record.IsComplete()) {
        problem(fmt::format("{} needs {} bytes, only {} left", record.opcode->name, record.length,
                            record.bytes.size()));
        return;
    }
    switch (record.opcode->kind) {
    case OpcodeKind::UNSUPPORTED:
        problem(fmt::format("opcode {} is not supported", record.opcode->code));
        break;
    case OpcodeKind::READ:
        ++report.outputBytes;
        break;
    case OpcodeKind::BLOCK_READ:
        report.outputBytes += record.block;
        break;
    case OpcodeKind::CALL_AND_SKIP:
        CheckSkip(record, report);
        break;
    default:
        break;
    }
}

} // namespace

ScriptReport CheckScript(std::span<const std::uint8_t> script) {
    ScriptReport report;
    ForEachRecord(script, [&](const ScriptRecord &record) {
        ++report.records;
        CheckRecord(record, report);
    });
    return report;
}

} // namespace ispctl
