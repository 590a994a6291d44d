#include "log/AddLog.h"

#include <CLI/CLI.hpp>

namespace ispctl {
namespace {

constexpr const char *kExamples = R"(
Examples:
  ispctl log summary station-1.jsonl station-2.jsonl
  ispctl log summary --json line.log
)";

constexpr const char *kExitStatus = R"(
Exit status: 0 everything was read, whatever the runs ended with; 1 a line
cannot be understood; 2 usage error; 8 a file cannot be read.)";

} // namespace

void AddLog(CLI::App &app, SummaryOptions &options, Session &session, ExitStatus &status) {
    CLI::App *log = app.add_subcommand("log", "Reads what run --station and run --log have kept.");
    log->require_subcommand(1);
    log->footer(kExamples);
    CLI::App *summary =
        log->add_subcommand("summary", "Counts the runs by result, with the tags of each.");
    summary->footer(std::string(kExamples) + kExitStatus);
    summary->add_option("FILE", options.files, "station files and logs")->required()->type_name("");
    summary->add_flag("--json", options.json, "print one JSON document")->disable_flag_override();
    summary->callback([&options, &session, &status] { status = SummaryCommand(options, session); });
}

} // namespace ispctl
