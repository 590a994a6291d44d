#include "explain/StagedFiles.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ConsoleStreams.h"
#include "FileIo.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

bool Fail(const std::string &name, int number, std::string &error) {
    error = fmt::format("{} cannot be written: {}", name, std::strerror(number));
    return false;
}

/// What open would give a new file.
mode_t ModeOfNewFile() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666U & ~mask;
}

/// RETURNS 0, or the errno of the failure.
int WriteTemporary(std::string &pattern, std::string_view bytes, mode_t mode) {
    const int descriptor = ::mkstemp(pattern.data());
    if (descriptor < 0) {
        pattern.clear();
        return errno;
    }
    int error = WriteAll(descriptor, bytes);
    if (error == 0 && ::fchmod(descriptor, mode) != 0) {
        error = errno;
    }
    if (::close(descriptor) != 0 && error == 0) {
        error = errno;
    }
    return error;
}

} // namespace

StagedFiles::~StagedFiles() {
    for (const File &file : m_files) {
        if (!file.temporary.empty()) {
            ::unlink(file.temporary.c_str());
        }
        if (file.descriptor >= 0) {
            ::close(file.descriptor);
        }
    }
}

bool StagedFiles::AddSpecial(const std::string &name, std::string_view bytes, std::string &error) {
    // It stays open until it is written: closing it here would be the end of the data for a reader.
    const int descriptor = ::open(name.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor < 0) {
        if (errno == ENXIO) {
            error = fmt::format("{} cannot be written: nobody reads this pipe", name);
            return false;
        }
        return Fail(name, errno, error);
    }
    ::fcntl(descriptor, F_SETFL, ::fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    m_files.push_back({name, "", std::string(bytes), descriptor});
    return true;
}

bool StagedFiles::Add(const std::string &name, std::string_view bytes, std::string &error) {
    struct stat status {};
    const bool exists = ::stat(name.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) {
        return Fail(name, EISDIR, error);
    }
    if (exists && !S_ISREG(status.st_mode)) {
        return AddSpecial(name, bytes, error);
    }
    std::error_code ignored;
    const fs::path resolved = exists ? fs::canonical(name, ignored) : fs::path(name);
    File file{resolved.empty() ? name : resolved.string(), "", "", -1};
    file.temporary = file.name + ".XXXXXX";
    const mode_t mode = exists ? status.st_mode & 0777U : ModeOfNewFile();
    const int number = WriteTemporary(file.temporary, bytes, mode);
    m_files.push_back(std::move(file));
    return number == 0 || Fail(name, number, error);
}

bool StagedFiles::Commit(std::string &error) {
    for (File &file : m_files) {
        if (file.temporary.empty()) {
            const int written = WriteAll(file.descriptor, file.bytes);
            const int closed = ::close(file.descriptor) == 0 ? 0 : errno;
            file.descriptor = -1;
            if (written != 0 || closed != 0) {
                return Fail(file.name, written != 0 ? written : closed, error);
            }
        }
    }
    for (File &file : m_files) {
        if (!file.temporary.empty() && ::rename(file.temporary.c_str(), file.name.c_str()) != 0) {
            return Fail(file.name, errno, error);
        }
        file.temporary.clear();
    }
    m_files.clear();
    return true;
}

} // namespace ispctl
