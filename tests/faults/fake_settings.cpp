// Preloaded before the library: one settings writer that saves right and, told by the environment
// variable FAKE, does one thing wrong. The check must catch each of them by the assertion of that
// name.

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "scaler_isp/settings/ProfileStore.h"

namespace {

char *volatile g_lost;

bool IsFake(const char *name) {
    const char *fake = std::getenv("FAKE");
    return fake != nullptr && std::strcmp(fake, name) == 0;
}

std::string Narrow(const wchar_t *text) {
    std::string narrow;
    for (; *text != L'\0'; ++text) {
        narrow.push_back(*text < 0x80 ? static_cast<char>(*text) : '?');
    }
    return narrow;
}

/// False in doubt: anything but a missing file.
bool Read(const std::string &path, std::string &text) {
    text.reserve(1U << 20); // so that nothing throws while the file is open
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return errno == ENOENT;
    }
    std::array<char, 4096> block{};
    ssize_t got = 0;
    while ((got = ::read(file, block.data(), block.size())) > 0) {
        text.append(block.data(), static_cast<std::size_t>(got));
    }
    if (!IsFake("descriptors") || got >= 0) {
        ::close(file);
    }
    return got == 0;
}

void Set(std::string &text, const std::string &section, const std::string &key,
         const std::string &value) {
    const std::string header = "[" + section + "]\n";
    if (text.find(header) == std::string::npos) {
        text += header;
    }
    const auto at = text.find(header) + header.size();
    auto old = text.find(key + "=", at);
    if (old == std::string::npos || old > text.find("\n[", at)) {
        text.insert(at, key + "=\n");
        old = at;
    }
    text.replace(old, text.find('\n', old) - old, key + "=" + value);
}

bool WriteTo(int file, const std::string &text) {
    const bool written =
        ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    return ::close(file) == 0 && written;
}

bool Replace(const std::string &path, const std::string &text) {
    struct stat status {};
    std::string temporary = path.substr(0, path.rfind('/') + 1) + ".settings";
    const bool existed = ::stat(path.c_str(), &status) == 0;
    if (!existed && errno != ENOENT) {
        return false;
    }
    const int exclusive = IsFake("victim") ? 0 : O_EXCL | O_NOFOLLOW;
    if (IsFake("surroundings_after_next") && ::access(temporary.c_str(), F_OK) == 0) {
        temporary += "2";
    } else if (!IsFake("victim")) {
        ::unlink(temporary.c_str());
    }
    const int file = ::open(temporary.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC | exclusive, 0644);
    bool good = file >= 0;
    if (good && existed && !IsFake("surroundings")) {
        good = ::fchmod(file, status.st_mode) == 0 &&
               ::fchown(file, status.st_uid, status.st_gid) == 0;
        std::array<char, 64> note{};
        const ssize_t size = ::getxattr(path.c_str(), "user.a-note-too-long-for-a-small-string",
                                        note.data(), note.size());
        good =
            good && (size < 0 || ::fsetxattr(file, "user.a-note-too-long-for-a-small-string",
                                             note.data(), static_cast<std::size_t>(size), 0) == 0);
    }
    if (file >= 0) {
        good = WriteTo(file, text) && good;
    }
    good = good && ::rename(temporary.c_str(), path.c_str()) == 0;
    if (!good) {
        ::unlink(temporary.c_str());
    }
    return good;
}

int Save(const std::string &path, const std::string &section, const std::string &key,
         const std::string &value) {
    std::string text;
    if (!Read(path, text)) {
        if (IsFake("output")) {
            std::printf("Open file error \n");
        }
        if (IsFake("crash")) {
            std::abort();
        }
        while (IsFake("hang")) {
            ::pause();
        }
        if (IsFake("memory")) {
            g_lost = new char[100];
        }
        return IsFake("settings_result") ? 1 : 0;
    }
    Set(text, section, key, value);
    if (IsFake("contents")) {
        const int file = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
        return file >= 0 && WriteTo(file, text) ? 1 : 0;
    }
    return Replace(path, text) ? 1 : 0;
}

} // namespace

int CpNxWritePrivateProfileStringW(const wchar_t *section, const wchar_t *key, const wchar_t *value,
                                   const wchar_t *fileName) {
    int lock = -1;
    int result = 0;
    try {
        const std::string path = Narrow(fileName);
        const std::string folder = path.substr(0, path.rfind('/'));
        lock = IsFake("lost") ? -1 : ::open(folder.c_str(), O_RDONLY | O_CLOEXEC);
        if (lock >= 0) {
            ::flock(lock, LOCK_EX);
        }
        result = Save(path, Narrow(section), Narrow(key), Narrow(value));
    } catch (const std::bad_alloc &) {
        result = 0; // nothing has been touched yet
    }
    if (lock >= 0) {
        ::close(lock);
    }
    return result;
}
