#ifndef ISPCTL_EXPLAIN_ADD_EXPLAIN_H
#define ISPCTL_EXPLAIN_ADD_EXPLAIN_H

#include "explain/ExplainCommand.h"

namespace CLI {
class App;
}

namespace ispctl {

/// Adds the subcommand `explain`. When it is parsed it runs and leaves its exit status in status.
/// Its ARGS must be cut off before the parser sees them; options.arguments gets them.
CLI::App *AddExplain(CLI::App &app, ExplainOptions &options, Session &session, ExitStatus &status);

} // namespace ispctl

#endif
