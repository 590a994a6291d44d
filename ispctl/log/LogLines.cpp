#include "log/LogLines.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <sstream>
#include <sys/stat.h>
#include <utility>

#include "Pipe.h"
#include "Utf8.h"

namespace ispctl {
namespace {

using Json = nlohmann::json;

// Far more than a record has; a longer line is no record, and is skipped. UNITS: bytes.
constexpr std::size_t kMaxLine = 1024 * 1024;
constexpr const char *kSuccess = "0x0 success";

Descriptor OpenFile(const std::string &file, std::string &error) {
    Descriptor source(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)); // NOLINT(*-vararg)
    struct stat status {};
    if (!source.IsOpen() || ::fstat(source.Number(), &status) != 0) {
        error = fmt::format("cannot read {}: {}", file, std::strerror(errno));
    } else if (!S_ISREG(status.st_mode)) {
        error = fmt::format("{} is not a file; name a station file or a log of ispctl run", file);
    }
    return source;
}

std::string TextOf(const Json &object, const char *key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : "";
}

/// RETURNS nothing if it is no integer or one that no record of a run has.
std::optional<int> NumberOf(const Json &value) {
    const bool inRange =
        value.is_number_unsigned()
            ? std::in_range<int>(value.get<std::uint64_t>())
            : value.is_number_integer() && std::in_range<int>(value.get<std::int64_t>());
    return inRange ? std::optional(value.get<int>()) : std::nullopt;
}

/// What is nested deeper than any record becomes a value of no use, because whatever walks over
/// nested values calls itself.
Json ParseRecord(const std::string &line) {
    constexpr int kMaxDepth = 8;
    const auto isShallow = [](int depth, Json::parse_event_t, const Json &) {
        return depth <= kMaxDepth;
    };
    return Json::parse(line, isShallow, false);
}

bool AreTags(const Json &value) {
    return value.is_object() &&
           std::all_of(value.begin(), value.end(), [](const Json &tag) { return tag.is_string(); });
}

/// RETURNS why an object is no record of a run; empty if it is one.
std::string DamageOf(const Json &record) {
    if (record.is_discarded()) {
        return "incomplete or damaged: it is not JSON";
    }
    if (!NumberOf(record.value("status", Json()))) {
        return "not a record of a run: it has no status";
    }
    if (const Json code = record.value("code", Json()); !code.is_null() && !NumberOf(code)) {
        return "not a record of a run: its code is no result code";
    }
    return AreTags(record.value("tags", Json::object()))
               ? ""
               : "not a record of a run: its tags are not text";
}

bool IsTime(const std::string &text) {
    constexpr std::size_t kLength = 24;
    return text.size() == kLength && text[10] == 'T' && text.back() == 'Z';
}

/// "8f3a.../4711" gives the run id; empty if it is none.
std::string RunOf(const std::string &text) {
    constexpr std::size_t kDigits = 16;
    const std::size_t slash = text.find('/');
    const bool isId = slash == kDigits && text.find_first_not_of("0123456789abcdef") == slash;
    return isId ? text.substr(0, slash) : "";
}

/// The code at the beginning of a result, such as "0x4003 the firmware ...".
std::optional<int> CodeIn(const std::string &result) {
    if (!result.starts_with("0x")) {
        return std::nullopt;
    }
    const unsigned long code = std::strtoul(result.c_str(), nullptr, 16);
    return std::in_range<std::uint32_t>(code) ? std::optional(static_cast<int>(code))
                                              : std::nullopt;
}

/// Without the state of the device, which the result of a failed run ends with.
std::string MeaningIn(const std::string &result) {
    const std::size_t start = result.starts_with("0x") ? result.find(' ') + 1 : 0;
    return result.substr(start, result.rfind("; ") - start);
}

} // namespace

