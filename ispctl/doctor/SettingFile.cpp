#include "doctor/SettingFile.h"

#include <algorithm>

#include "Environment.h"
#include "doctor/FileState.h"
#include "doctor/LocaleCheck.h"

namespace ispctl::doctor {
namespace {

// Far more than a full firmware map needs. UNITS: bytes.
constexpr std::size_t kLimit = 1024 * 1024;
constexpr std::size_t kMostFindings = 30;

// Nothing if the line is not text. A NUL is a character and ends none.
std::optional<std::size_t> Characters(std::string_view line) {
    std::size_t total = 0;
    for (;;) {
        const std::string_view piece = line.substr(0, line.find('\0'));
        const auto count = CountCharactersOfEnvironment(std::string(piece));
        if (!count) {
            return std::nullopt;
        }
        total += *count;
        if (piece.size() == line.size()) {
            return total;
        }
        ++total;
        line.remove_prefix(piece.size() + 1);
    }
}

// The number of the first line that is not text in the environment's encoding; 0 if all are.
std::size_t FirstLineOfOtherEncoding(std::string_view bytes) {
    if (IsPlainAscii(EnvironmentEncoding())) {
        return 0;
    }
    for (std::size_t number = 1; !bytes.empty(); ++number) {
        const std::string_view line = bytes.substr(0, bytes.find('\n'));
        if (!Characters(line)) {
            return number;
        }
        bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
    }
    return 0;
}

SettingText Examine(const std::string &file, const std::string &bytes, Report &report) {
    const std::size_t other = FirstLineOfOtherEncoding(bytes);
    if (other != 0) {
        report.Add(FindingId::SettingEncoding, file, std::to_string(other), EnvironmentEncoding());
    }
    const bool byteForByte = other != 0 || IsPlainAscii(EnvironmentEncoding());
    return ExamineSettings(bytes, [&](std::string_view line) {
        return byteForByte ? line.size() : Characters(line).value_or(line.size());
    });
}

void ReportLines(const std::string &file, const SettingText &text, Report &report) {
    const std::size_t shown = std::min(text.findings.size(), kMostFindings);
    for (std::size_t i = 0; i < shown; ++i) {
        const LineFinding &finding = text.findings[i];
        report.Add(finding.id, file, std::to_string(finding.line), finding.detail);
    }
    if (text.findings.size() > shown) {
        report.Add(FindingId::SettingMore, file, std::to_string(text.findings.size() - shown));
    }
}

} // namespace

SettingAccess CheckSettingFile(const std::filesystem::path &path, FindingId missing, Report &report,
                               std::optional<SettingText> &text) {
    const std::string file = path.string();
    const FileState state = StateOf(path);
    switch (state.kind) {
    case FileState::Kind::Missing:
        report.Add(missing, file);
        return SettingAccess::Harmless;
    case FileState::Kind::Unreachable:
        report.Add(FindingId::SettingUnreadable, file, state.description);
        return SettingAccess::Harmless;
    case FileState::Kind::Directory:
    case FileState::Kind::Special:
        report.Add(FindingId::SettingNotFile, file, state.description);
        return SettingAccess::Endless;
    case FileState::Kind::Regular:
        break;
    }
    std::string error;
    const auto bytes = ReadBeginning(path, kLimit + 1, error);
    if (!bytes) {
        report.Add(FindingId::SettingUnreadable, file, error);
        return SettingAccess::Harmless;
    }
    if (bytes->size() > kLimit) {
        report.Add(FindingId::SettingTooLarge, file, std::to_string(kLimit));
        return SettingAccess::Endless;
    }
    report.Add(FindingId::SettingReadable, file, std::to_string(bytes->size()));
    text = Examine(file, *bytes, report);
    ReportLines(file, *text, report);
    return SettingAccess::Harmless;
}

} // namespace ispctl::doctor
