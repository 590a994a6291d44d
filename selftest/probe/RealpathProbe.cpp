#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

#include "probe/Groups.h"
#include "probe/Platform.h"
#include "probe/Scratch.h"

namespace {

constexpr char kFilled = '#';
constexpr std::size_t kNameBytes = 255;
constexpr std::size_t kMacLimit = 1023;

struct Row {
    const char *name;
    const char *path;
    const char *onLinux;
    const char *onMac;
};

constexpr Row kRows[] = {
#define SELFTEST_REALPATH(NAME, PATH, ON_LINUX, ON_MAC) {#NAME, PATH, ON_LINUX, ON_MAC},
#include "probe/realpath_rows.def"
#undef SELFTEST_REALPATH
};

/// How a call ended, and what the buffer then held.
struct Resolved {
    int error;
    std::string buffer;
};

Resolved Resolve(const std::string &path) {
    std::array<char, 8192> buffer{};
    buffer.fill(kFilled);
    buffer.back() = '\0';
    errno = 0;
    const bool succeeded = ::realpath(path.c_str(), buffer.data()) != nullptr;
    const int error = succeeded ? 0 : errno;
    return {error, buffer[0] == kFilled ? "untouched" : buffer.data()};
}

std::string InDirectory(std::string text, const std::string &directory) {
    const std::size_t at = text.find('@');
    return at == std::string::npos ? text : text.replace(at, 1, directory);
}

void ProbeRows(const Surroundings &surroundings) {
    for (const Row &row : kRows) {
        const std::string path = *row.path == '\0' ? "" : surroundings.directory + row.path;
        const Resolved resolved = Resolve(path);
        surroundings.results.Assume(
            row.name,
            InDirectory(PlatformAssumption(row.onLinux, row.onMac), surroundings.directory),
            ErrorName(resolved.error) + " " + resolved.buffer);
    }
}

/// What is longer than a component, a path or a result may be.
void ProbeLimits(const Surroundings &surroundings) {
    const std::string &directory = surroundings.directory;
    const std::string tooLong = directory + "/" + std::string(kNameBytes + 1, 'x');
    Resolved resolved = Resolve(tooLong);
    surroundings.results.Assume(
        "component_of_256_bytes",
        PlatformAssumption("ENAMETOOLONG untouched", ("ENAMETOOLONG " + tooLong).c_str()),
        ErrorName(resolved.error) + " " + resolved.buffer);

    std::string path = directory;
    while (path.size() <= kMacLimit) {
        path += "/.";
    }
    resolved = Resolve(path);
    surroundings.results.Assume(
        "path_over_1023_bytes",
        PlatformAssumption(("success " + directory).c_str(), "ENAMETOOLONG /"),
        ErrorName(resolved.error) + " " + resolved.buffer);
}

/// Directories inside each other, until the path of the last is longer than macOS allows. Each is
/// made from within the one before it, because its path cannot be used.
bool MakeDeepDirectories(const std::string &directory, const std::string &name) {
    bool made = ::chdir(directory.c_str()) == 0;
    for (std::size_t length = directory.size(); made && length <= kMacLimit;
         length += 1 + name.size()) {
        made = ::mkdir(name.c_str(), 0755) == 0 && ::chdir(name.c_str()) == 0;
    }
    return ::chdir(directory.c_str()) == 0 && made;
}

/// A path within the limit whose result is not.
void ProbeLongResult(const Surroundings &surroundings) {
    const std::string name(kNameBytes, 'x');
    if (!MakeDeepDirectories(surroundings.directory, name)) {
        surroundings.results.Note("result_over_1023_bytes", "not tried: " + ErrorName(errno));
        return;
    }
    MakeLink(name + "/" + name, surroundings.directory + "/short");
    std::string path = surroundings.directory + "/short";
    std::string full = surroundings.directory + "/" + name + "/" + name;
    for (; full.size() <= kMacLimit; full += "/" + name) {
        path += "/" + name;
    }
    const Resolved resolved = Resolve(path);
    surroundings.results.Assume(
        "result_over_1023_bytes",
        PlatformAssumption(("success " + full).c_str(),
                           ("ENAMETOOLONG " + full.substr(0, kMacLimit)).c_str()),
        ErrorName(resolved.error) + " " + resolved.buffer);
}

/// The library calls stat first, which has to refuse on every system what realpath may not.
void ProbeStat(const Surroundings &surroundings) {
    for (const char *ending : {"/", "/.", "/..", "/x"}) {
        struct stat status {};
        const std::string path = surroundings.directory + "/file" + ending;
        errno = 0;
        const int error = ::stat(path.c_str(), &status) == 0 ? 0 : errno;
        surroundings.results.Assume(std::string("stat_of_file") + ending, "ENOTDIR",
                                    ErrorName(error));
    }
}

void ProbeNoPermission(const Surroundings &surroundings) {
    if (::geteuid() == 0) {
        surroundings.results.Note("folder_without_permission", "not tried as root");
        return;
    }
    const std::string locked = surroundings.directory + "/locked";
    MakeDirectory(locked);
    ::chmod(locked.c_str(), 0);
    const Resolved resolved = Resolve(locked + "/x");
    ::chmod(locked.c_str(), 0755);
    surroundings.results.Assume("folder_without_permission", "EACCES " + locked + "/x",
                                ErrorName(resolved.error) + " " + resolved.buffer);
}

} // namespace

void ProbeRealpath(const Surroundings &surroundings) {
    const std::string directory = surroundings.directory + "/";
    WriteFile(directory + "file", "x");
    MakeDirectory(directory + "folder");
    MakeLink("folder", directory + "folder_link");
    MakeLink("file", directory + "file_link");
    MakeLink("missing", directory + "dangling");
    MakeLink("loop", directory + "loop");
    ProbeRows(surroundings);
    ProbeLimits(surroundings);
    ProbeStat(surroundings);
    ProbeNoPermission(surroundings);
    surroundings.results.Note("other_case", Resolve(surroundings.directory + "/FOLDER").buffer);
    ProbeLongResult(surroundings);
}
