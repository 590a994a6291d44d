#include "scaler_isp/args/ArgsFwSearch.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <dirent.h>
#include <iterator>
#include <memory>
#include <string_view>

#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/args/SettingFilePath.h"
#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/LibraryAnchor.h"
#include "scaler_isp/common/Paths.h"
#include "scaler_isp/common/TextUtil.h"
#include "scaler_isp/settings/ProfileStore.h"

namespace {

using Names = std::vector<std::string>;
using Info = STRUCT_CP_GET_USER_DEFINED_BIN_INFO;

constexpr const char *kExtension = ".bin";
// A value has at most 1,023 characters, so it is always read whole.
constexpr std::size_t kValueChars = 1024;

std::wstring ReadText(const wchar_t *section, const wchar_t *key, const wchar_t *file) {
    std::array<wchar_t, kValueChars> value{};
    CpNxGetPrivateProfileStringW(section, key, L"", value.data(), value.size(), file);
    return value.data();
}

Names NamesContaining(const Names &names, const std::string &text) {
    Names kept;
    std::copy_if(names.begin(), names.end(), std::back_inserter(kept),
                 [&](const std::string &name) { return name.find(text) != std::string::npos; });
    return kept;
}

/// IspUserDefined.txt: how its texts become the texts that a file name must contain.
class UserDefinedFile {
  public:
    explicit UserDefinedFile(const std::string &directory) {
        m_path = directory + "IspUserDefined.txt";
    }

    int Number(const wchar_t *key) const {
        return CpNxGetPrivateProfileIntW(kSection, key, 0, m_path.GetString());
    }

    std::uint32_t Flag(const wchar_t *key) const {
        return static_cast<std::uint32_t>(Number(key));
    }

    /// A text with its blanks removed.
    std::string Text(const wchar_t *key) const {
        std::wstring text = ReadText(kSection, key, m_path.GetString());
        DeleteBlankW(text);
        return Narrow(text);
    }

    /// The words of a text converted to numbers; false where one is no number.
    bool Numbers(const wchar_t *key, std::vector<int> &numbers) const {
        for (const std::string &word :
             StringSplit(Narrow(ReadText(kSection, key, m_path.GetString())), " ", 0)) {
            int number = 0;
            if (StringtoInt(word, number) == 0) {
                return false;
            }
            numbers.push_back(number);
        }
        return true;
    }

  private:
    static constexpr const wchar_t *kSection = L"UserDefinedInfo";

    static std::string Narrow(const std::wstring &text) {
        return CCpTransform().ConvertUnicodeStringToUTF8(text);
    }

