#include "scaler_isp/common/Paths.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <fstream>

#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/CCpTransform.h"
#include "scaler_isp/common/Platform.h"

namespace {

constexpr std::size_t kImagePathBytes = 260;
constexpr std::size_t kResolvedPathBytes = 40960;
static_assert(kResolvedPathBytes > PATH_MAX, "realpath writes up to PATH_MAX bytes");

/// The path up to and including its last separator.
std::string FolderOf(const std::string &path) {
    for (const char separator : {'/', '\\'}) {
        const auto last = path.rfind(separator);
        if (last != std::string::npos) {
            return path.substr(0, last + 1);
        }
    }
    return "./";
}

CCpNxString ToWide(const std::string &path) {
    CCpNxString wide;
    wide = CCpTransform().ConvertCHARToUnicodeString(path.c_str());
    if (wide.IsEmpty() && PlatformPathsFallBackToUtf8()) {
        wide = path;
    }
    return wide;
}

} // namespace

CCpNxString GetCurrentProcessDir(void *address) {
    return ResultOrOnThrow(CCpNxString(), [&] {
        std::string narrow;
        if (address == nullptr) {
            narrow = PlatformExecutablePath();
        } else if (PlatformImagePath(address, narrow)) {
            narrow = FolderOf(narrow.substr(0, kImagePathBytes));
        }
        CCpNxString folder = ToWide(narrow);
        if (!folder.IsEmpty()) {
            // Without a "/" the position is -1 as an int, and Left(-1) is the whole text.
            folder = folder.Left(static_cast<int>(folder.rfind(L'/'))) + L'/';
        }
        return folder;
    });
}

CCpNxString GetParentDir(CCpNxString path) {
    if (!path.empty() && path.back() == L'/') {
        path.pop_back();
    }
    path.erase(path.rfind(L'/') + 1);
    return path;
}

bool IsAbsolutePath(const std::string &path) {
    return path.find(":\\") == 1 || path.find("://") == 1 || path.find('/') == 0;
}

std::string GetFileFullPath(const std::string &file, const std::string &directory) {
    return ResultOrOnThrow(std::string(), [&] {
        return IsAbsolutePath(file) ? file : GetAbsolutePath(directory + file);
    });
}

std::string GetAbsolutePath(const std::string &path) {
    return ResultOrOnThrow(std::string(), [&] {
        // The buffer matters: after a failure it holds the path that could not be resolved, which
        // users see in messages. The allocating form of realpath would give nothing.
        std::string buffer(kResolvedPathBytes, '\0');
        static_cast<void>(::realpath(path.c_str(), buffer.data()));
        buffer.resize(std::min(buffer.find('\0'), buffer.size()));
        return buffer;
    });
}

int PathFileExist(const std::string &path) {
    return ResultOrOnThrow(0, [&] { return std::ifstream(path).is_open() ? 1 : 0; });
}

int PopupDlgToGetOpenFilePath(CCpNxString title, CCpNxString &path) {
    static_cast<void>(title);
    static_cast<void>(path);
    return 1;
}