bool LogReader::Read(const std::string &file, std::string &error) {
    const Descriptor source = OpenFile(file, error);
    if (!error.empty()) {
        return false;
    }
    m_file = file;
    m_line = 0;
    std::string line;
    std::string buffer(1U << 16U, '\0');
    long count = 0;
    while ((count = ReadSome(source.Number(), buffer.data(), buffer.size())) > 0) {
        for (std::string_view rest(buffer.data(), static_cast<std::size_t>(count));
             !rest.empty();) {
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            line += rest.substr(0, std::min(end, kMaxLine + 1 - line.size()));
            if (end < rest.size()) {
                ReadLine(line);
                line.clear();
            }
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    if (!line.empty()) {
        ReadLine(line);
    }
    if (count < 0) {
        error = fmt::format("cannot read {}: {}", file, std::strerror(errno));
    }
    return count == 0;
}

std::vector<LogEntry> LogReader::Entries() const {
    std::vector<LogEntry> entries = m_entries;
    for (const auto &[run, entry] : m_open) {
        entries.push_back(entry);
    }
    return entries;
}

void LogReader::Break(const std::string &reason) {
    m_broken.push_back({m_file, m_line, reason});
}

void LogReader::ReadLine(const std::string &line) {
    ++m_line;
    if (line.empty()) {
        return;
    }
    if (line.size() > kMaxLine) {
        Break(fmt::format("the line is longer than {} bytes", kMaxLine));
    } else if (line.front() == '{') {
        ReadRecord(line);
    } else {
        ReadEvent(line);
    }
}

void LogReader::ReadRecord(const std::string &line) {
    const Json record = ParseRecord(line);
    if (const std::string damage = DamageOf(record); !damage.empty()) {
        Break(damage);
        return;
    }
    const auto status = NumberOf(record["status"]);
    LogEntry entry{TextOf(record, "run"),
                   TextOf(record, "time"),
                   *status == 0,
                   status,
                   NumberOf(record.value("code", Json())),
                   TextOf(record, "source"),
                   TextOf(record, "stage"),
                   TextOf(record, "meaning"),
                   {}};
    const Json tags = record.value("tags", Json::object());
    for (const auto &[key, value] : tags.items()) {
        entry.tags.emplace_back(key, value.get<std::string>());
    }
    Add(std::move(entry));
}

void LogReader::Add(LogEntry entry) {
    m_open.erase(entry.run);
    const auto known = m_known.find(entry.run);
    if (known != m_known.end() && !m_entries[known->second].status) {
        m_entries[known->second] = std::move(entry); // the record says more than the events
        return;
    }
    if (!entry.run.empty()) {
        m_known.emplace(entry.run, m_entries.size());
    }
    m_entries.push_back(std::move(entry));
}

LogEntry &LogReader::OpenRun(const std::string &run, const std::string &time) {
    const LogEntry begun{
        run, time, false, {}, {}, "", "", "no result: the run still goes on, or was killed", {}};
    return m_open.emplace(run, begun).first->second;
}

void LogReader::ReadEvent(const std::string &line) {
    std::istringstream words(line);
    std::string time;
    std::string identity;
    std::string kind;
    words >> time >> identity >> kind >> std::ws;
    const std::string run = RunOf(identity);
    if (!IsTime(time) || run.empty()) {
        Break("neither a record of a station file nor an event of a log with run ids");
        return;
    }
    std::string text;
    std::getline(words, text);
    if (m_known.contains(run)) {
        return; // what is reported after the result, or has a record
    }
    LogEntry &entry = OpenRun(run, time);
    const std::size_t equals = text.find('=');
    if (kind == "tag" && equals != std::string::npos) {
        entry.tags.emplace_back(text.substr(0, equals), text.substr(equals + 1));
    } else if (kind == "result") {
        entry.passed = text == kSuccess;
        entry.code = CodeIn(text);
        entry.meaning = MeaningIn(text);
        Add(LogEntry(entry));
    }
}

} // namespace ispctl
