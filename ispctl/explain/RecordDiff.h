#ifndef ISPCTL_EXPLAIN_RECORD_DIFF_H
#define ISPCTL_EXPLAIN_RECORD_DIFF_H

#include <string>
#include <string_view>
#include <vector>

#include "explain/RecordFields.h"

namespace ispctl {

/// A field that differs between two records of one kind.
struct FieldDifference {
    RecordKind record = RecordKind::Command;
    std::string name;
    std::size_t offset = 0;
    std::string first; ///< decoded; "not in use" of a bank entry that only the other record uses
    std::string second;
};

/// Compares field by field. Padding and bank entries that neither record uses do not count.
/// REQUIRES: both have the size of the record.
std::vector<FieldDifference> CompareRecords(RecordKind record, std::string_view first,
                                            std::string_view second);

} // namespace ispctl

#endif
