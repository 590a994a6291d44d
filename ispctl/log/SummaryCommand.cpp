#include "log/SummaryCommand.h"

#include <fmt/format.h>

#include "log/LogLines.h"
#include "log/SummaryText.h"

namespace ispctl {
namespace {

// A file that is no log has nothing but broken lines.
constexpr std::size_t kShownBrokenLines = 20;

void ShowBrokenLines(const std::vector<BrokenLine> &lines, ConsoleStreams &streams) {
    for (std::size_t i = 0; i < lines.size() && i < kShownBrokenLines; ++i) {
        streams.PrintMessage(fmt::format("{}, line {}: {}; the line is not counted", lines[i].file,
                                         lines[i].line, lines[i].reason));
    }
    if (lines.size() > kShownBrokenLines) {
        streams.PrintMessage(
            fmt::format("{} more lines cannot be understood", lines.size() - kShownBrokenLines));
    }
}

Json BrokenJson(const std::vector<BrokenLine> &lines) {
    Json broken = Json::array();
    for (const BrokenLine &line : lines) {
        broken.push_back(
            {{"file", JsonString(line.file)}, {"line", line.line}, {"message", line.reason}});
    }
    return broken;
}

} // namespace

ExitStatus SummaryCommand(const SummaryOptions &options, Session &session) {
    LogReader reader;
    ExitStatus status = kExitSuccess;
    Json unreadable = Json::array();
    for (const std::string &file : options.files) {
        std::string error;
        if (!reader.Read(file, error)) {
            status = session.Fail(kExitFileError, error);
            unreadable.push_back(JsonString(error));
        }
    }
    const LogSummary summary = Summarise(reader.Entries());
    if (options.json) {
        Json document = SummaryJson(summary);
        document["broken_lines"] = BrokenJson(reader.BrokenLines());
        document["unreadable"] = unreadable;
        session.streams.Write(Stream::Output, JsonDocument(document, Charset::Ascii));
    } else if (unreadable.size() < options.files.size()) {
        // Of files that nobody could read "0 failed" would be good news.
        session.streams.Write(Stream::Output, SummaryText(summary, session.streams.TheCharset()));
    }
    ShowBrokenLines(reader.BrokenLines(), session.streams);
    const bool isBroken = !reader.BrokenLines().empty();
    return status == kExitSuccess && isBroken ? kExitFailed : status;
}

} // namespace ispctl
