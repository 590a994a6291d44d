#ifndef ISPCTL_EXPLAIN_RUN_PLAN_H
#define ISPCTL_EXPLAIN_RUN_PLAN_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "line/ParsedLine.h"

namespace ispctl {

/// A result with which a step can end the run.
struct PlanResult {
    std::optional<int> code; ///< nothing: any number that the plug-in chooses
    std::string_view source; ///< "library" or "plug-in"
    std::string text;        ///< meaning, cause and remedy
};

/// One thing that a run does.
struct PlanStep {
    std::string_view name; ///< stable, such as "load-isp-plugin"
    std::string text;      ///< sentences
    std::string plugIn;    ///< file of the plug-in that is loaded or called; may be empty
    std::string function;  ///< its function that is called; may be empty
    std::vector<PlanResult> results;
};

/// The name of the step that programs the boot firmware.
inline constexpr std::string_view kBootStep = "program-boot-firmware";

/// What the library does with a line, in order and as far as the line alone decides it: no plug-in
/// is opened, so neither its functions nor its results are known.
/// \param directory  the library's
std::vector<PlanStep> PlanOf(const ParsedLine &line, const std::string &directory);

} // namespace ispctl

#endif
