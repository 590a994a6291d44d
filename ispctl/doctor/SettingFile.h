#ifndef ISPCTL_DOCTOR_SETTING_FILE_H
#define ISPCTL_DOCTOR_SETTING_FILE_H

#include <filesystem>
#include <optional>

#include "doctor/Finding.h"
#include "doctor/SettingText.h"

namespace ispctl::doctor {

/// Whether the library may be made to read the file: reading a FIFO or a device might never end.
enum class SettingAccess { Harmless, Endless };

/// Examines IspSetting.ini or IspUserDefined.txt line by line.
/// \param missing  what to report if the file does not exist
/// \param text     receives what was read; nothing if there is no text
SettingAccess CheckSettingFile(const std::filesystem::path &path, FindingId missing, Report &report,
                               std::optional<SettingText> &text);

/// What IspUserDefined.txt says, beyond the form of its lines: names and numbers.
void CheckUserDefinedKeys(const std::filesystem::path &path, const SettingText &text,
                          Report &report);

} // namespace ispctl::doctor

#endif
