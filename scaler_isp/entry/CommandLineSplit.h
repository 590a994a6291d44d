#ifndef SCALER_ISP_ENTRY_COMMAND_LINE_SPLIT_H
#define SCALER_ISP_ENTRY_COMMAND_LINE_SPLIT_H

#include <string>
#include <vector>

#include "scaler_isp/abi/Export.h"

/// Splits a command line as OperateScaler does: at spaces, except inside double quotes, which are
/// removed. Only the space and the double quote are special.
/// RETURNS 1, or 0 for an odd number of quotes or an empty pair of quotes.
// QUIRK Quote_at_the_start_of_the_line_opens_nothing: a quote that is the first character of the
// line is ignored, so each later quote pairs with the wrong one.
// QUIRK Second_quoted_part_moves_to_next_word: only the first quoted part of an argument is put
// back; a second one is inserted into the next argument that has a quoted part.
SCALER_ISP_API int ParseCommandLineParameter(std::vector<std::string> &tokens,
                                             const std::string &commandLine);

#endif
