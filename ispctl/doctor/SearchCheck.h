#ifndef ISPCTL_DOCTOR_SEARCH_CHECK_H
#define ISPCTL_DOCTOR_SEARCH_CHECK_H

#include "doctor/Finding.h"
#include "doctor/Places.h"

namespace ispctl::doctor {

/// Lets the library run its three firmware searches, and reports for each file why it was or was
/// not accepted. REQUIRES: reading the settings files ends. RETURNS false if the user stopped that.
bool CheckSearches(const Places &places, Report &report);

} // namespace ispctl::doctor

#endif
