#include "scaler_isp/args/CommandFlow.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string_view>

#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/PathResolution.h"
#include "scaler_isp/common/SplitText.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/common/TextUtil.h"
#include "scaler_isp/settings/IniReader.h"

namespace {

using Names = std::vector<std::string>;
using Info = STRUCT_CP_GET_USER_DEFINED_BIN_INFO;

constexpr const char *kExtension = ".bin";

Names NamesContaining(const Names &names, const std::string &text) {
    Names matching;
    std::copy_if(names.begin(), names.end(), std::back_inserter(matching),
                 [&](const std::string &name) { return name.find(text) != std::string::npos; });
    return matching;
}

/// Reads IspUserDefined.txt and converts its values to the strings that a file name must contain.
class UserDefinedFile {
  public:
    explicit UserDefinedFile(const std::string &directory)
        : m_file(directory + "IspUserDefined.txt") {}

    int Number(std::wstring_view key) const {
        return m_file.Number(kSection, key, 0);
    }

    std::uint32_t Flag(std::wstring_view key) const {
        return static_cast<std::uint32_t>(Number(key));
    }

    /// A value with its spaces removed.
    std::string Text(std::wstring_view key) const {
        std::wstring text = m_file.String(kSection, key);
        DeleteBlankW(text);
        return Utf8FromWide(text);
    }

    /// Converts a value, a list separated by spaces, to numbers; false if one is not a number.
    bool Numbers(std::wstring_view key, std::vector<int> &numbers) const {
        for (const std::string &item : SplitText(Utf8FromWide(m_file.String(kSection, key)), " ")) {
            int number = 0;
            if (StringtoInt(item, number) == 0) {
                return false;
            }
            numbers.push_back(number);
        }
        return true;
    }

  private:
    static constexpr std::wstring_view kSection = L"UserDefinedInfo";

