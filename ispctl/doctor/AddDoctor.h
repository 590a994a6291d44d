#ifndef ISPCTL_DOCTOR_ADD_DOCTOR_H
#define ISPCTL_DOCTOR_ADD_DOCTOR_H

#include "Session.h"
#include "doctor/Places.h"

namespace CLI {
class App;
}

namespace ispctl::doctor {

/// What the three commands were asked for.
struct AllOptions {
    Options options;
    std::vector<std::string> probe; ///< kind, library, plug-in or action
};

/// Adds the subcommands `doctor` and `paths`. When one of them is parsed it runs and leaves its
/// exit status in status.
void AddDoctor(CLI::App &app, AllOptions &all, Session &session, ExitStatus &status);

} // namespace ispctl::doctor

#endif
