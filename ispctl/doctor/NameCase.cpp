#include "doctor/NameCase.h"

#include <algorithm>
#include <fmt/format.h>

namespace ispctl::doctor {
namespace {

constexpr KnownKey kSettingKeys[] = {
#define SCALER_ISP_COMMAND_KEY(SECTION, FIELD, DEFAULT) {SECTION, #FIELD},
#define SCALER_ISP_UI_KEY(SECTION, FIELD) {SECTION, #FIELD},
#define SCALER_ISP_TEXT_KEY(SECTION, KEY) {SECTION, #KEY},
#include "scaler_isp/settings/setting_keys.def"
};

// Names of the library are ASCII, so no other letters have to be compared.
char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The known name that this one differs from in case only; empty if there is none.
std::string_view Meant(std::string_view name, std::span<const KnownKey> known,
                       std::string_view KnownKey::*part) {
    std::string_view meant;
    for (const KnownKey &key : known) {
        if (key.*part == name) {
            return "";
        }
        meant = EqualIgnoringCase(key.*part, name) ? key.*part : meant;
    }
    return meant;
}

} // namespace

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

std::span<const KnownKey> KeysOfSettingFile() {
    return kSettingKeys;
}

std::size_t CheckNameCase(const std::filesystem::path &path, const SettingText &text,
                          std::span<const KnownKey> known, Report &report) {
    std::size_t count = 0;
    std::size_t lastSection = 0;
    const auto add = [&](std::size_t line, const std::string &words) {
        report.Add(FindingId::SettingNameCase, path.string(), std::to_string(line), words);
        ++count;
    };
    for (const SeenKey &seen : text.seen) {
        const std::string_view section = Meant(seen.section, known, &KnownKey::section);
        if (!section.empty() && seen.sectionLine != lastSection) {
            add(seen.sectionLine, fmt::format("[{}] is not [{}]", seen.section, section));
            lastSection = seen.sectionLine;
        }
        const std::string_view key = Meant(seen.key, known, &KnownKey::key);
        if (!key.empty()) {
            add(seen.line, fmt::format("{} is not {}", seen.key, key));
        }
    }
    return count;
}

} // namespace ispctl::doctor
