#include "doctor/DeviceCheck.h"

#include <cerrno>
#include <cstring>
#include <system_error>
#include <unistd.h>

#include "LibraryPaths.h"
#include "station/FileDigest.h"

namespace ispctl::doctor {
namespace {

namespace fs = std::filesystem;

/// RETURNS why no file can be made in a directory, or in the one that is created for it; empty if
/// one can.
std::string WhyUnwritable(fs::path directory) {
    std::error_code ignored;
    while (!fs::exists(fs::symlink_status(directory, ignored)) && directory.has_relative_path()) {
        directory = directory.parent_path();
    }
    const std::string file = directory.string();
    if (!fs::is_directory(directory, ignored)) {
        return file + " is not a directory";
    }
    return ::access(file.c_str(), W_OK | X_OK) == 0 ? "" : file + ": " + std::strerror(errno);
}

} // namespace

bool IsVirtualScaler(const Places &places) {
    std::error_code unreadable;
    const fs::path original = VirtualLibraryPath().parent_path() / "PlugIn/libIsp.dylib";
    if (fs::equivalent(places.ispPlugin, original, unreadable)) {
        return true;
    }
    std::string error;
    const bool isSameSize =
        fs::file_size(places.ispPlugin, unreadable) == fs::file_size(original, unreadable);
    const auto digest = isSameSize ? DigestOf(places.ispPlugin, error) : std::nullopt;
    const auto wanted = digest ? DigestOf(original, error) : std::nullopt;
    return wanted && wanted->sha256 == digest->sha256;
}

void CheckVirtualDevice(const Places &places, Report &report) {
    const std::string device = VirtualDeviceDirectory(places.directory).string();
    const std::string reason = WhyUnwritable(device);
    report.Add(reason.empty() ? FindingId::DeviceWritable : FindingId::DeviceUnwritable, device,
               reason);
}

} // namespace ispctl::doctor
