#ifndef ISPCTL_EXPLAIN_RECORD_FIELDS_H
#define ISPCTL_EXPLAIN_RECORD_FIELDS_H

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace ispctl {

/// The two records of a command line.
enum class RecordKind { Command, Sign };

/// "command" or "sign".
std::string_view NameOf(RecordKind record);

/// UNITS: bytes.
std::size_t SizeOf(RecordKind record);

/// The column KIND of the field tables.
enum class FieldKind { U32, I32, U8, U64, BYTES, WIDE, NARROW, BANKS };

/// One row of command_setting_fields.def or digital_sign_fields.def.
struct RecordField {
    std::string_view name; ///< "stMapFw.ulFwCount"
    FieldKind kind = FieldKind::U32;
    std::size_t offset = 0; ///< from the start of the record, or of the bank entry
    std::size_t width = 0;
    std::int64_t defaultValue = 0; ///< of an array: of every element
};

/// The rows in the order of their bytes, without those of the bank entries.
std::span<const RecordField> FieldsOf(RecordKind record);

/// The rows of one bank entry.
std::span<const RecordField> BankEntryFields();

/// Where the bank entries are in the command record. UNITS: bytes.
inline constexpr std::size_t kBankEntriesOffset = 2144;
inline constexpr std::size_t kBankEntryBytes = 1056;

} // namespace ispctl

#endif
