#include "station/StationRules.h"

#include "OutputNames.h"
#include "station/RunFiles.h"

namespace ispctl {
namespace {

struct Rule {
    bool isBroken;
    const char *message;
};

} // namespace

std::string StationUsageError(const RunOptions &options) {
    const StationOptions &station = options.station;
    const Rule rules[] = {
        {options.log == "-" || station.file == "-" || station.backup == "-",
         "standard output has what the run prints, so - cannot be the value of --log, --station or "
         "--backup: name a file (./- is one named -)"},
        {!station.tags.empty() && station.file.empty() && options.log.empty(),
         "--tag goes with --station or --log, which record it"},
        {options.verbatim && station.privateCopy,
         "--private-copy changes the names of files in ARGS, which --verbatim forbids"},
        {options.verbatim && !station.backup.empty(),
         "--backup needs to know the banks that are programmed, which --verbatim does not examine"},
        {!station.backup.empty() && DoesNotProgram(options.arguments),
         "--backup goes with an action that programs, such as --isp"},
    };
    for (const Rule &rule : rules) {
        if (rule.isBroken) {
            return rule.message;
        }
    }
    const std::string taken = FindTakenOutput({options.log, station.file}, options.arguments);
    return taken.empty() ? ""
                         : taken + " is not written: the command line or another option names it";
}

} // namespace ispctl
