#ifndef ISPCTL_EXPLAIN_EXPLAIN_TEXT_H
#define ISPCTL_EXPLAIN_EXPLAIN_TEXT_H

#include <string>

#include "VisibleText.h"
#include "explain/Explanation.h"

namespace ispctl {

/// The explanation for a terminal, with the colours of FlashText.
std::string ExplainText(const Explanation &explanation, Charset charset);

/// A result of a step: "0xD67 (library): the ISP plug-in ... cannot be loaded".
std::string DescribePlanResult(const PlanResult &result);

/// The plug-in and the function of a step: "calls IspFlash of /opt/PlugIn/libIsp.dylib"; empty if
/// the step touches no plug-in.
std::string DescribePlanCall(const PlanStep &step);

} // namespace ispctl

#endif
