#ifndef ISPCTL_LINE_FINDING_JSON_H
#define ISPCTL_LINE_FINDING_JSON_H

#include <vector>

#include "JsonText.h"
#include "line/Finding.h"

namespace ispctl {

/// {"name":T,"class":"warning" or "error" or "fatal","option":T,"value":T,"argument":N,
///  "offset":N,"length":N,"message":T,"suggestion":T,"follows_from":T,"corrected":[T,...]}
/// "argument" is an index in ARGS, 0 first; "offset" and "length" are bytes in it. What a finding
/// does not have is null. Bytes that are not UTF-8 are escaped, see EscapedText.
Json FindingJson(const Finding &finding);

Json FindingsJson(const std::vector<Finding> &findings);

} // namespace ispctl

#endif