    CCpNxString m_path;
};

/// One identification text: its mode, its text, how a file name is filtered by it.
struct NameRow {
    const wchar_t *pszModeKey;
    std::uint32_t Info::*pMode;
    const char *pszModeError;
    const wchar_t *pszTextKey;
    std::string Info::*pText;
    const wchar_t *pszIgnoreKey;
    std::uint32_t Info::*pIgnore;
    const char *pszNothingFound;
};

constexpr std::uint32_t kRecordModes = 3;
constexpr int kFindModes = 2;

constexpr NameRow kNames[] = {
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

// KEPT Only_a_wrong_version_mode_stops_the_reading: a wrong mode of a name is reported and
// taken as 0.
int ReadModes(const UserDefinedFile &file, Info &info) {
    for (const NameRow &row : kNames) {
        const std::uint32_t mode = file.Flag(row.pszModeKey);
        info.*row.pMode = mode < kRecordModes ? mode : 0;
        if (mode >= kRecordModes) {
            std::fputs(row.pszModeError, stdout);
        }
    }
    const std::uint32_t versionMode = file.Flag(L"RecordVersionMode");
    if (versionMode >= kRecordModes) {
        std::fputs("Record version mode setting error!", stdout);
        return 0;
    }
    info.ulRecordVersionMode = versionMode;
    const int findMode = file.Number(L"FindBinUseVerMode");
    if (findMode >= kFindModes) {
        std::fputs("Find bin version mode setting error!", stdout);
        return 0;
    }
    info.enumFindBinUseVerMode = static_cast<ENUM_FIND_BIN_MODE_USE_VER_MODE>(findMode);
    return 1;
}

int ReadIgnoreFlags(const UserDefinedFile &file, Info &info) {
    for (const NameRow &row : kNames) {
        info.*row.pIgnore = file.Flag(row.pszIgnoreKey);
    }
    info.bIgnoreVersionName = file.Flag(L"IgnoreVersionName");
    info.bIgnoreCapabilityInfo = file.Flag(L"IgnoreCapabilityInfo");
    if (info.bIgnoreSIName != 0 && info.bIgnoreModelName != 0 && info.bIgnorePanelName != 0 &&
        info.bIgnoreVersionName != 0) {
        std::fputs("Ignore setting error!", stdout);
        return 0;
    }
    return 1;
}

int ReadName(const UserDefinedFile &file, const NameRow &row, Info &info) {
    if (info.*row.pMode == 0) {
        info.*row.pText = file.Text(row.pszTextKey);
        return 1;
    }
    std::vector<int> codes;
    if (!file.Numbers(row.pszTextKey, codes)) {
        return 0;
    }
    std::string text;
    for (const int code : codes) {
        text.push_back(static_cast<char>(static_cast<unsigned char>(code)));
    }
    std::erase(text, '\0'); // code 0 is no character
    info.*row.pText = text;
    return 1;
}

int ReadVersion(const UserDefinedFile &file, Info &info) {
    if (info.ulRecordVersionMode == 0) {
        info.strVersion = file.Text(L"Version");
        return 1;
    }
    std::vector<int> numbers;
    if (!file.Numbers(L"Version", numbers)) {
        return 0;
    }
    std::string version;
    for (const int number : numbers) {
        version += (version.empty() ? "" : ".") + std::to_string(number);
    }
    info.strVersion = version;
    return 1;
}

/// The major version with its dot ("2." of "2 13"); empty where the version has no minor part.
std::string MajorVersion(std::string version) {
    DeleteBlankA(version);
    std::replace(version.begin(), version.end(), ' ', '.');
    const auto dot = version.find('.');
    return dot == std::string::npos ? std::string() : version.substr(0, dot + 1);
}

// KEPT Major_version_never_matches_its_bare_name: "2." finds FW2.13.bin but not FW2.bin.
bool MatchesMajorVersion(const std::string &name, const std::string &pattern) {
    const auto place = name.find(pattern);
    return place != std::string::npos && name.find(pattern + "bin") != place;
}

} // namespace

void FindFile(const std::string &dir, std::vector<std::string> &names, std::string ext) {
    NothingOnThrow([&] {
        const std::unique_ptr<DIR, int (*)(DIR *)> listing(::opendir(dir.c_str()), &::closedir);
        if (listing == nullptr) {
            return;
        }
        while (const dirent *entry = ::readdir(listing.get())) {
            const std::string_view name = entry->d_name;
            if (name.size() > ext.size() && name.ends_with(ext)) {
                names.emplace_back(name);
            }
        }
    });
}

void GetDefaultSettingFilePathName(wchar_t *buf, unsigned int size) {
    if (buf == nullptr || size == 0) {
        return;
    }
    *buf = L'\0';
    NothingOnThrow([&] {
        const CCpNxString path = GetCurrentProcessDir(TCSZ_GLOBAL_SYMBOL) + L"IspSetting.ini";
        if (size > path.size()) {
            buf[path.copy(buf, path.size())] = L'\0';
        }
    });
}

int CCpIspArgsParse::GetBinNameFromPrefixSetting(std::string &fwName, std::string settingFile) {
    return ResultOrOnThrow(0, [&] {
        Names candidates;
        FindFile(m_strCurrentDir, candidates, kExtension);
        if (candidates.empty()) {
            std::printf("Cannot find bin in current dir!\n");
            return 0;
        }
        if (settingFile.empty()) {
            GetDefaultSettingFilePathName(m_stSetting.wszSettingFile, SCALER_ISP_PATH_CHARS);
        } else {
            StoreSettingFile(settingFile, m_stSetting.wszSettingFile);
        }
        const std::wstring iniFile = ReadBounded(m_stSetting.wszSettingFile);
        const std::string prefix = m_transform.ConvertUnicodeStringToUTF8(
            ReadText(L"ISP_Fw", L"strFwPrefix", iniFile.c_str()));
        if (prefix.empty()) {
            std::printf("Cannot fw prefix setting!\n");
            return 0;
        }
        std::erase_if(candidates, [&](const std::string &name) {
            return name.size() <= prefix.size() || !name.starts_with(prefix);
        });
        if (candidates.size() != 1) {
            std::printf("find %d match fw base on prefix %s, fail!\n",
                        static_cast<int>(candidates.size()), prefix.c_str());
            return 0;
        }
        fwName = candidates.front();
        return 1;
    });
}

int CCpIspArgsParse::GetUserDefinedInfoFromTxt(STRUCT_CP_GET_USER_DEFINED_BIN_INFO &info) {
    return ResultOrOnThrow(0, [&] {
        const UserDefinedFile file(m_strCurrentDir);
        if (ReadModes(file, info) == 0 || ReadIgnoreFlags(file, info) == 0) {
            return 0;
        }
        for (const NameRow &row : kNames) {
            if (ReadName(file, row, info) == 0) {
                return 0;
            }
        }
        if (ReadVersion(file, info) == 0) {
            return 0;
        }
        info.strCapabilityInfo = file.Text(L"CapabilityInfo");
        return info.strSIName.empty() && info.strModelName.empty() && info.strPanelName.empty() &&
                       info.strVersion.empty()
                   ? 0
                   : 1;
    });
}

int CCpIspArgsParse::FindBinUseVersionInfo(std::vector<std::string> &matches,
                                           const std::vector<std::string> &candidates,
                                           ENUM_FIND_BIN_MODE_USE_VER_MODE &mode,
                                           const std::string &version,
                                           const std::string &capability) {
    return ResultOrOnThrow(0, [&] {
        if (mode == ENUM_FIND_BIN_WHOLE_VERSION) {
            const Names found = NamesContaining(candidates, capability + version);
            matches.insert(matches.end(), found.begin(), found.end());
        } else if (mode == ENUM_FIND_BIN_MAJOR_VERSION) {
            const std::string major = MajorVersion(version);
            if (major.empty()) {
                return 0;
            }
            std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(matches),
                         [pattern = capability + major](const std::string &name) {
                             return MatchesMajorVersion(name, pattern);
                         });
        }
        return 1;
    });
}

