#include "comm/CommOptions.h"

#include <CLI/CLI.hpp>

namespace ispctl {

void AddCommOptions(CLI::App &command, CommOptions &options) {
    CLI::Option *comm =
        command.add_option("--comm", options.comm, "the communication library")->type_name("LIB");
    command
        .add_flag("--virtual", options.virtualScaler, "use the virtual bus: no hardware is touched")
        ->disable_flag_override()
        ->excludes(comm);
    command.add_option("--channel", options.channel, "select this communication channel first")
        ->type_name("N");
    command
        .add_option("--lib", options.library,
                    "the ScalerIsp library that opens the communication library, by path")
        ->type_name("FILE");
}

} // namespace ispctl
