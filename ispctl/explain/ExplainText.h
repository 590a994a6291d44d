#ifndef ISPCTL_EXPLAIN_EXPLAIN_TEXT_H
#define ISPCTL_EXPLAIN_EXPLAIN_TEXT_H

#include <cstddef>
#include <string>

#include "VisibleText.h"
#include "explain/Explanation.h"

namespace ispctl {

/// How an explanation is shown.
struct ExplainLook {
    Charset charset = Charset::Utf8;
    std::size_t width = 80; ///< UNITS: columns of the terminal
};

/// The explanation for a terminal, with the colours of FlashText.
std::string ExplainText(const Explanation &explanation, const ExplainLook &look);

/// A result of a step: "result 0xD67 of the library: the ISP plug-in ...".
std::string DescribePlanResult(const PlanResult &result);

/// The plug-in and the function of a step: "calls IspFlash of /opt/PlugIn/libIsp.dylib"; empty if
/// the step touches no plug-in.
std::string DescribePlanCall(const PlanStep &step);

} // namespace ispctl

#endif
