#ifndef ISPCTL_COMM_COMM_OPTIONS_H
#define ISPCTL_COMM_COMM_OPTIONS_H

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace ispctl {

/// The options of every command that uses a communication library.
struct CommOptions {
    std::string library;        ///< the ScalerIsp library that opens it; empty: the installed one
    std::string comm;           ///< the communication library
    bool virtualScaler = false; ///< use the virtual bus
    std::optional<unsigned short> channel; ///< communication channel to select first

    bool UsesBus() const {
        return virtualScaler || !comm.empty();
    }
};

/// Adds --comm, --virtual, --channel and --lib to a command.
void AddCommOptions(CLI::App &command, CommOptions &options);

} // namespace ispctl

#endif
