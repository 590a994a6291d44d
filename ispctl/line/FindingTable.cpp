#include "line/FindingTable.h"

#include <fmt/args.h>
#include <fmt/format.h>
#include <utility>

namespace ispctl {
namespace {

std::string Expand(std::string_view format, const FindingWords &words) {
    fmt::dynamic_format_arg_store<fmt::format_context> store;
    store.push_back(fmt::arg("option", words.option));
    store.push_back(fmt::arg("value", words.value));
    store.push_back(fmt::arg("other", words.other));
    store.push_back(fmt::arg("allowed", words.allowed));
    store.push_back(fmt::arg("example", words.example));
    store.push_back(fmt::arg("detail", words.detail));
    return fmt::vformat(fmt::string_view(format.data(), format.size()), store);
}

bool HasAll(std::string_view format, const FindingWords &words) {
    const std::pair<std::string_view, const std::string &> all[] = {
        {"{option}", words.option},   {"{value}", words.value},     {"{other}", words.other},
        {"{allowed}", words.allowed}, {"{example}", words.example}, {"{detail}", words.detail}};
    for (const auto &[name, word] : all) {
        if (word.empty() && format.find(name) != std::string_view::npos) {
            return false;
        }
    }
    return true;
}

std::string FirstComplete(std::string_view alternatives, const FindingWords &words) {
    for (;;) {
        const std::size_t end = alternatives.find('|');
        const std::string_view one = alternatives.substr(0, end);
        if (HasAll(one, words)) {
            return Expand(one, words);
        }
        if (end == std::string_view::npos) {
            return "";
        }
        alternatives.remove_prefix(end + 1);
    }
}

} // namespace

Finding MakeFinding(FindingName name, const FindingWords &words) {
    const FindingRow &row = name.Row();
    Finding finding;
    finding.name = row.name;
    finding.severity = row.severity;
    finding.message = Expand(row.message, words);
    finding.suggestion = FirstComplete(row.suggestion, words);
    finding.option = words.option;
    finding.value = words.value;
    return finding;
}

std::string_view NameOf(FindingClass severity) {
    switch (severity) {
    case FindingClass::Warning:
        return "warning";
    case FindingClass::Error:
        return "error";
    case FindingClass::Fatal:
        break;
    }
    return "fatal";
}

} // namespace ispctl
