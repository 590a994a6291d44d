#ifndef ISPCTL_DOCTOR_REPORT_VIEW_H
#define ISPCTL_DOCTOR_REPORT_VIEW_H

#include "ConsoleStreams.h"
#include "JsonText.h"
#include "doctor/Finding.h"
#include "doctor/Places.h"

namespace ispctl::doctor {

/// Writes the findings to standard output, with a heading for each section. Names from elsewhere
/// are made visible, newlines included.
void ShowFindings(const Report &report, ConsoleStreams &streams);

/// "1 errors, 0 warnings, 2 remarks".
std::string CountsOf(const Report &report);

/// Adds "counts" and "findings" to a document.
void AddFindings(const Report &report, Json &document);

/// Writes the findings and their counts.
void ShowText(const Report &report, ConsoleStreams &streams);

/// Writes one JSON document: docs/ispctl.md describes it.
void ShowJson(const Places &places, const Report &report, ExitStatus status,
              ConsoleStreams &streams);

} // namespace ispctl::doctor

#endif
