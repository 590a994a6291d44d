#include "JsonEvents.h"

#include <algorithm>
#include <fmt/format.h>

#include "JsonText.h"
#include "ResultInfo.h"
#include "line/FindingJson.h"

namespace ispctl {
namespace {

void WriteLine(ConsoleStreams &streams, const Json &event) {
    streams.Write(Stream::Output, JsonLine(event, streams.TheCharset()));
}

/// How the process ended, if it did not return by itself.
void AddEnd(Json &event, const RunOutcome &outcome) {
    switch (outcome.end) {
    case RunEnd::Exit:
        event["ended"] = "exit";
        event["exit_status"] = outcome.number;
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
        break;
    }
}

/// The keys that every result event has, in their order.
Json ResultEvent(ExitStatus status, std::string_view source, std::string_view stage,
                 std::string_view run) {
    Json event{{"event", "result"}, {"status", static_cast<int>(status)},
               {"code", nullptr},   {"hex", nullptr},
               {"name", nullptr},   {"meaning", nullptr},
               {"source", source},  {"stage", stage},
               {"percent", nullptr}};
    if (!run.empty()) {
        event["run"] = run;
    }
    return event;
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

void JsonEvents::OnEnd(const RunOutcome &outcome, ExitStatus status) {
    m_console.EmitAll();
    Json event = ResultEvent(status, SourceOf(outcome), StageOf(outcome), outcome.run);
    if (outcome.code) {
        const std::string_view name = NameOfCode(outcome);
        event["code"] = *outcome.code;
        event["hex"] = FormatResultCode(*outcome.code);
        event["name"] = name.empty() ? Json(nullptr) : Json(name);
    }
    event["meaning"] = JsonString(MeaningOf(outcome));
    if (outcome.percent) {
        event["percent"] = *outcome.percent;
    }
    AddEnd(event, outcome);
    if (!outcome.IsSuccess()) {
        event["device"] =
            outcome.pluginCalled && !outcome.deviceUntouched ? "unknown" : "untouched";
        event["advice"] = Json::array();
        for (const std::string &line : AdviceAfter(outcome)) {
            event["advice"].push_back(JsonString(line));
        }
    }
    event["findings"] = FindingsJson(outcome.findings);
    WriteLine(m_streams, event);
}

void JsonEvents::WriteNotCalled(ConsoleStreams &streams, ExitStatus status, std::string_view stage,
                                std::string_view reason, const std::vector<Finding> &findings,
                                std::string_view run) {
    streams.Write(Stream::Output,
                  NotCalled(status, stage, reason, findings, streams.TheCharset(), run));
}

std::string JsonEvents::NotCalled(ExitStatus status, std::string_view stage,
                                  std::string_view reason, const std::vector<Finding> &findings,
                                  Charset charset, std::string_view run) {
    Json event = ResultEvent(status, "ispctl", stage, run);
    event["meaning"] = JsonString(reason);
    event["device"] = stage == "call" ? "unknown" : "untouched";
    event["findings"] = FindingsJson(findings);
    return JsonLine(event, charset);
}

} // namespace ispctl
