#ifndef ISPCTL_LINE_FINDING_TABLE_H
#define ISPCTL_LINE_FINDING_TABLE_H

#include <cstddef>
#include <iterator>
#include <span>
#include <string>
#include <string_view>

#include "line/Finding.h"

namespace ispctl {

/// One row of findings.def.
struct FindingRow {
    std::string_view name;
    FindingClass severity;
    std::string_view message;
    std::string_view suggestion;
};

inline constexpr FindingRow kFindingRows[] = {
#define ISPCTL_FINDING(NAME, CLASS, MESSAGE, SUGGESTION)                                           \
    {NAME, FindingClass::CLASS, MESSAGE, SUGGESTION},
#include "line/findings.def"
};

/// The row with this name, or null.
constexpr const FindingRow *FindFindingRow(std::string_view name) {
    for (const FindingRow &row : kFindingRows) {
        if (row.name == name) {
            return &row;
        }
    }
    return nullptr;
}

/// The index of the row with this name; the number of rows if there is none.
constexpr std::size_t IndexOfFindingRow(std::string_view name) {
    std::size_t index = 0;
    while (index < std::size(kFindingRows) && kFindingRows[index].name != name) {
        ++index;
    }
    return index;
}

/// The name of a row; a name that has none does not compile. An index and no pointer: under the
/// undefined behaviour sanitizer g++ takes a pointer into the table for no constant.
class FindingName {
  public:
    consteval FindingName(const char *name) // NOLINT(google-explicit-constructor)
        : m_index(IndexOfFindingRow(name)) {
        if (m_index == std::size(kFindingRows)) {
            throw "no such finding";
        }
    }

    const FindingRow &Row() const {
        return kFindingRows[m_index];
    }

  private:
    std::size_t m_index;
};

/// What stands for the names in the texts of a row.
struct FindingWords {
    std::string option = {};
    std::string value = {};
    std::string other = {};
    std::string allowed = {};
    std::string example = {};
    std::string detail = {};
};

/// A finding with the class and the texts of its row.
Finding MakeFinding(FindingName name, const FindingWords &words);

} // namespace ispctl

#endif
