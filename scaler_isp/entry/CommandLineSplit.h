#ifndef SCALER_ISP_ENTRY_COMMAND_LINE_SPLIT_H
#define SCALER_ISP_ENTRY_COMMAND_LINE_SPLIT_H

#include <string>
#include <vector>

#include "scaler_isp/abi/Export.h"

/// Splits a command line as OperateScaler does: at blanks, except inside double quotes, which are
/// removed. Only the blank and the double quote are special.
/// RETURNS 1, or 0 for an odd number of quotes and for an empty pair of quotes.
// QUIRK Quote_at_the_start_of_the_line_opens_nothing: the first quote of a line is passed over when
// it is the line's first character, and the quotes pair up one place late.
// QUIRK Second_quoted_part_of_a_word_moves_on: only the first quoted part of a word is put back; the
// text of a second one appears in the next word that has one.
SCALER_ISP_API int ParseCommandLineParameter(std::vector<std::string> &tokens,
                                             const std::string &commandLine);

#endif
