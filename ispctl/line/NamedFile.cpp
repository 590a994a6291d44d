#include "line/NamedFile.h"

#include <cerrno>
#include <cstring>
#include <system_error>
#include <unistd.h>

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

bool ExistsForLibraryOrCaller(const LineContext &context, const std::string &path) {
    std::error_code ignored;
    return fs::exists(context.libraryDirectory / path, ignored) ||
           fs::exists(context.callerDirectory / path, ignored);
}

bool IsWritten(const LineUnderCheck &line, const ScalerIspFacts::OptionFacts &option) {
    return option.section == "dump" || (option.name == "signfile" && line.Holds("sign"));
}

bool CanBeCopied(const ScalerIspFacts::OptionFacts &option) {
    return option.effect.kind == ScalerIspFacts::Kind::Firmware || option.name == "boot" ||
           option.name == "signfile";
}

std::string WhyUnwritable(const fs::path &path) {
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (fs::is_directory(status)) {
        return "it is a directory";
    }
    if (fs::exists(status)) {
        return ::access(path.c_str(), W_OK) == 0 ? "" : std::strerror(errno);
    }
    const fs::path directory = path.parent_path();
    const fs::file_status above = fs::status(directory, ignored);
    if (!fs::exists(above)) {
        return "there is no directory " + directory.string();
    }
    if (!fs::is_directory(above)) {
        return directory.string() + " is not a directory";
    }
    return ::access(directory.c_str(), W_OK | X_OK) == 0
               ? ""
               : directory.string() + ": " + std::strerror(errno);
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
