#ifndef ISPCTL_DOCTOR_LOADABLE_FILE_H
#define ISPCTL_DOCTOR_LOADABLE_FILE_H

#include <string>

#include "doctor/Finding.h"

namespace ispctl::doctor {

/// What is reported about a file that the loader cannot use; one set for each kind of file.
struct LoadFindings {
    FindingId missing;
    FindingId unreadable;
    FindingId notFile;
    FindingId wrongType;
    FindingId wrongSystem;
    FindingId wrongArchitecture;
    FindingId missingSymbol;
    FindingId missingDependency;
    FindingId notLoaded; ///< for any other reason of the loader
};

/// Examines a file by its type and its first bytes; never loads it, and never blocks.
/// \param description  receives what the file is, if this process can load it
/// RETURNS whether the loader can be asked; if not, the reason is reported.
bool CheckLoadable(const std::string &file, const LoadFindings &findings, Report &report,
                   std::string &description);

/// Reports why the loader refused the file. \param text  in the loader's words
void ReportLoader(const std::string &file, const std::string &text, const LoadFindings &findings,
                  Report &report);

} // namespace ispctl::doctor

#endif
