#include "edid/EdidCommand.h"

#include <fmt/format.h>

#include "FileIo.h"
#include "HexDump.h"
#include "LibraryApi.h"
#include "LibraryPaths.h"
#include "edid/EdidBlocks.h"
#include "edid/EdidText.h"

namespace ispctl {
namespace {

// An EDID has at most 256 blocks of 128 bytes.
constexpr std::size_t kMaxBytes = 32 * 1024;

std::optional<LibraryApi> OpenLibraryApi(const EdidOptions &options, std::string &error) {
    const auto library = ScalerLibrary::Open(
        options.library.empty() ? InstalledLibraryPath().string() : options.library, error);
    return library ? LibraryApi::Find(*library, error) : std::nullopt;
}

EdidForm Form(const EdidOptions &options, const std::string &content) {
    if (options.form.empty()) {
        return DetectEdidFormat(content);
    }
    return options.form == "binary" ? EdidForm::Binary
           : options.form == "hex"  ? EdidForm::Hex
                                    : EdidForm::ByteList;
}

/// Reports why the library rejected the list. EDIDToBin returns no reason, so the bytes are checked
/// again.
ExitStatus FailInvalid(const EdidOptions &options, const LibraryApi &api, const std::string &list,
                       Session &session) {
    const auto bytes = api.CmdToBin(list);
    if (bytes.empty()) {
        return session.Fail(kExitFailed,
                            fmt::format("{}: no bytes, or a value greater than 255", options.file));
    }
    for (const std::string &problem : EdidProblems(bytes)) {
        session.streams.Print(Stream::Error, fmt::format("{}: {}\n", options.file, problem));
    }
    return session.Fail(kExitFailed, "invalid EDID");
}

} // namespace

ExitStatus EdidCommand(const EdidOptions &options, Session &session) {
    std::string error;
    const auto content = ReadInputFile(options.file, kMaxBytes, error);
    if (!content) {
        return session.Fail(kExitFileError, error);
    }
    const auto api = OpenLibraryApi(options, error);
    if (!api) {
        return session.Fail(kExitUsage, error);
    }
    const auto list = ByteListOfEdid(*content, Form(options, *content));
    if (!list) {
        return session.Fail(kExitFailed,
                            fmt::format("{}: an odd number of hexadecimal digits", options.file));
    }
    const auto edid = api->EdidToBin(*list);
    if (edid.empty()) {
        return FailInvalid(options, *api, *list, session);
    }
    const auto problems = EdidProblems(edid);
    for (const std::string &problem : problems) {
        session.streams.Print(Stream::Error, fmt::format("{}: {}\n", options.file, problem));
    }
    if (!problems.empty()) {
        return session.Fail(kExitFailed, "invalid EDID");
    }
    session.streams.Print(Stream::Output, options.text ? WriteEdidText(edid)
                                                       : EdidFacts(edid) + "\n" + HexDump(edid));
    return kExitSuccess;
}

} // namespace ispctl
