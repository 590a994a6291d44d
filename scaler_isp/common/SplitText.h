#ifndef SCALER_ISP_COMMON_SPLIT_TEXT_H
#define SCALER_ISP_COMMON_SPLIT_TEXT_H

#include <string>
#include <string_view>
#include <vector>

/// The fields between any of the delimiters; empty fields are left out. As StringSplit with 0 for
/// keepEmpty, but a lack of memory throws.
std::vector<std::string> SplitText(std::string_view text, std::string_view delimiters);

#endif
