// What IspUserDefined.txt says, beyond the form of its lines.

#include <algorithm>
#include <iterator>
#include <string_view>
#include <vector>

#include "doctor/NameCase.h"
#include "doctor/SettingFile.h"

namespace ispctl::doctor {
namespace {

constexpr std::string_view kSection = "UserDefinedInfo";
constexpr std::size_t kMostKeys = 50;

struct Key {
    std::string_view name;
    enum class Kind { Number, Text } kind;
};

// The members of STRUCT_CP_GET_USER_DEFINED_BIN_INFO without their prefixes.
constexpr Key kKeys[] = {
    {"RecordSIMode", Key::Kind::Number},
    {"RecordModelMode", Key::Kind::Number},
    {"RecordPanelMode", Key::Kind::Number},
    {"RecordVersionMode", Key::Kind::Number},
    {"SIName", Key::Kind::Text},
    {"ModelName", Key::Kind::Text},
    {"PanelName", Key::Kind::Text},
    {"Version", Key::Kind::Text},
    {"CapabilityInfo", Key::Kind::Text},
    {"IgnoreSIName", Key::Kind::Number},
    {"IgnoreModelName", Key::Kind::Number},
    {"IgnorePanelName", Key::Kind::Number},
    {"IgnoreVersionName", Key::Kind::Number},
    {"IgnoreCapabilityInfo", Key::Kind::Number},
    {"FindBinUseVerMode", Key::Kind::Number},
};

bool IsNumber(std::string_view text) {
    constexpr std::string_view kDecimal = "0123456789";
    constexpr std::string_view kHexadecimal = "0123456789abcdefABCDEF";
    if (text.starts_with('-') || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(hexadecimal ? 2 : 0);
    return !text.empty() &&
           text.find_first_not_of(hexadecimal ? kHexadecimal : kDecimal) == std::string_view::npos;
}

} // namespace

void CheckUserDefinedKeys(const std::filesystem::path &path, const SettingText &text,
                          Report &report) {
    const std::string file = path.string();
    std::vector<KnownKey> names;
    for (const Key &key : kKeys) {
        names.push_back({kSection, key.name});
    }
    const std::size_t wrongCase = CheckNameCase(path, text, names, report);
    std::size_t count = 0;
    for (const SeenKey &seen : text.seen) {
        if (seen.section != kSection || ++count > kMostKeys) {
            continue;
        }
        const std::string line = std::to_string(seen.line);
        const auto *key = std::find_if(std::begin(kKeys), std::end(kKeys),
                                       [&](const Key &k) { return k.name == seen.key; });
        if (key == std::end(kKeys)) {
            if (std::any_of(names.begin(), names.end(), [&](const KnownKey &k) {
                    return EqualIgnoringCase(k.key, seen.key);
                })) {
                continue; // its case was reported
            }
            report.Add(FindingId::UserDefinedUnknown, file, line, seen.key);
        } else if (key->kind == Key::Kind::Number && !seen.value.empty() && !IsNumber(seen.value)) {
            report.Add(FindingId::UserDefinedNumber, file, line, seen.key);
        } else {
            report.Add(FindingId::UserDefinedKey, file, seen.key, seen.value);
        }
    }
    if (count == 0 && wrongCase == 0) {
        report.Add(FindingId::UserDefinedSection, file);
    }
}

} // namespace ispctl::doctor
