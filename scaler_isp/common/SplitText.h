#ifndef SCALER_ISP_COMMON_SPLIT_TEXT_H
#define SCALER_ISP_COMMON_SPLIT_TEXT_H

#include <string>
#include <string_view>
#include <vector>

/// The fields between any of the delimiters, without empty ones. As StringSplit with keepEmpty 0,
/// but throws if there is no memory.
std::vector<std::string> SplitText(std::string_view text, std::string_view delimiters);

#endif
