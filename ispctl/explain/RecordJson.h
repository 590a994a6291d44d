#ifndef ISPCTL_EXPLAIN_RECORD_JSON_H
#define ISPCTL_EXPLAIN_RECORD_JSON_H

#include <nlohmann/json.hpp>
#include <string_view>

#include "explain/RecordRows.h"

namespace ispctl {

/// All fields of a record, nested and named as in the header, with plain values: numbers, strings,
/// arrays of numbers. Of the bank map the entries in use; an array of bytes ends with its last byte
/// that is not the default.
nlohmann::ordered_json RecordValues(RecordKind record, std::string_view bytes);

/// Offset, bytes and decoded text of the fields, keyed by dotted name.
nlohmann::ordered_json RecordFieldDetails(RecordKind record, std::string_view bytes,
                                          FieldChoice choice);

} // namespace ispctl

#endif
