#ifndef ISPCTL_PARSER_END_H
#define ISPCTL_PARSER_END_H

#include <string>
#include <vector>

#include "ConsoleStreams.h"

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace ispctl {

/// `help COMMAND ...` as `COMMAND --help`, whatever follows the command, and without the option if
/// there is no such command: the parser then refuses it. Other arguments unchanged.
std::vector<std::string> WithHelpOption(const CLI::App &app, std::vector<std::string> arguments);

/// Whether the user wants JSON: also if the arguments cannot be parsed.
/// \param arguments  without those of the library
bool AsksForJson(const std::vector<std::string> &arguments);

/// Prints the parser's help, version or error through the streams, so that a failed write is
/// noticed; an error with the nearest name, and with `json` also as the result event.
ExitStatus ShowParserEnd(const CLI::App &app, const std::vector<std::string> &arguments,
                         const CLI::ParseError &end, bool json, ConsoleStreams &streams);

} // namespace ispctl

#endif
