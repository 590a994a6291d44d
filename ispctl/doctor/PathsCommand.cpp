#include "doctor/PathsCommand.h"

#include <cstdio>
#include <fmt/format.h>

#include "JsonText.h"
#include "LibraryPaths.h"
#include "chip/ChipDirectories.h"
#include "doctor/FileState.h"

namespace ispctl::doctor {
namespace {

namespace fs = std::filesystem;

struct Row {
    const char *name; ///< stable
    fs::path path;
    const char *note; ///< what it is for
};

std::vector<Row> RowsOf(const Options &options) {
    const Places places = PlacesOf(options);
    std::error_code ignored;
    const fs::path working = fs::current_path(ignored);
    return {
        {"ispctl", ExecutableFile(), "this program"},
        {"installed-library", InstalledLibraryPath(),
         "the library without --lib, --chip and --virtual"},
        {"virtual-library", VirtualLibraryPath(), "the library with --virtual"},
        {"library", places.library, "the library that these options select"},
        {"library-directory", places.directory, "everything below is looked for from here"},
        {"isp-plugin", places.ispPlugin, "the ISP plug-in"},
        {"sign-plugin", places.signPlugin, "the sign/verify plug-in"},
        {"settings-file", places.settingFile, "without --settingfile"},
        {"user-defined-file", places.userDefinedFile, "for --searchfw userdefined"},
        {"firmware-search", places.directory, "--searchfw looks at its *.bin files"},
        {"relative-names", places.directory, "relative file names in the arguments of run"},
        {"settings-temporary-file", places.directory / ".ScalerIsp.tmp",
         "there only while settings are saved; next to the file that is saved"},
        {"virtual-scaler", VirtualDeviceDirectory(VirtualLibraryPath().parent_path()),
         "the device of --virtual"},
        {"virtual-comm-library", VirtualCommLibraryPath(), "ispctl script run --virtual"},
        {"working-directory", working, "relative names of --lib and --log; no log without --log"},
        {"temporary-directory", P_tmpdir, "what the library prints, in a file without a name"},
        {"pages", PagesDirectory(), "the pages that messages name; index.md first"},
    };
}

/// The directories of chips in the order in which they are searched.
void AppendChips(std::vector<Row> &rows) {
    for (const fs::path &root : ChipRoots()) {
        rows.push_back({"chips", root, "--chip NAME opens the library in its directory NAME"});
    }
}

bool Exists(const fs::path &path) {
    const auto kind = StateOf(path).kind;
    return kind != FileState::Kind::Missing && kind != FileState::Kind::Unreachable;
}

} // namespace

ExitStatus PathsCommand(const Options &options, Session &session) {
    ConsoleStreams &streams = session.streams;
    Json paths = Json::array();
    std::vector<Row> rows = RowsOf(options);
    AppendChips(rows);
    for (const Row &row : rows) {
        if (options.json) {
            Json object{{"name", row.name}};
            SetText(object, "path", row.path.string());
            object["exists"] = Exists(row.path);
            object["note"] = row.note;
            paths.push_back(object);
            continue;
        }
        streams.Write(
            Stream::Output,
            fmt::format("{:<23}  {:<3}  {}\n", row.name, Exists(row.path) ? "yes" : "no",
                        Visible(row.path.string(), Layout::OneLine, streams.TheCharset())));
    }
    if (options.json) {
        streams.Write(Stream::Output, JsonDocument(Json{{"paths", paths}}, Charset::Ascii));
    }
    return kExitSuccess;
}

} // namespace ispctl::doctor
