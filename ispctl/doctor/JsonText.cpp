#include "doctor/JsonText.h"

#include "Utf8.h"

namespace ispctl::doctor {

void SetText(Json &object, const char *key, const std::string &bytes) {
    const EscapedText text = EscapeBytes(bytes);
    object[key] = text.text;
    if (text.escaped) {
        object["escaped"].push_back(key);
    }
}

void WriteDocument(const Json &document, ConsoleStreams &streams) {
    streams.Write(Stream::Output, document.dump(2, ' ', true) + "\n");
}

} // namespace ispctl::doctor
