#ifndef ISPCTL_STATION_STATION_FILE_H
#define ISPCTL_STATION_STATION_FILE_H

#include <string>
#include <string_view>

#include "Pipe.h"

namespace ispctl {

/// A file to which several processes append lines. Each line is one write under an advisory lock
/// and is there completely or not at all, also if a process is killed or the disk is full.
class StationFile {
  public:
    /// Opens the file, or creates it. RETURNS false on failure, with the reason in error.
    bool Open(const std::string &file, std::string &error);
    /// Appends a line with its newline. Text that a killed writer has left without a newline
    /// becomes a line of its own. RETURNS false on failure, with the reason in error.
    bool Append(std::string_view line, std::string &error) const;

  private:
    bool EndsInsideLine() const;

    std::string m_name;
    Descriptor m_descriptor;
    bool m_isReadable = true;
};

} // namespace ispctl

#endif
