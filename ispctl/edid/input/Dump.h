#ifndef ISPCTL_EDID_INPUT_DUMP_H
#define ISPCTL_EDID_INPUT_DUMP_H

#include "edid/EdidBytes.h"
#include "edid/input/SourceText.h"

namespace ispctl::edid {

/// The programs whose dumps are told apart by their first line.
enum class DumpKind {
    None,
    Colon, ///< "00000000: 00ff ffff  ....", as xxd writes
    Plain  ///< "00000000  00 ff ff ff  |....|", as hexdump and od write
};
DumpKind DetectDump(std::string_view text);

/// The bytes of a dump.
struct DumpBytes {
    Bytes bytes;
    bool isSwapped = false; ///< shown as words with the low byte first
};

/// Reads a dump; a line "*" repeats the one before up to the next offset. Words, octal and decimal
/// numbers are read if one way of reading them gives an EDID header. Throws SyntaxError.
/// \param kind  not None
DumpBytes ParseDump(std::string_view text, DumpKind kind);

} // namespace ispctl::edid

#endif
