#ifndef ISPCTL_LINE_CHECKS_H
#define ISPCTL_LINE_CHECKS_H

#include <filesystem>

#include "line/LineUnderCheck.h"

namespace ispctl {

/// Each adds what it finds. The order in which they are called decides nothing but the order of
/// findings about one argument, unless said otherwise.

void CheckSpaces(LineUnderCheck &line);     ///< no path was split at its spaces; before CheckNames
void CheckTypography(LineUnderCheck &line); ///< dashes and quotes of a keyboard; before CheckNames
void CheckNames(LineUnderCheck &line);      ///< every argument is an option or a value
void CheckActions(LineUnderCheck &line);    ///< exactly one action, which does something
void CheckValues(LineUnderCheck &line);     ///< numbers, bytes and keywords
void CheckNeeds(LineUnderCheck &line);      ///< every option has what it needs
void CheckSignatures(LineUnderCheck &line); ///< what is programmed is verified, every key is used
void CheckFiles(LineUnderCheck &line);      ///< every file is where the library looks for it
void CheckAccess(LineUnderCheck &line);     ///< nobody else may exchange what is loaded or read
void CheckBanks(LineUnderCheck &line);      ///< the firmware files fit into the flash
void CheckCompanions(LineUnderCheck &line); ///< what is meant to be used together is
void CheckDump(LineUnderCheck &line);       ///< where the dump goes
void CheckRanges(LineUnderCheck &line);     ///< values that belong together
void CheckSearch(LineUnderCheck &line);     ///< the firmware search finds a file

/// Reports a file that cannot be written. RETURNS whether it can.
bool CheckWritable(LineUnderCheck &line, const GivenArgument &given,
                   const std::filesystem::path &path);

/// Reports what in a path only a shell replaces. REQUIRES: nothing is at this path.
/// RETURNS whether there is such.
bool ReportUnexpanded(LineUnderCheck &line, const GivenArgument &given);

/// Reports what the firmware search does not find in its settings file, and why.
/// REQUIRES: the search was refused. RETURNS whether there is something.
bool CheckSettingsOfSearch(LineUnderCheck &line, const GivenArgument &search);

/// Whether this is a firmware search whose settings file in the library's directory is a pipe.
bool IsBlockingSearch(const GivenArgument &given, const LineContext &context);

/// Whether opening a file of this line could block for ever.
bool NamesBlockingFile(const ArgumentList &arguments, const LineContext &context);

/// Finds the reason of a refusal that no other check has found.
void ExplainRefusal(LineUnderCheck &line);

} // namespace ispctl

#endif