    IniReader m_file;
};

/// How one identification string is read, and how file names are filtered by it.
struct IdentificationRow {
    const wchar_t *pszModeKey;
    std::uint32_t Info::*pMode;
    const char *pszModeError;
    const wchar_t *pszTextKey;
    std::string Info::*pText;
    const wchar_t *pszIgnoreKey;
    std::uint32_t Info::*pIgnore;
    const char *pszNoMatchError;
};

constexpr std::uint32_t kRecordModeCount = 3;
constexpr int kFindModeCount = 2;

constexpr IdentificationRow kIdentificationRows[] = {
    {L"RecordSIMode", &Info::ulRecordSIMode, "Record si mode setting error!", L"SIName",
     &Info::strSIName, L"IgnoreSIName", &Info::bIgnoreSIName,
     "cann't find fw use userdefined SI name info!\n"},
    {L"RecordModelMode", &Info::ulRecordModelMode, "Record model mode setting error!", L"ModelName",
     &Info::strModelName, L"IgnoreModelName", &Info::bIgnoreModelName,
     "cann't find fw use userdefined model name info!\n"},
    {L"RecordPanelMode", &Info::ulRecordPanelMode, "Record panel mode setting error!", L"PanelName",
     &Info::strPanelName, L"IgnorePanelName", &Info::bIgnorePanelName,
     "cann't find fw use userdefined panel name info!\n"},
};

// QUIRK Only_wrong_version_mode_ends_reading: an invalid mode of a name is reported and
// treated as 0.
bool ReadModes(const UserDefinedFile &file, Info &info) {
    for (const IdentificationRow &row : kIdentificationRows) {
        const std::uint32_t mode = file.Flag(row.pszModeKey);
        info.*row.pMode = mode < kRecordModeCount ? mode : 0;
        if (mode >= kRecordModeCount) {
            std::fputs(row.pszModeError, stdout);
        }
    }
    const std::uint32_t versionMode = file.Flag(L"RecordVersionMode");
    if (versionMode >= kRecordModeCount) {
        std::fputs("Record version mode setting error!", stdout);
        return false;
    }
    info.ulRecordVersionMode = versionMode;
    const int findMode = file.Number(L"FindBinUseVerMode");
    if (findMode >= kFindModeCount) {
        std::fputs("Find bin version mode setting error!", stdout);
        return false;
    }
    info.enumFindBinUseVerMode = static_cast<ENUM_FIND_BIN_MODE_USE_VER_MODE>(findMode);
    return true;
}

bool ReadIgnoreFlags(const UserDefinedFile &file, Info &info) {
    for (const IdentificationRow &row : kIdentificationRows) {
        info.*row.pIgnore = file.Flag(row.pszIgnoreKey);
    }
    info.bIgnoreVersionName = file.Flag(L"IgnoreVersionName");
    info.bIgnoreCapabilityInfo = file.Flag(L"IgnoreCapabilityInfo");
    if (info.bIgnoreSIName != 0 && info.bIgnoreModelName != 0 && info.bIgnorePanelName != 0 &&
        info.bIgnoreVersionName != 0) {
        std::fputs("Ignore setting error!", stdout);
        return false;
    }
    return true;
}

bool ReadName(const UserDefinedFile &file, const IdentificationRow &row, Info &info) {
    if (info.*row.pMode == 0) {
        info.*row.pText = file.Text(row.pszTextKey);
        return true;
    }
    std::vector<int> codes;
    if (!file.Numbers(row.pszTextKey, codes)) {
        return false;
    }
    std::string text;
    for (const int code : codes) {
        text.push_back(static_cast<char>(static_cast<unsigned char>(code)));
    }
    std::erase(text, '\0'); // code 0 is not a character
    info.*row.pText = text;
    return true;
}

bool ReadVersion(const UserDefinedFile &file, Info &info) {
    if (info.ulRecordVersionMode == 0) {
        info.strVersion = file.Text(L"Version");
        return true;
    }
    std::vector<int> numbers;
    if (!file.Numbers(L"Version", numbers)) {
        return false;
    }
    std::string version;
    for (const int number : numbers) {
        version += (version.empty() ? "" : ".") + std::to_string(number);
    }
    info.strVersion = version;
    return true;
}

/// The major version with its dot ("2." of "2 13"); empty if the version has no minor part.
std::string MajorVersion(std::string version) {
    DeleteBlankA(version);
    std::replace(version.begin(), version.end(), ' ', '.');
    const auto dot = version.find('.');
    return dot == std::string::npos ? std::string() : version.substr(0, dot + 1);
}

// QUIRK Major_version_never_matches_its_bare_name: "2." finds FW2.13.bin but not FW2.bin.
bool MatchesMajorVersion(const std::string &name, const std::string &pattern) {
    const auto position = name.find(pattern);
    return position != std::string::npos && name.find(pattern + "bin") != position;
}

/// The path by which the settings file with the prefix can be opened. The record holds an empty
/// directory if its name cannot be expressed; the directory's bytes still open the file.
std::string OpenableSettingFile(const ArgsDirectories &directories, const PathField &field) {
    const LibraryDirectory &library = directories.stLibrary;
    const std::wstring path = ReadBounded(field);
    if (library.strName.IsEmpty() && library.IsKnown() && path == DefaultSettingFile(library)) {
        return library.strBytes + Utf8FromWide(path);
    }
    return Utf8FromWide(path);
}

/// Keeps the names that contain the identification strings. If none is left, prints the message of
/// that string and returns false.
bool FilterByNames(const Info &info, Names &names) {
    for (const IdentificationRow &row : kIdentificationRows) {
        const std::string &text = info.*row.pText;
        if (info.*row.pIgnore != 0 || text.empty()) {
            continue;
        }
        names = NamesContaining(names, text);
        if (names.empty()) {
            std::fputs(row.pszNoMatchError, stdout);
            return false;
        }
    }
    return true;
}

} // namespace

