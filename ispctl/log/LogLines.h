#ifndef ISPCTL_LOG_LOG_LINES_H
#define ISPCTL_LOG_LOG_LINES_H

#include <map>
#include <string>
#include <vector>

#include "log/LogEntry.h"

namespace ispctl {

/// Reads station files and logs of `ispctl run`, line by line; a file may hold both. Lines of
/// several runs may be mixed. Each record is one run; a run that has a record and events is one
/// run.
class LogReader {
  public:
    /// Reads a regular file. RETURNS false if it cannot be read, with the reason in error.
    bool Read(const std::string &file, std::string &error);

    /// The runs in the order of their ends, then those that have none.
    std::vector<LogEntry> Entries() const;
    const std::vector<BrokenLine> &BrokenLines() const {
        return m_broken;
    }

  private:
    void ReadLine(const std::string &line);
    void ReadRecord(const std::string &line);
    void ReadEvent(const std::string &line);
    LogEntry &OpenRun(const std::string &run, const std::string &time);
    void Add(LogEntry entry);
    void Break(const std::string &reason);

    std::string m_file;
    std::size_t m_line = 0;
    std::vector<LogEntry> m_entries;
    std::map<std::string, std::size_t> m_known; ///< run ids; index in m_entries
    std::map<std::string, LogEntry> m_open;     ///< begun in a log, without a result
    std::vector<BrokenLine> m_broken;
};

} // namespace ispctl

#endif
