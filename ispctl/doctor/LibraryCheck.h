#ifndef ISPCTL_DOCTOR_LIBRARY_CHECK_H
#define ISPCTL_DOCTOR_LIBRARY_CHECK_H

#include "doctor/Finding.h"
#include "doctor/LoadableFile.h"
#include "doctor/Places.h"
#include "doctor/WriteAccess.h"

namespace ispctl::doctor {

/// What is reported about a library that cannot be loaded.
const LoadFindings &FindingsOfLibrary();

/// Checks the library's directory and whether the library can be loaded.
/// RETURNS false if the user stopped that.
bool CheckLibrary(const Places &places, Report &report, WriteAccess &access);

} // namespace ispctl::doctor

#endif
