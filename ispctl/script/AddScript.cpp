#include "script/AddScript.h"

#include <CLI/CLI.hpp>

#include "comm/CommOptions.h"

namespace ispctl {
namespace {

const std::string kExamples = R"(
Examples:
  ispctl script assemble panel.script -o panel.bin
  ispctl script check panel.bin
  ispctl script run --virtual panel.script
)";

using Command = ExitStatus (*)(const ScriptOptions &, Session &);

/// One subcommand: name, what it does, what FILE is, an example.
struct Row {
    const char *name;
    const char *help;
    const char *file;
    const char *examples;
    Command command;
};

constexpr const char *kInput = "the bytes of a script, or text; - is standard input";

constexpr Row kAssemble{"assemble", "Converts script text to a byte list, or with -o to bytes.",
                        "script text; - is standard input", R"(
Examples:
  ispctl script assemble panel.script > panel.txt
  ispctl script assemble panel.script -o panel.bin
)",
                        AssembleCommand};
constexpr Row kList{"list", "Converts a script to script text.", kInput,
                    R"(
Examples:
  ispctl script list panel.bin > panel.script
)",
                    ListCommand};
constexpr Row kCheck{"check", "Finds records that must not run.", kInput,
                     R"(
Examples:
  ispctl script check panel.bin
)",
                     CheckCommand};
constexpr Row kRun{"run", "Checks a script and runs it.", kInput, R"(
Examples:
  ispctl script run --virtual panel.script
  ispctl script run --comm /opt/adapter/libComm.dylib --channel 6 panel.bin
)",
                   RunScriptCommand};

void AddForm(CLI::App *command, ScriptOptions &options) {
    CLI::Option *text =
        command->add_flag("--text", options.text, "FILE is script text, whatever it looks like")
            ->disable_flag_override();
    command->add_flag("--binary", options.binary, "FILE is bytes, whatever it looks like")
        ->disable_flag_override()
        ->excludes(text);
}

} // namespace

void AddScript(CLI::App &app, ScriptOptions &options, Session &session, ExitStatus &status) {
    CLI::App *script = app.add_subcommand("script", "Writes, reads and runs register scripts.");
    script->require_subcommand(1);
    script->footer(kExamples + ExitStatusHelp());
    const auto add = [&](const Row &row) {
        CLI::App *one = script->add_subcommand(row.name, row.help);
        one->footer(row.examples + ExitStatusHelp());
        one->add_option("FILE", options.file, row.file)->required()->type_name("");
        one->callback([command = row.command, &options, &session, &status] {
            status = command(options, session);
        });
        return one;
    };
    add(kAssemble)
        ->add_option("-o,--output", options.output, "write the bytes to OUT; - is standard output")
        ->type_name("OUT");
    AddForm(add(kList), options);
    AddForm(add(kCheck), options);
    CLI::App *run = add(kRun);
    AddForm(run, options);
    AddCommOptions(*run, options);
}

} // namespace ispctl
