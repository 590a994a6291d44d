#ifndef ISPCTL_DOCTOR_JSON_TEXT_H
#define ISPCTL_DOCTOR_JSON_TEXT_H

#include <nlohmann/json.hpp>
#include <string>

#include "ConsoleStreams.h"

namespace ispctl::doctor {

using Json = nlohmann::ordered_json;

/// Stores bytes as a string of an object. If they are not valid UTF-8 they are escaped (see
/// EscapedText) and the key is added to the object's list "escaped".
void SetText(Json &object, const char *key, const std::string &bytes);

/// Writes one document to standard output, in ASCII: no byte of it acts on a terminal.
void WriteDocument(const Json &document, ConsoleStreams &streams);

} // namespace ispctl::doctor

#endif
