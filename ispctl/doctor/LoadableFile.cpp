#include "doctor/LoadableFile.h"

#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <initializer_list>
#include <string_view>
#include <system_error>

#include "doctor/FileState.h"
#include "doctor/ImageExtent.h"
#include "doctor/ImageHeader.h"

namespace ispctl::doctor {
namespace {

bool Contains(const std::string &text, std::initializer_list<const char *> parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [&](const char *part) { return text.find(part) != std::string::npos; });
}

bool CheckHeader(const std::string &file, const ImageHeader &header, const LoadFindings &findings,
                 Report &report) {
    if (header.format == ImageHeader::Format::Other || !header.isSharedLibrary) {
        report.Add(findings.wrongType, file, header.description);
        return false;
    }
    if (header.format != OwnFormat()) {
        report.Add(findings.wrongSystem, file, header.description,
                   fmt::format("{} files", NameOf(OwnFormat())));
        return false;
    }
    const auto &all = header.architectures;
    if (!OwnArchitecture().empty() &&
        std::find(all.begin(), all.end(), OwnArchitecture()) == all.end()) {
        report.Add(findings.wrongArchitecture, file, fmt::format("{}", fmt::join(all, ", ")),
                   std::string(OwnArchitecture()));
        return false;
    }
    return true;
}

bool CheckSize(const std::string &file, std::string_view bytes, const ImageHeader &header,
               const LoadFindings &findings, Report &report) {
    std::error_code ignored;
    const std::uintmax_t size = std::filesystem::file_size(file, ignored);
    const std::uint64_t least = LeastFileSize(bytes);
    if (size >= least) {
        return true;
    }
    report.Add(findings.wrongType, file,
               fmt::format("a truncated {} file ({} of at least {} bytes)", NameOf(header.format),
                           size, least));
    return false;
}

} // namespace

bool CheckLoadable(const std::string &file, const LoadFindings &findings, Report &report,
                   std::string &description) {
    const FileState state = StateOf(file);
    switch (state.kind) {
    case FileState::Kind::Missing:
        report.Add(findings.missing, file);
        return false;
    case FileState::Kind::Unreachable:
        report.Add(findings.unreadable, file, state.description);
        return false;
    case FileState::Kind::Directory:
    case FileState::Kind::Special:
        report.Add(findings.notFile, file, state.description);
        return false;
    case FileState::Kind::Regular:
        break;
    }
    std::string error;
    const auto bytes = ReadBeginning(file, kImageHeaderBytes, error);
    if (!bytes) {
        report.Add(findings.unreadable, file, error);
        return false;
    }
    const ImageHeader header = ReadImageHeader(*bytes);
    description = header.description;
    return CheckHeader(file, header, findings, report) &&
           CheckSize(file, *bytes, header, findings, report);
}

// The loaders of both systems say what is missing, each in its own sentence.
void ReportLoader(const std::string &file, const std::string &text, const LoadFindings &findings,
                  Report &report) {
    FindingId id = findings.notLoaded;
    if (Contains(text, {"undefined symbol", "ymbol not found", "symbol lookup error"})) {
        id = findings.missingSymbol;
    } else if (Contains(text, {"cannot open shared object file", "Library not loaded"})) {
        id = findings.missingDependency;
    }
    report.Add(id, file, text);
}

} // namespace ispctl::doctor
