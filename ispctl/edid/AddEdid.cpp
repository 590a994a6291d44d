#include "edid/AddEdid.h"

#include <CLI/CLI.hpp>

#include "comm/CommOptions.h"

namespace ispctl {
namespace {

const std::string kExamples = R"(
Examples:
  ispctl edid monitor.bin
      shows an EDID: facts, remarks on conformity, bytes; then its problems
  ispctl edid -o monitor.bin monitor.txt
      converts a hex dump, a C array, the output of xrandr --verbose to bytes
  ispctl edid --fix-checksum -o good.bin edited.bin
      writes the EDID with right checksums
  ispctl edid --json *.bin
      writes one JSON array for a program
  ispctl edid --comm /opt/adapter/libComm.dylib --channel 6
      reads the EDID of a display
)";

} // namespace

void AddEdid(CLI::App &app, EdidOptions &options, Session &session, ExitStatus &status) {
    CLI::App *edid = app.add_subcommand("edid", "Shows and checks EDIDs.");
    edid->add_option("FILE", options.files, "EDIDs in any form; - is standard input")
        ->type_name("")
        ->expected(-1);
    CLI::Option *text = edid->add_flag("--text", options.text, "print the EDID as a byte list only")
                            ->disable_flag_override();
    edid->add_flag("--json", options.json, "write only JSON to standard output")
        ->disable_flag_override()
        ->excludes(text);
    edid->add_option("-o,--output", options.output, "write the bytes to OUT; - is standard output")
        ->type_name("OUT");
    edid->add_flag("--fix-checksum", options.fixChecksum, "correct the checksums before")
        ->disable_flag_override();
    edid->add_option("--form", options.form,
                     "read FILE as binary, hex or list; detected by default")
        ->check(CLI::IsMember({"binary", "hex", "list"}))
        ->type_name("FORM");
    AddCommOptions(*edid, options);
    edid->footer(kExamples + ExitStatusHelp());
    edid->callback([&] { status = EdidCommand(options, session); });
}

} // namespace ispctl
