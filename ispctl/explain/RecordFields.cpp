#include "explain/RecordFields.h"

#include "scaler_isp/abi/CommandSetting.h"

namespace ispctl {
namespace {

constexpr RecordField kCommandFields[] = {
#define SCALER_ISP_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT)                                     \
    {#MEMBER, FieldKind::KIND, OFFSET, WIDTH, DEFAULT},
#include "scaler_isp/abi/command_setting_fields.def"
};

constexpr RecordField kBankEntryFields[] = {
#define SCALER_ISP_BANK_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT)                                \
    {#MEMBER, FieldKind::KIND, OFFSET, WIDTH, DEFAULT},
#include "scaler_isp/abi/command_setting_fields.def"
};

constexpr RecordField kSignFields[] = {
#define SCALER_ISP_SIGN_FIELD(KIND, MEMBER, OFFSET, WIDTH)                                         \
    {#MEMBER, FieldKind::KIND, OFFSET, WIDTH, 0},
#include "scaler_isp/abi/digital_sign_fields.def"
};

#define SCALER_ISP_BANK_ENTRIES(OFFSET, WIDTH)                                                     \
    static_assert(kBankEntriesOffset == (OFFSET));                                                 \
    static_assert(kBankEntryBytes * SCALER_ISP_MAX_BANKS == (WIDTH));
#include "scaler_isp/abi/command_setting_fields.def"

} // namespace

std::string_view NameOf(RecordKind record) {
    return record == RecordKind::Command ? "command" : "sign";
}

std::size_t SizeOf(RecordKind record) {
    return record == RecordKind::Command ? sizeof(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING)
                                         : sizeof(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS);
}

std::span<const RecordField> FieldsOf(RecordKind record) {
    return record == RecordKind::Command ? std::span<const RecordField>(kCommandFields)
                                         : std::span<const RecordField>(kSignFields);
}

std::span<const RecordField> BankEntryFields() {
    return kBankEntryFields;
}

} // namespace ispctl
