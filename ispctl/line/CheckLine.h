#ifndef ISPCTL_LINE_CHECK_LINE_H
#define ISPCTL_LINE_CHECK_LINE_H

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "line/Finding.h"
#include "line/ParsedLine.h"

namespace ispctl {

/// What a command line is checked against.
struct LineContext {
    std::filesystem::path libraryDirectory; ///< absolute; relative names lead there
    std::filesystem::path callerDirectory;  ///< absolute
    /// The library's parser, which neither loads a plug-in nor writes a file. Empty if the library
    /// lacks it; then only what needs no parser is found.
    std::function<ParsedLine(const std::vector<std::string> &arguments)> parse;
    bool hasPrivateCopies = false; ///< the run reads firmware and signatures from copies
};

/// Everything that a user should know before these arguments are passed to the library: first what
/// was not read as an option or value at all, then fatal findings, errors and warnings, each in the
/// order of the arguments, and at the end what follows from an earlier finding.
/// REQUIRES: BuildCommandLine accepts the arguments.
std::vector<Finding> CheckLine(const std::vector<std::string> &arguments,
                               const LineContext &context);

} // namespace ispctl

#endif
