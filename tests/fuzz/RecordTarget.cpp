// Records with hostile contents, saved and loaded: any count, any target bank, paths without a
// terminator and with newlines, characters that no encoding has. The file is what one write after
// the other of a slow second writer makes. Line 1 the count, line 2 the name of the file, then a
// target bank and a path per line; after an empty line the file as it was before.

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <memory>
#include <vector>

#include <unistd.h>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/settings/UiSetting.h"
#include "support/TempFolder.h"
#include "unit/settings/ReferenceProfile.h"

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

const TempFolder &Folder() {
    static const TempFolder folder;
    return folder;
}

/// Fills a field as a plug-in or a host could: without a terminator if it is long.
template <std::size_t N> std::wstring Fill(wchar_t (&field)[N], const std::string &bytes) {
    std::wstring text = reference::DecodeUtf8(bytes).value_or(std::wstring(1, L'\xD800'));
    text = text.substr(0, text.find(L'\0')).substr(0, N);
    std::fill(std::copy(text.begin(), text.end(), field), std::end(field), L'\0');
    return text;
}

void Write(std::string &file, const std::wstring &key, const std::wstring &value) {
    file = reference::Write(file, reference::Encoding::Utf8, L"ISP_Fw", key, value).value_or(file);
}

std::wstring Number(unsigned int value) {
    return std::to_wstring(static_cast<int>(value));
}

/// A name in the folder, so that no input writes elsewhere; it must be one that a file can have.
std::string SafeName(std::string name) {
    std::replace(name.begin(), name.end(), '/', '_');
    name = name.substr(0, std::min<std::size_t>(name.find('\0'), 120));
    return reference::DecodeUtf8(name) && name != "." && name != ".." && !name.empty() ? name
                                                                                       : "s.ini";
}

/// REQUIRES: few entries; the second writer is slow.
std::string Expected(const Setting &setting, unsigned int count, std::string file) {
    Write(file, L"fwFileCount", Number(setting.stMapFw.ulFwCount));
    for (unsigned int i = 0; i < count; ++i) {
        const wchar_t *path = setting.stMapFw.stFwBank[i].wszFwPath;
        const std::wstring prefix = L"fw" + Number(i);
        Write(file, L"fw" + Number(setting.stMapFw.ulTargetBank[i]) + L"_TargetBank", Number(i));
        Write(file, prefix + L"_FileBank", Number(i));
        Write(file, prefix + L"_Path", std::wstring(path, wcsnlen(path, SCALER_ISP_PATH_CHARS)));
    }
    return file;
}

void CheckLoading(const Setting &setting) {
    const auto loaded = std::make_unique<Setting>();
    std::copy(std::begin(setting.wszSettingFile), std::end(setting.wszSettingFile),
              std::begin(loaded->wszSettingFile));
    loaded->LoadSetting();
    FUZZ_CHECK(loaded->stMapFw.ulFwCount == 0, "the map is not read");
    STRUCT_CP_ISP_UI_SETTING panels;
    std::copy(std::begin(setting.wszSettingFile), std::end(setting.wszSettingFile),
              std::begin(panels.wszSettingFile));
    panels.LoadUISetting();
}

/// A file whose name fills its field completely: nothing outside the field is read as its end.
void CheckUnterminatedFile(Setting &setting) {
    std::fill(std::begin(setting.wszSettingFile), std::end(setting.wszSettingFile), L'n');
    setting.LoadSetting();
    setting.SaveSetting(); // longer than a name of a file may be
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr unsigned int kMostCompared = 6;
    constexpr std::size_t kLongest = 4000;
    if (size > kLongest) {
        return -1;
    }
    setenv("LC_ALL", "C.UTF-8", 1);
    FuzzInput input(data, size);
    const auto setting = std::make_unique<Setting>();
    setting->stMapFw.ulFwCount =
        static_cast<std::uint32_t>(std::strtoul(input.Line().c_str(), nullptr, 0));
    const std::string name = SafeName(input.Line());
    unsigned int entries = 0;
    for (std::string line = input.Line(); !line.empty() && entries < kMostCompared;
         line = input.Line()) {
        char *path = nullptr;
        setting->stMapFw.ulTargetBank[entries] =
            static_cast<std::uint32_t>(std::strtoul(line.c_str(), &path, 0));
        Fill(setting->stMapFw.stFwBank[entries].wszFwPath, path);
        ++entries;
    }
    const std::string before = input.Rest();
    const std::string file = Folder().Write(name, before);
    Fill(setting->wszSettingFile, file);
    const auto kept = std::make_unique<Setting>(*setting);
    setting->SaveSetting();
    FUZZ_CHECK(std::memcmp(kept.get(), setting.get(), sizeof *kept) == 0, "the record changed");
    if (setting->stMapFw.ulFwCount <= kMostCompared) {
        const std::string expected = Expected(*setting, setting->stMapFw.ulFwCount, before);
        FUZZ_CHECK(Folder().Read(name) == expected, Folder().Read(name) + "\n---\n" + expected);
    }
    CheckLoading(*setting);
    CheckUnterminatedFile(*setting);
    ::unlink(file.c_str());
    return 0;
}
