#include <unistd.h>

#include "probe/Groups.h"
#include "probe/LibraryCall.h"
#include "probe/Platform.h"
#include "probe/Scratch.h"

namespace {

constexpr int kPluginNotLoaded = 0xD67;

/// A directory of its own for each way of opening a library: what was loaded once from a file may
/// stay loaded.
struct Installation {
    Installation(const Surroundings &surroundings, const std::string &name, bool withPlugin)
        : directory(surroundings.directory + "/" + name),
          library(directory + "/" + PlatformLibraryName()) {
        MakeDirectory(directory);
        CopyFile(surroundings.library + "/" + PlatformLibraryName(), library);
        if (withPlugin) {
            MakeDirectory(directory + "/PlugIn");
            CopyFile(surroundings.library + "/PlugIn/libIsp.dylib",
                     directory + "/PlugIn/libIsp.dylib");
        }
    }

    std::string directory;
    std::string library;
};

std::string ReportedPath(const std::string &path) {
    const OpenLibrary library(path);
    return library.IsOpen() ? library.ReportedPath() : "not opened: " + library.Error();
}

std::string ResultOfReset(const Surroundings &surroundings, const std::string &path) {
    const OpenLibrary library(path);
    return library.IsOpen()
               ? ResultText(
                     library.Call(L"p --resetmcu", surroundings.directory + "/printed").result)
               : "not opened: " + library.Error();
}

void AssumePath(const Surroundings &surroundings, const std::string &check,
                const std::string &opened, const std::string &real) {
    surroundings.results.Assume(check, PlatformAssumption(opened.c_str(), real.c_str()),
                                ReportedPath(opened));
}

void ProbePaths(const Surroundings &surroundings) {
    const std::string name = PlatformLibraryName();
    const Installation plain(surroundings, "plain", false);
    AssumePath(surroundings, "dladdr_of_absolute_path", plain.library, plain.library);

    const Installation file(surroundings, "file", false);
    const std::string link = surroundings.directory + "/link_to_" + name;
    MakeLink(file.library, link);
    AssumePath(surroundings, "dladdr_of_link_to_file", link, file.library);

    const Installation folder(surroundings, "folder", false);
    MakeLink(folder.directory, surroundings.directory + "/link_to_folder");
    AssumePath(surroundings, "dladdr_of_link_to_folder",
               surroundings.directory + "/link_to_folder/" + name, folder.library);

    const Installation dots(surroundings, "dots", false);
    AssumePath(surroundings, "dladdr_of_path_with_dots",
               surroundings.directory + "/plain/../dots/" + name, dots.library);

    const Installation hard(surroundings, "hard", false);
    const std::string second = hard.directory + "/second_name";
    if (::link(hard.library.c_str(), second.c_str()) == 0) {
        surroundings.results.Note("dladdr_of_second_hard_link", ReportedPath(second));
    }
}

/// As a package manager installs: a link in lib leads to the file next to which the plug-ins are.
void ProbePlugins(const Surroundings &surroundings) {
    const Installation complete(surroundings, "complete", true);
    const std::string found = ResultOfReset(surroundings, complete.library);
    surroundings.results.Require("finds_plugin_next_to_library", found == "0", "result " + found);

    const Installation alone(surroundings, "alone", false);
    const std::string missing = ResultOfReset(surroundings, alone.library);
    surroundings.results.Require("reports_missing_plugin", missing == ResultText(kPluginNotLoaded),
                                 "result " + missing);

    const Installation keg(surroundings, "keg", true);
    MakeDirectory(surroundings.directory + "/lib");
    const std::string link = surroundings.directory + "/lib/" + PlatformLibraryName();
    MakeLink("../keg/" + PlatformLibraryName(), link);
    surroundings.results.Assume("plugin_next_to_linked_library", PlatformAssumption("0xD67", "0"),
                                ResultOfReset(surroundings, link));
}

} // namespace

void ProbeLoading(const Surroundings &surroundings) {
    ProbePaths(surroundings);
    ProbePlugins(surroundings);
    const OpenLibrary missing(surroundings.directory + "/missing");
    surroundings.results.Note("dlerror_of_missing_file", missing.Error());
}