bool FindOnlyFirmware(const ArgsDirectories &directories, std::string &name) {
    const Names names = ListNames(directories.strCurrent, kExtension);
    if (names.empty()) {
        std::printf("cann't find bin file!\n");
        return false;
    }
    if (names.size() > 1) {
        std::printf("find more than one bin file!\n");
        return false;
    }
    name = names.front();
    return true;
}

bool FindFirmwareByPrefix(const ArgsDirectories &directories, std::string givenFile,
                          PathField &settingFile, std::string &name) {
    Names candidates = ListNames(directories.strCurrent, kExtension);
    if (candidates.empty()) {
        std::printf("Cannot find bin in current dir!\n");
        return false;
    }
    SetSettingFileField(directories, givenFile, settingFile);
    const IniReader settings(OpenableSettingFile(directories, settingFile));
    const std::string prefix = Utf8FromWide(settings.String(L"ISP_Fw", L"strFwPrefix"));
    if (prefix.empty()) {
        std::printf("Cannot fw prefix setting!\n");
        return false;
    }
    std::erase_if(candidates, [&](const std::string &candidate) {
        return candidate.size() <= prefix.size() || !candidate.starts_with(prefix);
    });
    if (candidates.size() != 1) {
        std::printf("find %d match fw base on prefix %s, fail!\n",
                    static_cast<int>(candidates.size()), prefix.c_str());
        return false;
    }
    name = candidates.front();
    return true;
}

bool ReadUserDefinedInfo(const ArgsDirectories &directories, Info &info) {
    const UserDefinedFile file(directories.OfUserDefinedFile());
    if (!ReadModes(file, info) || !ReadIgnoreFlags(file, info)) {
        return false;
    }
    for (const IdentificationRow &row : kIdentificationRows) {
        if (!ReadName(file, row, info)) {
            return false;
        }
    }
    if (!ReadVersion(file, info)) {
        return false;
    }
    info.strCapabilityInfo = file.Text(L"CapabilityInfo");
    // Without any identification string, every file would match.
    return !info.strSIName.empty() || !info.strModelName.empty() || !info.strPanelName.empty() ||
           !info.strVersion.empty();
}

bool FilterByVersion(Names &matches, const Names &candidates, ENUM_FIND_BIN_MODE_USE_VER_MODE mode,
                     const std::string &version, const std::string &capability) {
    if (mode == ENUM_FIND_BIN_WHOLE_VERSION) {
        const Names found = NamesContaining(candidates, capability + version);
        matches.insert(matches.end(), found.begin(), found.end());
    } else if (mode == ENUM_FIND_BIN_MAJOR_VERSION) {
        const std::string major = MajorVersion(version);
        if (major.empty()) {
            return false;
        }
        std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(matches),
                     [pattern = capability + major](const std::string &name) {
                         return MatchesMajorVersion(name, pattern);
                     });
    }
    return true;
}

bool FindFirmwareByInfo(const ArgsDirectories &directories, std::string &name) {
    Names names = ListNames(directories.strCurrent, kExtension);
    Info info;
    if (!ReadUserDefinedInfo(directories, info)) {
        std::printf("get userdefined info fail!\n");
        return false;
    }
    if (!FilterByNames(info, names)) {
        return false;
    }
    if (info.bIgnoreVersionName == 0 && !info.strVersion.empty()) {
        const std::string capability =
            info.bIgnoreCapabilityInfo != 0 ? std::string() : info.strCapabilityInfo;
        Names matches;
        if (!FilterByVersion(matches, names, info.enumFindBinUseVerMode, info.strVersion,
                             capability) ||
            matches.empty()) {
            std::printf("cann't find fw use userdefined version name info!\n");
            return false;
        }
        names = matches;
    }
    if (names.size() != 1) {
        std::printf("%d bin file find user userdefined info!\n", static_cast<int>(names.size()));
        return false;
    }
    name = names.front();
    return true;
}
