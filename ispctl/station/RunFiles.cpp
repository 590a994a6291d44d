#include "station/RunFiles.h"

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <iterator>

#include "Utf8.h"
#include "line/LineUnderCheck.h"
#include "line/NamedFile.h"
#include "line/NumberText.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;
using ScalerIspFacts::ActionFacts;
using ScalerIspFacts::Kind;

constexpr std::string_view kProgram = "PROGRAM";

bool IsInput(const GivenArgument &given) {
    return given.value && CanBeCopied(*given.option);
}

constexpr std::string_view kCompanions[] = {"vkfile", "skfile", "nextvkfile", "subcert",
                                            "settingfile"};

bool IsCompanion(const GivenArgument &given) {
    return given.value && std::find(std::begin(kCompanions), std::end(kCompanions),
                                    given.option->name) != std::end(kCompanions);
}

bool Reads(const ActionFacts *action) {
    return action != nullptr && (action->files == kProgram || action->action == ENUM_ACTION_VERIFY);
}

/// The file that a firmware search has found: the one of the record that no option names.
std::string FoundFile(const Records &records, const std::vector<RunFile> &named) {
    const auto &map = records.command.stMapFw;
    const std::size_t count = std::min<std::size_t>(map.ulFwCount, SCALER_ISP_MAX_BANKS);
    for (std::size_t i = 0; i < count; ++i) {
        const wchar_t *wide = map.stFwBank[i].wszFwPath;
        const std::string path = EscapeWide({wide, ::wcsnlen(wide, SCALER_ISP_PATH_CHARS)}).text;
        const bool isNamed = std::any_of(named.begin(), named.end(), [&](const RunFile &file) {
            return file.path.lexically_normal() == fs::path(path).lexically_normal();
        });
        if (!isNamed) {
            return path;
        }
    }
    const char *file = records.sign.szFwFile;
    return {file, ::strnlen(file, SCALER_ISP_PATH_CHARS)};
}

/// A line of which nothing is parsed: these questions are answered by the option table.
LineUnderCheck Unparsed(const std::vector<std::string> &arguments) {
    static const LineContext kNowhere{};
    return {arguments, kNowhere, false};
}

} // namespace

Json RunFileJson(const RunFile &file) {
    Json json{{"role", file.role}, {"path", JsonString(file.path.string())}};
    if (file.digest) {
        json["size"] = file.digest->size;
        json["sha256"] = file.digest->sha256;
    } else {
        json["problem"] = JsonString(file.problem);
    }
    if (!file.copy.empty()) {
        json["given"] = JsonString(file.given);
        json["copy"] = JsonString(file.copy.string());
    }
    return json;
}

std::vector<RunFile> InputFiles(const std::vector<std::string> &arguments,
                                const LineContext &context, const Records *records) {
    const LineUnderCheck line(arguments, context, false);
    std::vector<RunFile> files;
    const ActionFacts *action = line.Action();
    if (action == nullptr || action->files == "NONE") {
        return files;
    }
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        const GivenArgument &given = *line.Options()[i];
        const bool isOutput =
            action->action == ENUM_ACTION_SIGN && given.option->name == "signfile";
        if (!IsInput(given) || isOutput || line.IsReplaced(i)) {
            continue;
        }
        RunFile file{std::string(given.option->name), *given.value, {}, {}, {}, "", given.position};
        file.path = FileOf(given, context).path;
        files.push_back(std::move(file));
    }
    const GivenArgument *search = line.Find("searchfw");
    if (search != nullptr && records != nullptr) {
        const std::string found = FoundFile(*records, files);
        if (!found.empty()) {
            files.insert(files.begin(), {"fw", "", found, {}, {}, "", search->position});
        }
    }
    return files;
}

std::vector<RunFile> CompanionFiles(const std::vector<std::string> &arguments,
                                    const LineContext &context) {
    const LineUnderCheck line(arguments, context, false);
    std::vector<RunFile> files;
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        const GivenArgument &given = *line.Options()[i];
        if (!IsCompanion(given) || line.IsReplaced(i)) {
            continue;
        }
        RunFile file{std::string(given.option->name), *given.value, {}, {}, {}, "", given.position};
        file.path = FileOf(given, context).path;
        AddDigest(file);
        files.push_back(std::move(file));
    }
    return files;
}

std::vector<RunFile> InstalledFiles(const fs::path &library) {
    const fs::path directory = library.parent_path();
    std::vector<RunFile> files{
        {"library", "", library, {}, {}, "", {}},
        {"isp-plugin", "", directory / "PlugIn/libIsp.dylib", {}, {}, "", {}},
        {"sign-plugin", "", directory / "libSignVerify.dylib", {}, {}, "", {}}};
    std::erase_if(files, [](const RunFile &file) {
        std::error_code ignored;
        return !fs::exists(file.path, ignored);
    });
    std::for_each(files.begin(), files.end(), AddDigest);
    return files;
}

bool FitsRecord(const fs::path &path) {
    return path.string().size() < SCALER_ISP_PATH_CHARS;
}

void AddDigest(RunFile &file) {
    file.digest = DigestOf(file.path, file.problem);
}

bool UsesInputFiles(const std::vector<std::string> &arguments) {
    return Reads(Unparsed(arguments).Action());
}

bool DoesNotProgram(const std::vector<std::string> &arguments) {
    const LineUnderCheck line = Unparsed(arguments);
    return line.Action() != nullptr && line.Action()->files != kProgram;
}

int InterfaceOf(const std::vector<std::string> &arguments) {
    const LineUnderCheck line = Unparsed(arguments);
    const GivenArgument *comm = line.Find("comm");
    return comm != nullptr && comm->value ? ReadNumberText(*comm->value).stored : 0;
}

std::vector<std::string> DeviceArguments(const std::vector<std::string> &arguments) {
    const LineUnderCheck line = Unparsed(arguments);
    std::vector<std::string> chosen;
    for (const GivenArgument *given : line.Options()) {
        const auto &option = *given->option;
        if (option.section == "communication" || option.name == "settingfile") {
            chosen.push_back("--" + std::string(option.name));
            if (given->value) {
                chosen.push_back(*given->value);
            }
        }
    }
    return chosen;
}

} // namespace ispctl
