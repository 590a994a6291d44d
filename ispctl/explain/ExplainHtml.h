#ifndef ISPCTL_EXPLAIN_EXPLAIN_HTML_H
#define ISPCTL_EXPLAIN_EXPLAIN_HTML_H

#include <string>

#include "explain/Explanation.h"

namespace ispctl {

/// The explanation as one page, well-formed XML too, that fetches nothing.
std::string ExplainHtml(const Explanation &explanation);

} // namespace ispctl

#endif
