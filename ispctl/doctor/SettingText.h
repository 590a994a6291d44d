#ifndef ISPCTL_DOCTOR_SETTING_TEXT_H
#define ISPCTL_DOCTOR_SETTING_TEXT_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "doctor/Finding.h"

namespace ispctl::doctor {

/// A key that the library's reader finds.
struct SeenKey {
    std::string section;
    std::string key;
    std::string value;
    std::size_t line = 0;
    std::size_t sectionLine = 0;
};

/// Something about one line.
struct LineFinding {
    FindingId id;
    std::size_t line = 0;
    std::string detail;
};

/// A settings file, read by the rules of the library: see docs/settings-files.md.
struct SettingText {
    std::vector<SeenKey> seen;
    std::vector<LineFinding> findings; ///< in the order of the lines
};

/// How many characters a line has. UNITS: characters of the encoding in which the file is read.
using CountCharacters = std::function<std::size_t(std::string_view line)>;

/// Examines the bytes of a settings file. Carriage returns are reported once and then ignored, so
/// that the other findings are those that remain when they are gone.
SettingText ExamineSettings(std::string_view bytes, const CountCharacters &count);

} // namespace ispctl::doctor

#endif
