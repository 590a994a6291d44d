#include "RunLog.h"

#include <chrono>
#include <ctime>
#include <fmt/format.h>

#include "ResultWords.h"
#include "Utf8.h"

namespace ispctl {
namespace {

std::string Now() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(floor<std::chrono::seconds>(now));
    const auto part = duration_cast<milliseconds>(now - floor<std::chrono::seconds>(now));
    std::tm time{};
    ::gmtime_r(&seconds, &time);
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z", time.tm_year + 1900,
                       time.tm_mon + 1, time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec,
                       part.count());
}

// One event stays one line, and a log never colours a terminal.
std::string Printable(std::string_view bytes) {
    if (!bytes.empty() && bytes.back() == '\n') {
        bytes.remove_suffix(1);
    }
    std::string line;
    for (const char character : EscapeBytes(bytes).text) {
        const auto byte = static_cast<unsigned char>(character);
        line += byte < 0x20U || byte == 0x7FU ? fmt::format("\\x{:02X}", byte)
                                              : std::string(1, character);
    }
    return line;
}

} // namespace

RunLog::RunLog(const std::filesystem::path &file)
    : m_file(file, std::ios::app),
      m_output([this](std::string_view text) { Write("console", text); }),
      m_error([this](std::string_view text) { Write("console", text); }) {}

void RunLog::Write(std::string_view kind, std::string_view text) {
    m_file << fmt::format("{} {:<8} {}\n", Now(), kind, Printable(text)) << std::flush;
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
    m_output.EmitFinished();
    m_error.EmitFinished();
}

void RunLog::OnResult(int code) {
    FinishConsole();
    Write("result", fmt::format("{} {}", HexOfResult(code), WordsOfResult(code).meaning));
}

} // namespace ispctl
