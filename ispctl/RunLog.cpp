#include "RunLog.h"

#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <system_error>
#include <unistd.h>

#include "ConsoleStreams.h"
#include "ResultInfo.h"
#include "UtcTime.h"
#include "Utf8.h"
#include "VisibleText.h"

namespace ispctl {
namespace {

// One line per event, and no control characters that would act on the terminal of a reader.
std::string Printable(std::string_view bytes) {
    if (!bytes.empty() && bytes.back() == '\n') {
        bytes.remove_suffix(1);
    }
    return Visible(EscapeBytes(bytes).text, Layout::OneLine, Charset::Utf8);
}

// O_NONBLOCK only for open, which would otherwise wait for a reader if the file is a pipe.
Descriptor OpenLog(const std::string &file) {
    Descriptor log(::open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK,
                          0666)); // NOLINT(*-vararg)
    if (!log.IsOpen()) {
        throw std::system_error(errno, std::generic_category(),
                                fmt::format("cannot write the log {}", file));
    }
    ::fcntl(log.Number(), F_SETFL, O_APPEND);
    return log;
}

} // namespace

RunLog::RunLog(const std::string &file, const std::string &runId)
    : m_run(fmt::format("{}/{}", runId, ::getpid())), m_file(OpenLog(file)),
      m_output([this](std::string_view text) { Write("console", text); }),
      m_error([this](std::string_view text) { Write("console", text); }) {}

void RunLog::Write(std::string_view kind, std::string_view text) {
    const int error = WriteAll(
        m_file.Number(), fmt::format("{} {} {:<8} {}\n", UtcTime(), m_run, kind, Printable(text)));
    m_errno = m_errno != 0 ? m_errno : error;
}

void RunLog::FinishConsole() {
    m_output.EmitAll();
    m_error.EmitAll();
}

void RunLog::OnProgress(int percent) {
    FinishConsole();
    Write("progress", std::to_string(percent));
}

void RunLog::OnMessage(std::wstring_view text) {
    FinishConsole();
    Write("message", EscapeWide(text).text);
}

void RunLog::OnConsole(Stream stream, std::string_view bytes) {
    (stream == Stream::Output ? m_output : m_error).Add(bytes);
}

void RunLog::OnPause() {
    m_output.FlushCompleteCharacters();
    m_error.FlushCompleteCharacters();
}

void RunLog::OnNotice(std::string_view text) {
    FinishConsole();
    Write("ispctl", text);
}

void RunLog::OnEnd(const RunOutcome &outcome, ExitStatus) {
    FinishConsole();
    for (const std::string &backup : outcome.backups) {
        Write("backup", backup);
    }
    std::string text = outcome.code ? FormatResultCode(*outcome.code) + " " : "";
    text += MeaningOf(outcome);
    if (!outcome.IsSuccess()) {
        text += fmt::format("; {}", DeviceAfter(outcome));
    }
    Write("result", text);
    for (const std::string &line : AdviceAfter(outcome)) {
        Write("ispctl", line);
    }
}

} // namespace ispctl
