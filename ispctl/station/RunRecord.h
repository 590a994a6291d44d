#ifndef ISPCTL_STATION_RUN_RECORD_H
#define ISPCTL_STATION_RUN_RECORD_H

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "JsonText.h"
#include "RunOutcome.h"
#include "station/StationFile.h"
#include "station/StationOptions.h"

namespace ispctl {

/// What the station file says of one run. docs/ispctl-events.schema.json has the keys.
class RunRecord {
  public:
    /// \param arguments  of this program
    RunRecord(const StationOptions &options, const std::string &runId,
              const std::vector<std::string> &arguments);

    /// RETURNS false if records are wanted and the file cannot be opened, with the reason in error.
    bool Open(std::string &error);
    void SetLibrary(const std::string &library);
    /// \param files  array of RunFileJson
    void SetFiles(Json files);
    const Json &Files() const {
        return m_record["files"];
    }

    /// Appends the record of a run that did not call the library, or did. Nothing is written if
    /// no record is wanted. RETURNS false on failure, with the reason in error.
    bool FinishUncalled(ExitStatus status, std::string_view stage, const std::string &reason,
                        std::string &error);
    bool Finish(const RunOutcome &outcome, ExitStatus status, std::string &error);

  private:
    bool Append(std::string &error);

    const StationOptions &m_options;
    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    StationFile m_file;
    bool m_isOpen = false;
    Json m_record;
};

} // namespace ispctl

#endif
