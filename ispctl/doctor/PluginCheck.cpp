#include "doctor/PluginCheck.h"

#include <algorithm>
#include <fmt/format.h>

#include "doctor/FileState.h"
#include "doctor/ImageHeader.h"
#include "doctor/Probe.h"

namespace ispctl::doctor {
namespace {

bool Contains(const std::string &text, std::initializer_list<const char *> parts) {
    return std::any_of(parts.begin(), parts.end(),
                       [&](const char *part) { return text.find(part) != std::string::npos; });
}

// The loaders of both systems say what is missing, each in its own sentence.
FindingId CauseOf(const std::string &loaderText) {
    if (Contains(loaderText, {"undefined symbol", "ymbol not found", "symbol lookup error"})) {
        return FindingId::PluginSymbol;
    }
    if (Contains(loaderText, {"cannot open shared object file", "Library not loaded"})) {
        return FindingId::PluginDependency;
    }
    return FindingId::PluginNotLoaded;
}

// RETURNS whether the file is a shared library that this process can load.
bool CheckHeader(const std::string &file, const std::string &bytes, Report &report) {
    const ImageHeader header = ReadImageHeader(bytes);
    if (header.format == ImageHeader::Format::Other || !header.isSharedLibrary) {
        report.Add(FindingId::PluginWrongType, file, header.description);
        return false;
    }
    if (header.format != OwnFormat()) {
        report.Add(FindingId::PluginWrongSystem, file, header.description,
                   fmt::format("{} files", NameOf(OwnFormat())));
        return false;
    }
    const auto &all = header.architectures;
    if (!OwnArchitecture().empty() &&
        std::find(all.begin(), all.end(), OwnArchitecture()) == all.end()) {
        report.Add(FindingId::PluginWrongArchitecture, file,
                   fmt::format("{}", fmt::join(all, ", ")), std::string(OwnArchitecture()));
        return false;
    }
    report.Add(FindingId::PluginType, file, header.description);
    return true;
}

// RETURNS whether the file can be loaded as far as that is seen without loading it.
bool CheckFile(const std::string &file, PluginRole role, Report &report) {
    const FileState state = StateOf(file);
    switch (state.kind) {
    case FileState::Kind::Missing:
        report.Add(role == PluginRole::Isp ? FindingId::PluginMissing
                                           : FindingId::SignPluginMissing,
                   file);
        return false;
    case FileState::Kind::Unreachable:
        report.Add(FindingId::PluginUnreadable, file, state.description);
        return false;
    case FileState::Kind::Directory:
    case FileState::Kind::Special:
        report.Add(FindingId::PluginNotFile, file, state.description);
        return false;
    case FileState::Kind::Regular:
        break;
    }
    std::string error;
    const auto bytes = ReadBeginning(file, kImageHeaderBytes, error);
    if (!bytes) {
        report.Add(FindingId::PluginUnreadable, file, error);
        return false;
    }
    return CheckHeader(file, *bytes, report);
}

void ReportFunctions(const std::string &file, PluginRole role, const ProbeOutcome &outcome,
                     Report &report) {
    for (const PluginFunction &function : FunctionsOf(role)) {
        const Notice wanted{"function", function.name};
        const bool present = std::find(outcome.notices.begin(), outcome.notices.end(), wanted) !=
                             outcome.notices.end();
        const bool required = function.use == PluginFunction::Use::Required;
        if (function.use == PluginFunction::Use::NeverCalled) {
            if (present) {
                report.Add(FindingId::FunctionUnused, file, function.name);
            }
        } else if (present) {
            report.Add(FindingId::FunctionPresent, file, function.name,
                       required ? "required" : "optional");
        } else {
            report.Add(required ? FindingId::FunctionMissing : FindingId::OptionalMissing, file,
                       function.name);
        }
    }
}

} // namespace

const char *NameOf(PluginRole role) {
    return role == PluginRole::Isp ? "isp" : "sign";
}

bool CheckPlugin(const Places &places, PluginRole role, bool libraryWorks, Report &report,
                 WriteAccess &access) {
    const auto &path = role == PluginRole::Isp ? places.ispPlugin : places.signPlugin;
    const std::string file = path.string();
    if (!CheckFile(file, role, report)) {
        return true;
    }
    access.Check(path);
    const std::string library = libraryWorks ? places.library.string() : "";
    const ProbeOutcome outcome = RunProbe({kProbeCommand, NameOf(role), library, file});
    if (outcome.interrupted) {
        return false;
    }
    if (const Notice *refused = outcome.Find("not-loaded"); refused != nullptr) {
        const std::string &text = refused->back();
        report.Add(CauseOf(text), file, text);
        return true;
    }
    if (outcome.Find("loaded") != nullptr) {
        report.Add(FindingId::PluginLoads, file);
        ReportFunctions(file, role, outcome, report);
    }
    if (!outcome.end.empty()) {
        report.Add(FindingId::PluginEnds, file, outcome.end);
    }
    return true;
}

} // namespace ispctl::doctor
