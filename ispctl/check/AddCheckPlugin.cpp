#include "check/AddCheckPlugin.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <string>

#include "check/CallProbe.h"

namespace ispctl::check {
namespace {

const std::string kExamples = R"(
Examples:
  ispctl check-plugin build/PlugIn/libIsp.dylib
      can it be loaded, which functions are there
  ispctl check-plugin --call build/PlugIn/libIsp.dylib
      calls them, too, with records that ask for nothing harmful
  ispctl check-plugin --call --json build/libSignVerify.dylib

With --call each function runs in a process of its own and has 20 seconds. A
plug-in may access a device that is attached all the same, and two functions
enter and leave the ISP mode: disconnect devices first.
)";

ExitStatus CallCommand(const std::vector<std::string> &arguments, Session &session) {
    constexpr std::size_t kArguments = 4;
    const std::string number = arguments.size() == kArguments ? arguments[2] : "";
    std::size_t index = CallRows().size();
    std::from_chars(number.data(), number.data() + number.size(), index);
    if (session.link == nullptr || index >= CallRows().size()) {
        return session.Fail(kExitUsage, "this command is for ispctl's own use");
    }
    // What a plug-in throws elsewhere, or ends, goes through: ispctl reports it.
    ProbeCall(arguments[0], arguments[1], CallRows()[index], arguments[3], *session.link);
    return kExitSuccess;
}

} // namespace

void AddCheckPlugin(CLI::App &app, CheckOptions &options, Session &session, ExitStatus &status) {
    CLI::App *check = app.add_subcommand("check-plugin", "Checks a plug-in, for its author.");
    check->footer(kExamples + ExitStatusHelp());
    check->add_option("FILE", options.file, "the plug-in")->required()->type_name("");
    check->add_flag("--call", options.call, "call its functions")->disable_flag_override();
    check->add_flag("--json", options.json, "print one JSON document")->disable_flag_override();
    check->callback([&] { status = CheckPluginCommand(options, session); });
    CLI::App *call = app.add_subcommand(kCallCommand)->group("");
    call->add_option("ARGUMENTS", options.probe)->type_name("");
    call->callback([&] { status = CallCommand(options.probe, session); });
}

} // namespace ispctl::check
