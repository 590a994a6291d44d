#ifndef ISPCTL_EDID_INPUT_DUMP_LINES_H
#define ISPCTL_EDID_INPUT_DUMP_LINES_H

#include "edid/input/Dump.h"

namespace ispctl::edid {

/// One line of a dump.
struct DumpLine {
    Token offset;              ///< digits only
    std::vector<Token> values; ///< without the characters at the end of the line
    bool followsStar = false;  ///< the previous line is repeated up to this offset
};

/// RETURNS the lines of a dump, without empty ones and comments. Throws SyntaxError.
std::vector<DumpLine> ReadDumpLines(std::string_view text, DumpKind kind);

} // namespace ispctl::edid

#endif
