#include "explain/ExplainLine.h"

#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <system_error>

#include "CommandLine.h"
#include "LibraryParser.h"
#include "LibraryPaths.h"
#include "Utf8.h"
#include "explain/GivenBanks.h"
#include "line/CheckLine.h"
#include "line/CheckPassable.h"
#include "line/Checks.h"
#include "line/ShellQuote.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;

std::optional<ScalerLibrary> OpenLibrary(const ExplainOptions &options, std::string &error) {
    if (!options.library.empty()) {
        return ScalerLibrary::Open(options.library, error);
    }
    return ScalerLibrary::Open(
        options.virtualScaler ? VirtualLibraryPath() : InstalledLibraryPath(), error);
}

template <class Record> std::string BytesOfRecord(const Record &record) {
    return {reinterpret_cast<const char *>(&record), sizeof record};
}

void AddFlash(Explanation &explanation, const ParsedLine &line, const ParseArguments &parse) {
    if (!line.accepted) {
        explanation.banks = GivenBanks(explanation.arguments, parse);
    } else {
        for (const PlanStep &step : explanation.plan) {
            if (step.name == kBootStep) {
                const char *path = line.records->command.szBootFwPath;
                explanation.banks =
                    BootBanks({path, ::strnlen(path, SCALER_ISP_PATH_CHARS)}, parse);
            }
        }
        const auto uses = BankUsesOf(explanation.command);
        explanation.banks.insert(explanation.banks.end(), uses.begin(), uses.end());
    }
    explanation.flash = DrawFlash(explanation.banks);
}

} // namespace

std::optional<Explanation> ExplainLine(const ExplainOptions &options, std::string &error) {
    const auto library = OpenLibrary(options, error);
    if (!library) {
        return std::nullopt;
    }
    const auto parser = LibraryParser::Find(*library, error);
    if (!parser) {
        error =
            fmt::format("{} cannot explain a line: it has no {}", library->Path().string(), error);
        return std::nullopt;
    }
    Explanation explanation;
    explanation.library = library->Path().string();
    explanation.arguments = options.arguments;
    explanation.ownPart += options.virtualScaler ? " --virtual" : "";
    explanation.ownPart +=
        options.library.empty() ? "" : " --lib " + QuoteForShell(options.library);
    const CommandLine line = BuildCommandLine(
        options.arguments, [&](const std::string &text) { return library->Split(text); });
    if (!line.IsValid()) {
        explanation.notPassed = line.error;
        explanation.findings = CheckPassable(options.arguments, line.error);
        return explanation;
    }
    explanation.commandLine = EscapeWide(line.line).text;
    const ParseArguments parse = [&](const std::vector<std::string> &arguments) {
        return parser->Parse(arguments);
    };
    std::error_code ignored;
    const LineContext context{library->Directory(), fs::current_path(ignored), parse, false};
    explanation.findings = CheckLine(options.arguments, context);
    explanation.corrected = CorrectLine(options.arguments, explanation.findings, {}, context);
    if (NamesBlockingFile(options.arguments, context)) {
        return explanation; // parsing would wait for a writer of the pipe
    }
    const ParsedLine parsed = parse(options.arguments);
    explanation.accepted = parsed.accepted;
    explanation.printed = parsed.printed;
    explanation.plan = PlanOf(parsed, library->Directory().string() + "/");
    if (parsed.accepted) {
        explanation.command = BytesOfRecord(parsed.records->command);
        explanation.sign = BytesOfRecord(parsed.records->sign);
    }
    AddFlash(explanation, parsed, parse);
    return explanation;
}

} // namespace ispctl
