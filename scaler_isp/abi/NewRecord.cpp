#include "scaler_isp/abi/NewRecord.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <type_traits>

namespace {

using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

template <auto Default, class Field> void StoreDefault(Field &field) {
    if constexpr (Default == 0) {
        return; // the page of the field need not exist
    } else if constexpr (std::is_array_v<Field>) {
        std::fill(std::begin(field), std::end(field), std::remove_extent_t<Field>{Default});
    } else {
        field = static_cast<Field>(Default);
    }
}

#define SCALER_ISP_BANK_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT) static_assert((DEFAULT) == 0);
#include "scaler_isp/abi/command_setting_fields.def"

ZeroedPointer<Command> ZeroedRecord() {
    // Zero bytes are a complete object: the record has trivial copies, so it needs no constructor.
    return ZeroedPointer<Command>(static_cast<Command *>(AllocateZeroed(sizeof(Command))));
}

} // namespace

ZeroedPointer<Command> NewCommandRecord() {
    ZeroedPointer<Command> record = ZeroedRecord();
    if (record != nullptr) {
        StoreDefaultsInZeroedRecord(*record);
    }
    return record;
}

void StoreDefaultsInZeroedRecord(Command &record) {
#define SCALER_ISP_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT) StoreDefault<DEFAULT>(record.MEMBER);
#include "scaler_isp/abi/command_setting_fields.def"
}

ZeroedPointer<Command> CopyCommandRecord(const Command &record) {
    ZeroedPointer<Command> copy = ZeroedRecord();
    if (copy == nullptr) {
        return copy;
    }
    constexpr std::size_t kTail = offsetof(Command, stFlagSetting);
    const std::size_t entries =
        std::min<std::size_t>(record.stMapFw.ulFwCount, SCALER_ISP_MAX_BANKS);
    const std::size_t head =
        offsetof(Command, stMapFw.stFwBank) + entries * sizeof record.stMapFw.stFwBank[0];
    auto *to = reinterpret_cast<unsigned char *>(copy.get());
    const auto *from = reinterpret_cast<const unsigned char *>(&record);
    std::memcpy(to, from, head);
    std::memcpy(to + kTail, from + kTail, sizeof(Command) - kTail);
    return copy;
}
