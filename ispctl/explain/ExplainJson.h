#ifndef ISPCTL_EXPLAIN_EXPLAIN_JSON_H
#define ISPCTL_EXPLAIN_EXPLAIN_JSON_H

#include <string>

#include "VisibleText.h"
#include "explain/Explanation.h"

namespace ispctl {

/// The explanation as one JSON document.
std::string ExplainJson(const Explanation &explanation, Charset charset);

} // namespace ispctl

#endif
