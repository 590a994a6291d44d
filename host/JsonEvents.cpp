#include "JsonEvents.h"

#include <nlohmann/json.hpp>

#include "ResultWords.h"

namespace ispctl {
namespace {

using Json = nlohmann::ordered_json;

void WriteLine(const ConsoleStreams &streams, const Json &event) {
    streams.Write(Stream::Output, event.dump() + "\n");
}

} // namespace

JsonEvents::JsonEvents(const ConsoleStreams &streams)
    : m_streams(streams),
      m_console([this](std::string_view text) { WriteText("console", EscapeBytes(text)); }) {}

void JsonEvents::WriteText(const char *event, const EscapedText &text) const {
    Json line{{"event", event}, {"text", text.text}};
    if (text.escaped) {
        line["escaped"] = true;
    }
    WriteLine(m_streams, line);
}

void JsonEvents::OnProgress(int percent) {
    m_console.EmitAll();
    WriteLine(m_streams, {{"event", "progress"}, {"percent", percent}});
}

void JsonEvents::OnMessage(std::wstring_view text) {
    m_console.EmitAll();
    WriteText("message", EscapeWide(text));
}

void JsonEvents::OnConsole(Stream, std::string_view bytes) {
    m_console.Add(bytes);
}

void JsonEvents::OnPause() {
    m_console.EmitFinished();
}

void JsonEvents::OnResult(int code) {
    m_console.EmitAll();
    const ResultWords words = WordsOfResult(code);
    const Json name = words.name.empty() ? Json(nullptr) : Json(words.name);
    WriteLine(m_streams, {{"event", "result"},
                          {"code", code},
                          {"hex", HexOfResult(code)},
                          {"name", name},
                          {"meaning", words.meaning}});
}

} // namespace ispctl
