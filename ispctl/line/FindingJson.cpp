#include "line/FindingJson.h"

#include <string>

namespace ispctl {

Json FindingJson(const Finding &finding) {
    Json corrected;
    for (const std::string &argument : finding.corrected) {
        corrected.push_back(JsonString(argument));
    }
    return {{"name", finding.name},
            {"class", NameOf(finding.severity)},
            {"option", StringOrNull(finding.option)},
            {"value", StringOrNull(finding.value)},
            {"argument", finding.argument ? Json(*finding.argument) : Json()},
            {"offset", finding.offset},
            {"length", finding.length},
            {"message", JsonString(finding.message)},
            {"suggestion", StringOrNull(finding.suggestion)},
            {"follows_from", StringOrNull(finding.followsFrom)},
            {"corrected", corrected}};
}

Json FindingsJson(const std::vector<Finding> &findings) {
    Json all = Json::array();
    for (const Finding &finding : findings) {
        all.push_back(FindingJson(finding));
    }
    return all;
}

} // namespace ispctl
