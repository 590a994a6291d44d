#include "JsonEvents.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include "ResultInfo.h"

namespace ispctl {
namespace {

using Json = nlohmann::ordered_json;

// Someone may view the raw JSON on a terminal, so characters that act on a terminal are escaped as
// well.
std::string EscapedLine(const std::string &line) {
    std::string escaped;
    for (std::string_view rest = line; !rest.empty();) {
        const FirstCharacter first = DecodeFirst(rest);
        const std::size_t length = std::max<std::size_t>(first.length, 1);
        if (first.length == 0 || !IsControl(first.value)) {
            escaped += rest.substr(0, length);
        } else if (first.value < 0x10000) {
            escaped += fmt::format("\\u{:04x}", static_cast<unsigned>(first.value));
        } else {
            const auto above = static_cast<unsigned>(first.value) - 0x10000U;
            escaped += fmt::format("\\u{:04x}\\u{:04x}", 0xD800U + (above >> 10U),
                                   0xDC00U + (above & 0x3FFU));
        }
        rest.remove_prefix(length);
    }
    return escaped;
}

void WriteLine(ConsoleStreams &streams, const Json &event) {
    const bool ascii = streams.TheCharset() == Charset::Ascii;
    streams.Write(Stream::Output, EscapedLine(event.dump(-1, ' ', ascii)) + "\n");
}

// Adds how the process ended, unless the library simply returned.
void AddEnd(Json &event, const RunOutcome &outcome) {
    switch (outcome.end) {
    case RunEnd::Exit:
        event["ended"] = "exit";
        event["status"] = outcome.number;
        break;
    case RunEnd::Signal:
        event["ended"] = "signal";
        event["signal"] = NameOfSignal(outcome.number);
        break;
    case RunEnd::Interrupted:
        event["ended"] = "interrupt";
        break;
    case RunEnd::Unheard:
        event["ended"] = "unheard";
        break;
    default:
        return;
    }
    event["percent"] = outcome.percent ? Json(*outcome.percent) : Json(nullptr);
}

} // namespace

JsonEvents::JsonEvents(ConsoleStreams &streams)
    : m_streams(streams),
      m_console([this](std::string_view text) { WriteText("console", EscapeBytes(text)); }) {}

void JsonEvents::WriteText(const char *event, const EscapedText &text) {
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
    m_console.FlushCompleteCharacters();
}

void JsonEvents::OnEnd(const RunOutcome &outcome) {
    m_console.EmitAll();
    Json event{{"event", "result"}, {"code", nullptr}, {"hex", nullptr}, {"name", nullptr}};
    if (outcome.code) {
        const ResultInfo info = DescribeResult(*outcome.code);
        event["code"] = *outcome.code;
        event["hex"] = FormatResultCode(*outcome.code);
        event["name"] = info.name.empty() ? Json(nullptr) : Json(info.name);
    }
    event["meaning"] = MeaningOf(outcome);
    AddEnd(event, outcome);
    if (!outcome.IsSuccess()) {
        event["device"] = outcome.pluginCalled ? "unknown" : "untouched";
    }
    WriteLine(m_streams, event);
}

} // namespace ispctl
