#ifndef ISPCTL_SCRIPT_SCRIPT_INPUT_H
#define ISPCTL_SCRIPT_SCRIPT_INPUT_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Session.h"
#include "script/ScriptText.h"

namespace ispctl {

enum class ScriptForm { Detected, Text, Bytes };

/// Where the content of a file shows that it is bytes and no script text; nothing if it is text.
/// Bytes of a script nearly always have control characters, because opcodes are such; text has
/// none but spaces.
std::optional<std::size_t> FirstByteOfBinary(std::string_view content);

/// A script that was read.
struct ScriptInput {
    std::vector<ScriptStep> steps;
    std::string whyBytes; ///< if that was detected: why it was not read as text
};

/// The name of an input in messages.
std::string ShownName(const std::string &file);

/// Reads a script as bytes, or assembles it from text. RETURNS nothing on failure, after printing
/// all errors, with the exit status in status. \param file  a name, or "-" for standard input
std::optional<ScriptInput> ReadScript(const std::string &file, ScriptForm form, ExitStatus &status,
                                      Session &session);

} // namespace ispctl

#endif
