#include "edid/AddEdid.h"

#include <CLI/CLI.hpp>

namespace ispctl {

void AddEdid(CLI::App &app, EdidOptions &options, Session &session, ExitStatus &status) {
    CLI::App *edid = app.add_subcommand("edid", "Checks an EDID and shows its content.");
    edid->add_option("FILE", options.file, "bytes, hexadecimal digits, or a byte list")
        ->required()
        ->type_name("");
    edid->add_flag("--text", options.text, "print the EDID as a byte list only")
        ->disable_flag_override();
    edid->add_option("--form", options.form,
                     "format of FILE: binary, hex or list; detected by default")
        ->check(CLI::IsMember({"binary", "hex", "list"}))
        ->type_name("FORM");
    edid->add_option("--lib", options.library, "the ScalerIsp library to open, by path")
        ->type_name("FILE");
    edid->footer("Examples:\n  ispctl edid monitor.edid\n" + ExitStatusHelp());
    edid->callback([&] { status = EdidCommand(options, session); });
}

} // namespace ispctl
