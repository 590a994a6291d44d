#include "doctor/WriteAccess.h"

#include <deque>
#include <sys/stat.h>
#include <unistd.h>

namespace ispctl::doctor {
namespace {

namespace fs = std::filesystem;

// As many as the system follows.
constexpr int kMostLinks = 40;

std::deque<fs::path> PartsOf(const fs::path &path) {
    const fs::path relative = path.relative_path();
    return {relative.begin(), relative.end()};
}

} // namespace

void WriteAccess::CheckOne(const fs::path &path, const fs::path &target, Way way) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || S_ISLNK(status.st_mode) ||
        !m_seen.insert(path).second) {
        return;
    }
    const bool directory = S_ISDIR(status.st_mode);
    // In a directory with the sticky bit only the owner of an entry may replace it.
    const bool sticky = directory && (status.st_mode & S_ISVTX) != 0;
    if ((status.st_mode & S_IWOTH) != 0 && !sticky) {
        m_report.Add(!directory           ? FindingId::FileWritable
                     : way == Way::Direct ? FindingId::DirectoryWritable
                                          : FindingId::LinkIntoWritable,
                     path.string(), target.string());
    } else if ((status.st_mode & S_IWGRP) != 0 && !sticky && status.st_gid != 0) {
        m_report.Add(FindingId::GroupWritable, path.string(), std::to_string(status.st_gid));
    }
    if (status.st_uid != 0 && status.st_uid != ::geteuid()) {
        m_report.Add(FindingId::ForeignOwner, path.string(), std::to_string(status.st_uid));
    }
}

void WriteAccess::Check(const fs::path &file) {
    fs::path at = file.root_path();
    std::deque<fs::path> rest = PartsOf(file);
    Way way = Way::Direct;
    CheckOne(at, file, way);
    for (int links = 0; !rest.empty() && links <= kMostLinks;) {
        const fs::path part = rest.front();
        rest.pop_front();
        if (part.empty() || part == ".") {
            continue;
        }
        if (part == "..") {
            at = at.parent_path();
            continue;
        }
        std::error_code none;
        const fs::path target = fs::read_symlink(at / part, none);
        if (none) {
            at /= part;
            CheckOne(at, file, way);
            continue;
        }
        ++links;
        way = Way::ThroughLink;
        at = target.is_absolute() ? target.root_path() : at;
        const auto parts = PartsOf(target);
        rest.insert(rest.begin(), parts.begin(), parts.end());
    }
}

} // namespace ispctl::doctor
