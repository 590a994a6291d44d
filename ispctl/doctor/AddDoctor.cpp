#include "doctor/AddDoctor.h"

#include <CLI/CLI.hpp>

#include "chip/LibraryChoice.h"
#include "doctor/DoctorCommand.h"
#include "doctor/PathsCommand.h"
#include "doctor/PluginCheck.h"
#include "doctor/Probe.h"
#include "doctor/SearchProbe.h"

namespace ispctl::doctor {
namespace {

constexpr const char *kDoctorFooter = R"(
Examples:
  ispctl doctor
  ispctl doctor --lib /opt/isp/libScalerIsp.dylib --json

Exit status: 0 nothing worse than a remark, 1 errors, 2 usage error, 3 warnings,
5 no usable ISP plug-in.)";

constexpr const char *kPathsFooter = R"(
Examples:
  ispctl paths
  ispctl paths --virtual --json

Exit status: 0, 2 usage error.)";

using Command = ExitStatus (*)(const Options &, Session &);

void AddOne(CLI::App &app, const char *name, const char *help, const char *footer, Command command,
            Options &options, Session &session, ExitStatus &status) {
    CLI::App *one = app.add_subcommand(name, help);
    one->footer(footer);
    AddLibraryChoice(*one, options.library, options.virtualScaler);
    one->add_flag("--json", options.json, "print one JSON document")->disable_flag_override();
    one->callback([command, &options, &session, &status] { status = command(options, session); });
}

ExitStatus ProbeCommand(const std::vector<std::string> &arguments, Session &session) {
    constexpr std::size_t kArguments = 3;
    if (session.link == nullptr || arguments.size() != kArguments) {
        return session.Fail(kExitUsage, "this command is for ispctl's own use");
    }
    // What a plug-in throws or ends goes through: the process that started this one reports it.
    const std::string &kind = arguments[0];
    if (kind == "search") {
        ProbeSearch(arguments[1], arguments[2], *session.link);
    } else {
        ProbePlugin(arguments[1], arguments[2], *session.link);
    }
    return kExitSuccess;
}

} // namespace

void AddDoctor(CLI::App &app, AllOptions &all, Session &session, ExitStatus &status) {
    AddOne(app, "doctor", "Examines library, plug-ins, settings and environment.", kDoctorFooter,
           DoctorCommand, all.options, session, status);
    AddOne(app, "paths", "Prints where everything is looked for.", kPathsFooter, PathsCommand,
           all.options, session, status);
    CLI::App *probe = app.add_subcommand(kProbeCommand)->group("");
    probe->add_option("ARGUMENTS", all.probe)->type_name("");
    probe->callback([&] { status = ProbeCommand(all.probe, session); });
}

} // namespace ispctl::doctor
