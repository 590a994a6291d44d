#ifndef ISPCTL_DOCTOR_LOCALE_CHECK_H
#define ISPCTL_DOCTOR_LOCALE_CHECK_H

#include "doctor/Finding.h"
#include "doctor/Places.h"

namespace ispctl::doctor {

/// Whether every byte of a settings file is a character in this encoding.
bool IsPlainAscii(const std::string &encoding);

/// Reports which encoding the environment asks for, and what that means for the name of the
/// library's directory.
void CheckLocale(const Places &places, Report &report);

} // namespace ispctl::doctor

#endif
