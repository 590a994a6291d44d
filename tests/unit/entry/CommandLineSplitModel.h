#ifndef SCALER_ISP_TESTS_UNIT_ENTRY_COMMAND_LINE_SPLIT_MODEL_H
#define SCALER_ISP_TESTS_UNIT_ENTRY_COMMAND_LINE_SPLIT_MODEL_H

#include <optional>
#include <string>
#include <vector>

namespace model {

/// The splitting of a command line as the rules describe it, letter by letter; nothing for a line
/// that is rejected.
std::optional<std::vector<std::string>> SplitTokens(const std::string &line);

} // namespace model

#endif