int CCpIspArgsParse::GetUserDefinedBinNameFromTxt(std::string &fwName) {
    return ResultOrOnThrow(0, [&] {
        Names names;
        FindFile(m_strCurrentDir, names, kExtension);
        Info info;
        if (GetUserDefinedInfoFromTxt(info) == 0) {
            std::printf("get userdefined info fail!\n");
            return 0;
        }
        for (const NameRow &row : kNames) {
            const std::string &text = info.*row.pText;
            if (info.*row.pIgnore != 0 || text.empty()) {
                continue;
            }
            names = NamesContaining(names, text);
            if (names.empty()) {
                std::fputs(row.pszNothingFound, stdout);
                return 0;
            }
        }
        if (info.bIgnoreVersionName == 0 && !info.strVersion.empty()) {
            const std::string capability =
                info.bIgnoreCapabilityInfo != 0 ? std::string() : info.strCapabilityInfo;
            Names matches;
            if (FindBinUseVersionInfo(matches, names, info.enumFindBinUseVerMode, info.strVersion,
                                      capability) == 0 ||
                matches.empty()) {
                std::printf("cann't find fw use userdefined version name info!\n");
                return 0;
            }
            names = matches;
        }
        if (names.size() != 1) {
            std::printf("%d bin file find user userdefined info!\n",
                        static_cast<int>(names.size()));
            return 0;
        }
        fwName = names.front();
        return 1;
    });
}
