#include "line/NamedFile.h"

#include <system_error>

#include "line/ValueForm.h"

namespace ispctl {

namespace fs = std::filesystem;

bool IsAbsoluteForLibrary(const std::string &path) {
    return path.find(":\\") == 1 || path.find("://") == 1 || path.starts_with('/');
}

NamedFile FileOf(const GivenArgument &given, const LineContext &context) {
    NamedFile file;
    file.isRelative = !IsAbsoluteForLibrary(*given.value);
    const bool isCallers = IsPassedAsTyped(*given.option);
    // A path may be absolute for the library alone.
    file.path = isCallers         ? context.callerDirectory / *given.value
                : file.isRelative ? context.libraryDirectory / *given.value
                                  : fs::path(*given.value);
    std::error_code error;
    file.status = fs::status(file.path, error);
    if (file.IsFile()) {
        const std::uintmax_t size = fs::file_size(file.path, error);
        file.size = error ? 0 : size;
    }
    return file;
}

std::string KindOf(const fs::file_status &status) {
    switch (status.type()) {
    case fs::file_type::directory:
        return "a directory";
    case fs::file_type::block:
    case fs::file_type::character:
        return "a device";
    case fs::file_type::fifo:
        return "a pipe";
    case fs::file_type::socket:
        return "a socket";
    default:
        return "something else";
    }
}

} // namespace ispctl
