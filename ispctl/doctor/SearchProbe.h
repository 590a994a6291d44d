#ifndef ISPCTL_DOCTOR_SEARCH_PROBE_H
#define ISPCTL_DOCTOR_SEARCH_PROBE_H

#include <string>

#include "LibraryProcess.h"

namespace ispctl::doctor {

/// The three values of --searchfw.
inline constexpr const char *kSearches[] = {"auto", "prefix", "userdefined"};

/// Number of candidates that are reported at most.
inline constexpr std::size_t kMostCandidates = 50;

/// In the process that opens libraries: opens the library and lets its own functions search. Sends
///   "library-loaded", or "library-refused" TEXT
///   "no-search" SYMBOL                      the library lacks the functions
///   "search" SEARCH "found"|"refused" TEXT  TEXT is what the library printed
///   "candidate" NAME SEARCH REASON          REASON is empty if that search accepts the name
///   "candidates" COUNT, and kProbeEnd
/// \param action  without its dashes; the action of the command line that is parsed, or empty to open
///                the library only
void ProbeSearch(const std::string &library, const std::string &action, ParentLink &link);

} // namespace ispctl::doctor

#endif
