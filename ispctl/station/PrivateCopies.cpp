#include "station/PrivateCopies.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <sys/stat.h>
#include <system_error>

#include "line/LineEdits.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

// The records have no capacity for more. UNITS: bytes.
constexpr std::size_t kMaxPath = 250;

fs::path TemporaryDirectory() {
    const char *given = std::getenv("TMPDIR"); // NOLINT(concurrency-mt-unsafe)
    return given != nullptr && *given == '/' ? given : "/tmp";
}

bool MakeDirectory(const fs::path &directory, std::string &error) {
    if (::mkdir(directory.c_str(), 0700) == 0) {
        return true;
    }
    error = fmt::format("cannot make the directory {} for private copies: {}; set TMPDIR to "
                        "another directory, or give --no-private-copy",
                        directory.string(), std::strerror(errno));
    return false;
}

fs::path CopyName(const fs::path &directory, const RunFile &file) {
    const fs::path copy = directory / file.role / file.path.filename();
    return copy.string().size() <= kMaxPath ? copy : directory / file.role / "copy.bin";
}

const GivenArgument *OptionAt(const std::vector<GivenArgument> &given, std::size_t position) {
    for (const GivenArgument &argument : given) {
        if (argument.position == position) {
            return &argument;
        }
    }
    return nullptr;
}

} // namespace

void PrivateDirectory::Remove() const {
    if (!m_path.empty()) {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
}

fs::path PrivatePath(const std::string &runId) {
    return TemporaryDirectory() / ("ispctl-" + runId);
}

bool WantsPrivateCopies(const StationOptions &options, bool verbatim,
                        const std::vector<std::string> &arguments) {
    const bool isDefault = !options.file.empty() && !options.noPrivateCopy && !verbatim;
    return (options.privateCopy || isDefault) && UsesInputFiles(arguments);
}

std::vector<std::string> CopyInputs(const std::vector<std::string> &arguments,
                                    const fs::path &directory, std::vector<RunFile> &files,
                                    std::string &error) {
    if (files.empty() || !MakeDirectory(directory, error)) {
        return arguments;
    }
    std::vector<std::string> changed = arguments;
    for (RunFile &file : files) {
        const fs::path copy = CopyName(directory, file);
        if (!FitsRecord(copy)) {
            error = fmt::format("the path {} of a private copy is too long for the library; set "
                                "TMPDIR to a directory with a shorter path",
                                copy.string());
            return arguments;
        }
        if (!MakeDirectory(copy.parent_path(), error)) {
            return arguments;
        }
        file.digest = CopyFile(file.path, copy, error);
        const auto given = ReadGivenArguments(changed);
        const GivenArgument *option = OptionAt(given, file.argument.value_or(given.size()));
        if (file.digest && option == nullptr) {
            error = fmt::format("no option of the line names {}, so its private copy cannot "
                                "replace it; give --no-private-copy",
                                file.path.string());
        }
        if (!error.empty()) {
            return arguments;
        }
        file.copy = copy;
        // What a firmware search has found replaces the search.
        const bool isSearch = option->option->name == "searchfw";
        changed = WithValue(changed, *option, copy.string());
        changed = isSearch ? WithName(changed, *option, "--fw") : changed;
    }
    return changed;
}

} // namespace ispctl
