#include "doctor/SearchProbe.h"

#include <algorithm>
#include <fmt/format.h>
#include <new>
#include <optional>
#include <unistd.h>

#include "LibraryParser.h"
#include "LibrarySymbols.h"
#include "ScalerLibrary.h"
#include "Utf8.h"
#include "doctor/Probe.h"
#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/settings/ProfileStore.h"

namespace ispctl::doctor {
namespace {

using Names = std::vector<std::string>;
using Info = STRUCT_CP_GET_USER_DEFINED_BIN_INFO;

// Strings are named differently by the two standard libraries, and in a member's symbol not as
// typeid spells them.
constexpr const char *kFindByVersion[] = {
    "_ZN15CCpIspArgsParse21FindBinUseVersionInfoERSt6vectorINSt7__cxx1112basic_stringIcSt11char_"
    "traitsIcESaIcEEESaIS6_EERKS8_R31ENUM_FIND_BIN_MODE_USE_VER_MODERKS6_SF_",
    "_ZN15CCpIspArgsParse21FindBinUseVersionInfoERNSt3__16vectorINS0_12basic_stringIcNS0_11char_"
    "traitsIcEENS0_9allocatorIcEEEENS5_IS7_EEEERKS9_R31ENUM_FIND_BIN_MODE_USE_VER_MODERKS7_SG_"};

/// The library's own search functions, looked up by their symbols.
class SearchFunctions {
  public:
    /// RETURNS nothing if one is missing, with its symbol in missing.
    static std::optional<SearchFunctions> Find(const ScalerLibrary &library, std::string &missing) {
        SearchFunctions f;
        const auto find = [&](const std::string &symbol, auto *&slot) {
            if (!ResolveSymbol(library.Handle(), symbol, slot) && missing.empty()) {
                missing = symbol;
            }
        };
        find("_ZN15CCpIspArgsParseC1Ev", f.m_construct);
        find("_ZN15CCpIspArgsParse25GetUserDefinedInfoFromTxtER35STRUCT_CP_GET_USER_DEFINED_BIN_"
             "INFO",
             f.m_info);
        find("_Z28CpNxGetPrivateProfileStringWPKwS0_S0_PwjS0_", f.m_string);
        find(MangledName<ListFunction>("FindFile"), f.m_list);
        if (!ResolveSymbol(library.Handle(), kFindByVersion[0], f.m_byVersion)) {
            find(kFindByVersion[1], f.m_byVersion);
        }
        static_assert(std::is_same_v<decltype(::FindFile), ListFunction>);
        static_assert(std::is_same_v<decltype(::CpNxGetPrivateProfileStringW), StringFunction>);
        return missing.empty() ? std::optional(f) : std::nullopt;
    }

    /// REQUIRES: the working directory is the library's.
    Names List() const {
        Names names;
        m_list("./", names, ".bin");
        return names;
    }
    /// The prefix in IspSetting.ini of the working directory; empty if there is none.
    std::string Prefix() const {
        std::wstring value(kMostCharacters, L'\0');
        const unsigned int length =
            m_string(L"ISP_Fw", L"strFwPrefix", L"", value.data(),
                     static_cast<unsigned int>(value.size()), L"IspSetting.ini");
        value.resize(std::min<std::size_t>(length, value.size()));
        return EscapeWide(value).text;
    }
    /// What IspUserDefined.txt of the working directory asks for, if it is valid.
    std::optional<Info> UserDefined() const {
        Info info;
        return m_info(Parser(), info) == 1 ? std::optional(info) : std::nullopt;
    }
    bool HasVersion(const std::string &name, const Info &info) const {
        Names matches;
        auto mode = info.enumFindBinUseVerMode;
        const std::string capability =
            info.bIgnoreCapabilityInfo != 0 ? std::string() : info.strCapabilityInfo;
        return m_byVersion(Parser(), matches, {name}, mode, info.strVersion, capability) == 1 &&
               !matches.empty();
    }

  private:
    static constexpr std::size_t kMostCharacters = 4096;
    using Constructor = void(void *);
    using InfoFunction = int(void *, Info &);
    using VersionFunction = int(void *, Names &, const Names &, ENUM_FIND_BIN_MODE_USE_VER_MODE &,
                                const std::string &, const std::string &);
    using ListFunction = void(const std::string &, Names &, std::string);
    using StringFunction = unsigned int(const wchar_t *, const wchar_t *, const wchar_t *,
                                        wchar_t *, unsigned int, const wchar_t *);

