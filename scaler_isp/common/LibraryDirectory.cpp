#include "scaler_isp/common/LibraryDirectory.h"

#include <algorithm>
#include <utility>

#include "scaler_isp/common/LibraryAnchor.h"
#include "scaler_isp/common/Platform.h"
#include "scaler_isp/common/TextConversion.h"

namespace {

constexpr std::size_t kImagePathBytes = 260;
constexpr std::size_t kWideCharsForAByte = 4;
constexpr const wchar_t *kSettingFileName = L"IspSetting.ini";

/// The path up to and including its last separator. A backslash counts only if there is no slash.
std::string DirectoryOf(const std::string &path) {
    for (const char separator : {'/', '\\'}) {
        const auto last = path.rfind(separator);
        if (last != std::string::npos) {
            return path.substr(0, last + 1);
        }
    }
    return "./";
}

/// The locale's functions first. If they fail, iconv, which reports a lack of memory that they hide
/// (see WideFromEnvironmentCharset). UTF-8 last.
CCpNxString ToWide(const std::string &path) {
    CCpNxString wide;
    wide = WideFromEnvironmentText(path.c_str(), kWideCharsForAByte * path.size());
    if (wide.IsEmpty() && PlatformPathsFallBackToUtf8()) {
        wide = WideFromEnvironmentCharset(path);
    }
    if (wide.IsEmpty() && PlatformPathsFallBackToUtf8()) {
        wide = WideFromUtf8(path);
    }
    return wide;
}

/// Removes everything after the last "/"; appends a "/" if there is none.
template <class String> String EndingInSlash(String text) {
    text.erase(std::min(text.rfind('/'), text.size()));
    text.push_back('/');
    return text;
}

} // namespace

LibraryDirectory FindDirectoryOf(const void *address) {
    std::string path;
    if (address == nullptr) {
        path = PlatformExecutablePath();
    } else if (PlatformImagePath(address, path)) {
        path = DirectoryOf(path.substr(0, kImagePathBytes));
    }
    LibraryDirectory directory;
    if (!path.empty()) {
        // A relative path would refer to another directory after every change of the working
        // directory.
        directory.strBytes = path.front() == '/' ? EndingInSlash(path) : std::string();
        directory.strName = ToWide(path);
    }
    if (!directory.strName.IsEmpty()) {
        directory.strName = EndingInSlash(std::move(directory.strName));
    }
    return directory;
}

LibraryDirectory FindLibraryDirectory() {
    return FindDirectoryOf(TCSZ_GLOBAL_SYMBOL);
}

CCpNxString DefaultSettingFile(const LibraryDirectory &directory) {
    return directory.strName + kSettingFileName;
}
