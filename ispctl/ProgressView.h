#ifndef ISPCTL_PROGRESS_VIEW_H
#define ISPCTL_PROGRESS_VIEW_H

#include <string>
#include <string_view>

#include "ConsoleStreams.h"
#include "RunObserver.h"

namespace ispctl {

/// Shows a run to a person. Messages and the library's text go to standard output, where a caller
/// may capture them; progress and the result message go to standard error. Progress is a bar on a
/// terminal, otherwise a line per 10 %.
class ProgressView : public RunObserver {
  public:
    /// \param verbatim  keep the library's colours even if the terminal has none
    explicit ProgressView(ConsoleStreams &streams, bool verbatim = false);

    void OnProgress(int percent) override;
    void OnMessage(std::wstring_view text) override;
    void OnConsole(Stream stream, std::string_view bytes) override;
    void OnEnd(const RunOutcome &outcome, ExitStatus status) override;

  private:
    static constexpr int kNone = -1;

    void DrawBar();
    void EraseBar();
    void PrintLine(int percent);
    void ShowConsole(Stream stream, std::string_view shown);
    void FinishConsole();

    ConsoleStreams &m_streams;
    VisibleStream m_output;
    VisibleStream m_error;
    bool m_bar;
    bool m_barShown = false;
    bool m_sharedTarget;         ///< both streams go to the same file
    bool m_midLine = false;      ///< the terminal's last line has text and no newline
    bool m_errorMidLine = false; ///< the same for the output on standard error
    int m_percent = kNone;       ///< last value reported
    int m_tenth = kNone;         ///< last tenth printed as a line
};

} // namespace ispctl

#endif