    // Made once, in the library, and kept: the process that makes it is short-lived. Its current
    // directory is empty, so the files are those of the working directory.
    void *Parser() const {
        if (m_parser == nullptr) {
            m_parser =
                ::operator new(sizeof(CCpIspArgsParse), std::align_val_t(alignof(CCpIspArgsParse)));
            m_construct(m_parser);
        }
        return m_parser;
    }

    Constructor *m_construct = nullptr;
    InfoFunction *m_info = nullptr;
    VersionFunction *m_byVersion = nullptr;
    ListFunction *m_list = nullptr;
    StringFunction *m_string = nullptr;
    mutable void *m_parser = nullptr;
};

std::string ReasonOfPrefix(const std::string &name, const std::string &prefix) {
    if (prefix.empty()) {
        return "IspSetting.ini has no prefix: key strFwPrefix in the section [ISP_Fw]";
    }
    // The library wants more than the prefix itself.
    return name.starts_with(prefix) && name.size() > prefix.size()
               ? ""
               : fmt::format("the name does not begin with \"{}\" (strFwPrefix)", prefix);
}

std::string ReasonOfUserDefined(const std::string &name, const std::optional<Info> &info,
                                const SearchFunctions &functions) {
    if (!info) {
        return "IspUserDefined.txt does not say what to look for";
    }
    struct Row {
        const char *key;
        const std::string &text;
        std::uint32_t ignored;
    };
    const Row rows[] = {{"SIName", info->strSIName, info->bIgnoreSIName},
                        {"ModelName", info->strModelName, info->bIgnoreModelName},
                        {"PanelName", info->strPanelName, info->bIgnorePanelName}};
    for (const Row &row : rows) {
        if (row.ignored == 0 && name.find(row.text) == std::string::npos) {
            return fmt::format("the name does not contain \"{}\" ({})", row.text, row.key);
        }
    }
    if (info->bIgnoreVersionName == 0 && !info->strVersion.empty() &&
        !functions.HasVersion(name, *info)) {
        return fmt::format("the name does not contain the version \"{}\"{}", info->strVersion,
                           info->bIgnoreCapabilityInfo == 0 && !info->strCapabilityInfo.empty()
                               ? " after \"" + info->strCapabilityInfo + "\""
                               : "");
    }
    return "";
}

void SendCandidates(const SearchFunctions &functions, ParentLink &link) {
    Names names = functions.List();
    std::sort(names.begin(), names.end());
    const std::string prefix = functions.Prefix();
    const std::optional<Info> info = functions.UserDefined();
    for (std::size_t i = 0; i < std::min(names.size(), kMostCandidates); ++i) {
        const std::string &name = names[i];
        Send(link, {"candidate", name, "auto",
                    names.size() == 1
                        ? ""
                        : fmt::format("it is one of {} .bin files; auto accepts only a single one",
                                      names.size())});
        Send(link, {"candidate", name, "prefix", ReasonOfPrefix(name, prefix)});
        Send(link, {"candidate", name, "userdefined", ReasonOfUserDefined(name, info, functions)});
    }
    Send(link, {"candidates", std::to_string(names.size())});
}

void Search(const ScalerLibrary &library, const std::string &action, ParentLink &link) {
    std::string missing;
    const auto parser = LibraryParser::Find(library, missing);
    const auto functions = SearchFunctions::Find(library, missing);
    if (!parser || !functions) {
        Send(link, {"no-search", missing});
        return;
    }
    for (const char *search : kSearches) {
        const ParsedLine parsed = parser->Parse({"--" + action, "--searchfw", search});
        Send(link, {"search", search, parsed.accepted ? "found" : "refused", parsed.printed});
    }
    if (::chdir(library.Directory().c_str()) == 0) {
        SendCandidates(*functions, link);
    }
}

} // namespace

void ProbeSearch(const std::string &library, const std::string &action, ParentLink &link) {
    std::string error;
    const auto opened = ScalerLibrary::Open(library, error);
    Send(link, opened ? Notice{"library-loaded"} : Notice{"library-refused", error});
    if (opened && !action.empty()) {
        Search(*opened, action, link);
    }
    Send(link, {kProbeEnd});
}

} // namespace ispctl::doctor
