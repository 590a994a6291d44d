#ifndef ISPCTL_RUN_LOG_H
#define ISPCTL_RUN_LOG_H

#include <string>
#include <string_view>

#include "LineBuffer.h"
#include "Pipe.h"
#include "RunObserver.h"

namespace ispctl {

/// Appends a run to a file, one line per event: time (UTC, milliseconds), run id and process id,
/// kind, text. The text is UTF-8 with control characters made visible.
class RunLog : public RunObserver {
  public:
    /// Throws std::system_error if the file cannot be opened; does not wait for the reader of a
    /// pipe.
    /// \param runId  distinguishes the lines of runs that share the file
    RunLog(const std::string &file, const std::string &runId);

    /// RETURNS 0, or the errno of the first failed write.
    int Error() const {
        return m_errno;
    }
    void Write(std::string_view kind, std::string_view text);

    void OnProgress(int percent) override;
    void OnMessage(std::wstring_view text) override;
    void OnConsole(Stream stream, std::string_view bytes) override;
    void OnPause() override;
    void OnNotice(std::string_view text) override;
    void OnEnd(const RunOutcome &outcome, ExitStatus status) override;

  private:
    void FinishConsole();

    std::string m_run; ///< run id and process id
    Descriptor m_file;
    int m_errno = 0;
    LineBuffer m_output;
    LineBuffer m_error;
};

} // namespace ispctl

#endif
