#ifndef ISPCTL_LINE_OWN_OPTIONS_H
#define ISPCTL_LINE_OWN_OPTIONS_H

#include <cstddef>
#include <string_view>

#include "line/LineUnderCheck.h"

namespace ispctl {

std::string_view WithoutDashes(std::string_view typed);

/// Reports an option of ispctl itself among those of the library. RETURNS whether it is one.
/// \param index  of the argument in line.Given()
/// \param name   what was typed, without dashes; a near miss counts, too
bool ReportOwnOption(LineUnderCheck &line, std::size_t index, std::string_view name);

} // namespace ispctl

#endif
