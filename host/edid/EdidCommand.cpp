#include "edid/EdidCommand.h"

#include <cstdio>
#include <fmt/format.h>

#include "HexDump.h"
#include "InputFile.h"
#include "Places.h"
#include "Toolkit.h"
#include "edid/EdidBlocks.h"
#include "edid/EdidText.h"

namespace ispctl {
namespace {

ExitStatus Fail(ExitStatus status, const std::string &text) {
    fmt::print(stderr, "ispctl: {}\n", text);
    return status;
}

std::optional<Toolkit> OpenToolkit(const EdidOptions &options, std::string &error) {
    const auto library = ScalerLibrary::Open(
        options.library.empty() ? InstalledLibrary().string() : options.library, error);
    return library ? Toolkit::Find(*library, error) : std::nullopt;
}

EdidForm Form(const EdidOptions &options, const std::string &content) {
    if (options.form.empty()) {
        return FormOfEdid(content);
    }
    return options.form == "binary" ? EdidForm::Binary
           : options.form == "hex"  ? EdidForm::Hex
                                    : EdidForm::ByteList;
}

/// Says why the library refuses the list. Its bytes tell more than its answer.
ExitStatus Refuse(const EdidOptions &options, const Toolkit &toolkit, const std::string &list) {
    const auto bytes = toolkit.CmdToBin(list);
    if (bytes.empty()) {
        return Fail(kExitFailedRun,
                    fmt::format("{}: no bytes, or a value above 255", options.file));
    }
    for (const std::string &problem : EdidProblems(bytes)) {
        fmt::print(stderr, "{}: {}\n", options.file, problem);
    }
    return Fail(kExitFailedRun, "the library refuses this EDID");
}

} // namespace

ExitStatus EdidCommand(const EdidOptions &options) {
    std::string error;
    const auto content = ReadInputFile(options.file, error);
    if (!content) {
        return Fail(kExitWrongUse, error);
    }
    const auto toolkit = OpenToolkit(options, error);
    if (!toolkit) {
        return Fail(kExitWrongUse, error);
    }
    const auto list = ByteListOfEdid(*content, Form(options, *content));
    if (!list) {
        return Fail(kExitFailedRun,
                    fmt::format("{}: an odd number of hexadecimal digits", options.file));
    }
    const auto edid = toolkit->EdidToBin(*list);
    if (edid.empty()) {
        return Refuse(options, *toolkit, *list);
    }
    const auto problems = EdidProblems(edid);
    for (const std::string &problem : problems) {
        fmt::print(stderr, "{}: {}\n", options.file, problem);
    }
    if (!problems.empty()) {
        return Fail(kExitFailedRun, "this EDID is refused");
    }
    fmt::print("{}", options.text ? WriteEdidText(edid) : EdidFacts(edid) + "\n" + HexDump(edid));
    return kExitSuccess;
}

} // namespace ispctl
