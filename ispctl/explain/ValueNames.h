#ifndef ISPCTL_EXPLAIN_VALUE_NAMES_H
#define ISPCTL_EXPLAIN_VALUE_NAMES_H

#include <cstdint>
#include <string_view>

namespace ispctl {

/// The enumerator, or the keyword of the command line, that a value of this field has.
/// \param field  the field's name without the records around it, "enumActionType"
/// RETURNS an empty string if the value has no name.
std::string_view NameOfValue(std::string_view field, std::uint32_t value);

} // namespace ispctl

#endif
