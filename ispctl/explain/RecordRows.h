#ifndef ISPCTL_EXPLAIN_RECORD_ROWS_H
#define ISPCTL_EXPLAIN_RECORD_ROWS_H

#include <string>
#include <string_view>
#include <vector>

#include "explain/RecordFields.h"

namespace ispctl {

enum class FieldChoice {
    NotDefault, ///< what differs from the defaults; bank entries of one file are one row
    All,
};

/// One row of the table that shows a record to a reader.
struct RecordRow {
    std::string offset; ///< "0x0058"
    std::string name;
    std::string bytes; ///< hexadecimal, shortened
    std::string value;
};

/// REQUIRES: bytes has the size of the record.
std::vector<RecordRow> RowsOf(RecordKind record, std::string_view bytes, FieldChoice choice);

} // namespace ispctl

#endif
