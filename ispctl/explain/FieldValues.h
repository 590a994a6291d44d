#ifndef ISPCTL_EXPLAIN_FIELD_VALUES_H
#define ISPCTL_EXPLAIN_FIELD_VALUES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "explain/RecordFields.h"

namespace ispctl {

/// One field of a record that is in memory.
struct FieldValue {
    RecordKind record = RecordKind::Command;
    std::string name; ///< dotted; of a bank entry "stMapFw.stFwBank[3].wszFwPath"
    FieldKind kind = FieldKind::U32;
    std::size_t offset = 0;               ///< from the start of the record
    std::string_view bytes;               ///< of the record; of the target banks those in use
    std::optional<std::size_t> bankEntry; ///< index of the bank entry that it belongs to
    std::int64_t defaultValue = 0;
    bool isDefault = false; ///< target banks in use are never a default
};

/// The bank entries in use: ulFwCount, but not more than there are.
std::size_t UsedBanks(std::string_view commandRecord);

/// All fields in the order of their bytes, but no padding and no bank entry that is not in use. The
/// values refer to the bytes. REQUIRES: bytes has the size of the record.
std::vector<FieldValue> ReadFields(RecordKind record, std::string_view bytes);

/// A number as it is stored, sign-extended. REQUIRES: the field is a number.
std::int64_t NumberOf(const FieldValue &field);

/// The elements of BYTES or BANKS. A BYTES array ends with its last byte that is not the default.
std::vector<std::uint32_t> ElementsOf(const FieldValue &field);

/// A string in valid UTF-8. What is not text is escaped as EscapeWide and EscapeBytes do it.
struct FieldString {
    std::string text;
    bool escaped = false;
    bool terminated = false; ///< false: it fills the field completely
};

/// REQUIRES: the field is WIDE or NARROW.
FieldString StringOf(const FieldValue &field);

/// The value for a reader: numbers with the name of their value, strings in double quotes.
std::string TextOf(const FieldValue &field);

/// "00FF", two digits per byte.
std::string HexOf(std::string_view bytes);

/// Ascending numbers: "0-2, 7".
std::string RangesOf(const std::vector<std::uint32_t> &numbers);

} // namespace ispctl

#endif
