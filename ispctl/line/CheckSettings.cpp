// Why a firmware search does not find in its settings file what it looks for there.

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <optional>

#include "doctor/NameCase.h"
#include "doctor/SettingFile.h"
#include "line/Checks.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

/// What a search reads.
struct Source {
    std::string_view search; ///< value of --searchfw
    std::string_view file;   ///< in the library's directory
    std::string_view section;
    std::string_view key;     ///< empty: any key of the section will do
    std::string_view example; ///< what a file needs at least
};

constexpr Source kSources[] = {
    {"prefix", "IspSetting.ini", "ISP_Fw", "strFwPrefix",
     "the lines [ISP_Fw] and strFwPrefix=TEXT, where TEXT begins the name of the firmware file"},
    {"userdefined", "IspUserDefined.txt", "UserDefinedInfo", "",
     "the line [UserDefinedInfo] and below it the keys of the page user-defined-file.md"},
};

const Source *SourceOf(const GivenArgument &search) {
    const auto *row =
        std::find_if(std::begin(kSources), std::end(kSources),
                     [&](const Source &source) { return search.value == source.search; });
    return row != std::end(kSources) ? row : nullptr;
}

/// The settings file of a search; --settingfile before it replaces only that of the prefix.
fs::path FileOf(const LineUnderCheck &line, const GivenArgument &search, const Source &source) {
    std::string name(source.file);
    for (const GivenArgument *given : line.Options()) {
        const bool replaces = given->option->name == "settingfile" && !source.key.empty() &&
                              given->position < search.position && given->value;
        name = replaces ? *given->value : name;
    }
    return line.Context().libraryDirectory / name;
}

bool HasWhatIsRead(const doctor::SettingText &text, const Source &source) {
    return std::any_of(text.seen.begin(), text.seen.end(), [&](const doctor::SeenKey &seen) {
        return seen.section == source.section && !seen.value.empty() &&
               (source.key.empty() || seen.key == source.key);
    });
}

/// The finding that explains best why a name is not seen; null if none does.
const doctor::Finding *Cause(const doctor::Report &report, bool isSeen) {
    for (const doctor::Finding &finding : report.Findings()) {
        const auto severity = RowOf(finding.id).severity;
        const bool isBad =
            severity == doctor::FindingClass::Warning || severity == doctor::FindingClass::Error;
        // Apart from carriage returns, nothing hides a key that the examination has seen.
        if (isBad && (!isSeen || finding.id == doctor::FindingId::SettingCarriageReturn)) {
            return &finding;
        }
    }
    return nullptr;
}

} // namespace

bool IsBlockingSearch(const GivenArgument &given, const LineContext &context) {
    const bool isSearch = given.option->name == "searchfw" && given.value;
    const Source *source = isSearch ? SourceOf(given) : nullptr;
    std::error_code ignored;
    return source != nullptr && fs::is_fifo(context.libraryDirectory / source->file, ignored);
}

bool CheckSettingsOfSearch(LineUnderCheck &line, const GivenArgument &search) {
    const Source *source = SourceOf(search);
    if (source == nullptr) {
        return false;
    }
    const fs::path file = FileOf(line, search, *source);
    doctor::Report report;
    std::optional<doctor::SettingText> text;
    // A file that is not there hides nothing; its own row says so to doctor only.
    CheckSettingFile(file, doctor::FindingId::SettingReadable, report, text);
    bool isSeen = false;
    if (text) {
        isSeen = HasWhatIsRead(*text, *source);
        const doctor::KnownKey known[] = {{source->section, source->key}};
        CheckNameCase(file, *text, known, report);
    }
    FindingWords words{.example = fmt::format("give {} {}", file.string(), source->example)};
    if (const doctor::Finding *cause = Cause(report, isSeen)) {
        words.detail = MessageOf(*cause);
        words.example = RemedyOf(*cause);
    } else if (isSeen) {
        return false;
    } else if (!text) {
        words.detail = fmt::format("{} does not exist", file.string());
    } else {
        words.detail = fmt::format("{} has no {}[{}]", file.string(),
                                   source->key.empty()
                                       ? "key in the section "
                                       : fmt::format("value of {} in the section ", source->key),
                                   source->section);
    }
    line.Report("settings-file", search, Underline::Value, words);
    return true;
}

} // namespace ispctl
