#ifndef ISPCTL_LINE_FINDING_JSON_H
#define ISPCTL_LINE_FINDING_JSON_H

#include <vector>

#include <nlohmann/json.hpp>

#include "line/Finding.h"

namespace ispctl {

/// {"name":T,"class":"warning" or "error" or "fatal","option":T,"value":T,"argument":N,
///  "message":T,"suggestion":T,"corrected":[T,...]}
/// "argument" is an index in ARGS, 0 first. What a finding does not have is null. Bytes that are
/// not UTF-8 are escaped, see EscapedText.
nlohmann::ordered_json FindingJson(const Finding &finding);

nlohmann::ordered_json FindingsJson(const std::vector<Finding> &findings);

} // namespace ispctl

#endif
