#include "line/FindingJson.h"

#include <string>

#include "Utf8.h"

namespace ispctl {
namespace {

using nlohmann::ordered_json;

ordered_json TextOrNull(const std::string &text) {
    return text.empty() ? ordered_json(nullptr) : ordered_json(EscapeBytes(text).text);
}

} // namespace

ordered_json FindingJson(const Finding &finding) {
    ordered_json corrected;
    for (const std::string &argument : finding.corrected) {
        corrected.push_back(EscapeBytes(argument).text);
    }
    return {{"name", finding.name},
            {"class", NameOf(finding.severity)},
            {"option", TextOrNull(finding.option)},
            {"value", TextOrNull(finding.value)},
            {"argument", finding.argument ? ordered_json(*finding.argument) : ordered_json()},
            {"message", EscapeBytes(finding.message).text},
            {"suggestion", TextOrNull(finding.suggestion)},
            {"corrected", corrected}};
}

ordered_json FindingsJson(const std::vector<Finding> &findings) {
    ordered_json all = ordered_json::array();
    for (const Finding &finding : findings) {
        all.push_back(FindingJson(finding));
    }
    return all;
}

} // namespace ispctl
