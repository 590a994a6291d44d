#ifndef ISPCTL_JSON_TEXT_H
#define ISPCTL_JSON_TEXT_H

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "VisibleText.h"

namespace ispctl {

using Json = nlohmann::ordered_json;

/// Any bytes as a JSON string: valid UTF-8 unchanged, else escaped as EscapeBytes does it.
Json JsonString(std::string_view bytes);

/// The same; null for an empty string.
Json StringOrNull(std::string_view bytes);

/// Stores such a string in an object. If it is escaped, the key is added to the object's list
/// "escaped".
void SetText(Json &object, const char *key, const std::string &bytes);

/// Both return JSON with a newline at its end, as one line or indented. Someone may view it on a
/// terminal, so what could act on one is escaped, and in ASCII every character outside it.
std::string JsonLine(const Json &value, Charset charset);
std::string JsonDocument(const Json &value, Charset charset);

} // namespace ispctl

#endif
