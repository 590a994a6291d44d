#include "doctor/NameCase.h"

#include <algorithm>
#include <fmt/format.h>

namespace ispctl::doctor {
namespace {

constexpr KnownKey kSettingKeys[] = {
    {"Communication", "enumCommID"},
    {"ISP_Action", "enumActionType"},
    {"ISP_DualBank", "enumDigitalSignatureType"},
    {"ISP_DualBank", "enumSWDigitalSignatureMode"},
    {"ISP_DualBank", "enumBootCodeType"},
    {"ISP_DualBank", "enumIspMode"},
    {"ISP_Basic", "enumVersionLocationType"},
    {"ISP_Basic", "enumMergeFWInfoMode"},
    {"ISP_Basic", "enumMergeFWInfoType"},
    {"ISP_Basic", "enumMergeFWGeneration"},
    {"ISP_Basic", "bAutoSearchFW"},
    {"ISP_Basic", "bShowEraseUI"},
    {"ISP_Basic", "bShowFWInfoUI"},
    {"ISP_Basic", "bShowFWVersion"},
    {"ISP_Basic", "bShowMergeFW"},
    {"ISP_Basic", "bShowDualBankFW"},
    {"ISP_Basic", "bShowResetMCU"},
    {"ISP_Basic", "bShowEnterIspMode"},
    {"ISP_Fw", "ulProgStartBank"},
    {"ISP_Fw", "strFwPrefix"},
    {"ISP_Flash", "bShowDumpFlash"},
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
