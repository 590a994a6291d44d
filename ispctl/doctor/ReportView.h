#ifndef ISPCTL_DOCTOR_REPORT_VIEW_H
#define ISPCTL_DOCTOR_REPORT_VIEW_H

#include "ConsoleStreams.h"
#include "doctor/Finding.h"
#include "doctor/Places.h"

namespace ispctl::doctor {

/// Writes the findings to standard output, with a heading for each section. Names from elsewhere
/// are made visible, newlines included.
void ShowText(const Report &report, ConsoleStreams &streams);

/// Writes one JSON document: docs/ispctl.md describes it.
void ShowJson(const Places &places, const Report &report, ExitStatus status,
              ConsoleStreams &streams);

} // namespace ispctl::doctor

#endif
