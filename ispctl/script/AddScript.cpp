#include "script/AddScript.h"

#include <CLI/CLI.hpp>

namespace ispctl {
namespace {

const std::string kFooter = R"(
Examples:
  ispctl script assemble panel.script -o panel.bin
  ispctl script check panel.bin
  ispctl script run --virtual --text panel.script
)";

using Command = ExitStatus (*)(const ScriptOptions &, Session &);

CLI::App *AddOne(CLI::App &script, const char *name, const char *help, Command command,
                 ScriptOptions &options, Session &session, ExitStatus &status) {
    CLI::App *one = script.add_subcommand(name, help);
    one->add_option("FILE", options.file)->required()->type_name("");
    one->callback([command, &options, &session, &status] { status = command(options, session); });
    return one;
}

void AddText(CLI::App *command, ScriptOptions &options) {
    command->add_flag("--text", options.text, "FILE is script text, not bytes")
        ->disable_flag_override();
}

} // namespace

void AddScript(CLI::App &app, ScriptOptions &options, Session &session, ExitStatus &status) {
    CLI::App *script = app.add_subcommand("script", "Writes, reads and runs register scripts.");
    script->require_subcommand(1);
    script->footer(kFooter + ExitStatusHelp());
    const auto add = [&](const char *name, const char *help, Command command) {
        return AddOne(*script, name, help, command, options, session, status);
    };
    add("assemble", "Converts script text to a byte list, or with -o to bytes.", AssembleCommand)
        ->add_option("-o,--output", options.output, "write the bytes to OUT")
        ->type_name("OUT");
    add("list", "Converts bytes to script text.", ListCommand);
    AddText(add("check", "Finds records that must not run.", CheckCommand), options);
    CLI::App *run = add("run", "Checks a script and runs it.", RunScriptCommand);
    AddText(run, options);
    CLI::Option *comm =
        run->add_option("--comm", options.comm, "the communication library")->type_name("LIB");
    run->add_flag("--virtual", options.virtualScaler, "use the virtual bus: no hardware is touched")
        ->disable_flag_override()
        ->excludes(comm);
    run->add_option("--lib", options.library, "the ScalerIsp library to open, by path")
        ->type_name("FILE");
    run->add_option("--channel", options.channel, "select this communication channel first")
        ->type_name("N");
}

} // namespace ispctl
