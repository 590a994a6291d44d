#ifndef ISPCTL_EXPLAIN_JSON_TEXT_H
#define ISPCTL_EXPLAIN_JSON_TEXT_H

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "VisibleText.h"

namespace ispctl {

/// Any bytes as a JSON string: valid UTF-8 unchanged, else escaped as EscapeBytes does it.
nlohmann::ordered_json JsonString(std::string_view bytes);

/// A document as text with a newline at its end. What could act on a terminal is escaped, and in
/// ASCII every character outside it.
std::string JsonDocument(const nlohmann::ordered_json &document, Charset charset);

} // namespace ispctl

#endif
