#ifndef ISPCTL_DOCTOR_NAME_CASE_H
#define ISPCTL_DOCTOR_NAME_CASE_H

#include <filesystem>
#include <span>
#include <string_view>

#include "doctor/Finding.h"
#include "doctor/SettingText.h"

namespace ispctl::doctor {

/// A key that the library reads.
struct KnownKey {
    std::string_view section;
    std::string_view key;
};

/// The keys of IspSetting.ini.
std::span<const KnownKey> KeysOfSettingFile();

bool EqualIgnoringCase(std::string_view a, std::string_view b);

/// Reports sections and keys that differ from these only in upper and lower case, so that the
/// library does not find them. RETURNS how many.
std::size_t CheckNameCase(const std::filesystem::path &path, const SettingText &text,
                          std::span<const KnownKey> known, Report &report);

} // namespace ispctl::doctor

#endif
