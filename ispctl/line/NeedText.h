#ifndef ISPCTL_LINE_NEED_TEXT_H
#define ISPCTL_LINE_NEED_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "line/LineUnderCheck.h"

namespace ispctl {

/// Why an expression of the option table does not hold for an option of a line, in the words of
/// whoever wrote the line.
struct NeedText {
    /// "without --sw or --hw", or "with --resetmcu; it is for --isp or --ispuser"
    std::string detail;
    std::string words;   ///< what is missing: "--sw or --hw"; empty if no addition helps
    std::string example; ///< what can be added: "--vkfile /srv/fw/key.pem"; empty as above
    bool isForOtherAction = false;
};

/// \param index  of the option in line.Options()
/// REQUIRES: the expression does not hold for this option.
NeedText DescribeNeed(const LineUnderCheck &line, std::size_t index, std::string_view expression);

} // namespace ispctl

#endif
