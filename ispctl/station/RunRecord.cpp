#include "station/RunRecord.h"

#include <cmath>
#include <unistd.h>

#include "ResultInfo.h"
#include "UtcTime.h"
#include "VisibleText.h"

namespace ispctl {
namespace {

Json Tags(const std::vector<Tag> &tags) {
    Json object = Json::object();
    for (const auto &[key, value] : tags) {
        object[key] = value;
    }
    return object;
}

Json CommandOf(const std::vector<std::string> &arguments) {
    Json command = Json::array({"ispctl"});
    for (const std::string &argument : arguments) {
        command.push_back(JsonString(argument));
    }
    return command;
}

} // namespace

RunRecord::RunRecord(const StationOptions &options, const std::string &runId,
                     const std::vector<std::string> &arguments)
    : m_options(options), m_record{{"run", runId},
                                   {"pid", ::getpid()},
                                   {"time", UtcTime()},
                                   {"duration_s", 0.0},
                                   {"status", nullptr},
                                   {"code", nullptr},
                                   {"hex", nullptr},
                                   {"name", nullptr},
                                   {"meaning", nullptr},
                                   {"source", "ispctl"},
                                   {"stage", nullptr},
                                   {"percent", nullptr},
                                   {"tags", Json(Tags(options.tags))},
                                   {"argv", Json(CommandOf(arguments))},
                                   {"library", nullptr},
                                   {"files", Json::array()},
                                   {"backup", Json::array()}} {}

bool RunRecord::Open(std::string &error) {
    m_isOpen = !m_options.file.empty() && m_file.Open(m_options.file, error);
    return m_isOpen || m_options.file.empty();
}

void RunRecord::SetLibrary(const std::string &library) {
    m_record["library"] = JsonString(library);
}

void RunRecord::SetFiles(Json files) {
    m_record["files"] = std::move(files);
}

bool RunRecord::FinishUncalled(ExitStatus status, std::string_view stage, const std::string &reason,
                               std::string &error) {
    m_record["status"] = static_cast<int>(status);
    m_record["stage"] = stage;
    m_record["meaning"] = JsonString(reason);
    return Append(error);
}

bool RunRecord::Finish(const RunOutcome &outcome, ExitStatus status, std::string &error) {
    m_record["status"] = static_cast<int>(status);
    if (outcome.code) {
        const std::string_view name = NameOfCode(outcome);
        m_record["code"] = *outcome.code;
        m_record["hex"] = FormatResultCode(*outcome.code);
        m_record["name"] = StringOrNull(name);
    }
    m_record["meaning"] = JsonString(MeaningOf(outcome));
    m_record["source"] = SourceOf(outcome);
    m_record["stage"] = StageOf(outcome);
    m_record["percent"] = outcome.percent ? Json(*outcome.percent) : Json(nullptr);
    for (const std::string &backup : outcome.backups) {
        m_record["backup"].push_back(Json::parse(backup));
    }
    return Append(error);
}

bool RunRecord::Append(std::string &error) {
    if (!m_isOpen) {
        return true;
    }
    m_isOpen = false; // one record per run, whatever fails afterwards
    const std::chrono::duration<double> duration = std::chrono::steady_clock::now() - m_start;
    m_record["duration_s"] = std::round(duration.count() * 1000) / 1000;
    // In ASCII: a file lives longer than the environment in which it was written.
    return m_file.Append(JsonLine(m_record, Charset::Ascii), error);
}

} // namespace ispctl
