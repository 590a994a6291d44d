#ifndef ISPCTL_CONSOLE_STREAMS_H
#define ISPCTL_CONSOLE_STREAMS_H

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "ExitStatus.h"
#include "RunObserver.h"
#include "VisibleText.h"

namespace ispctl {

/// Opens the null device for each standard descriptor that is closed, so that no file opened later
/// gets its number; standard output stays unwritable. RETURNS whether all three are open now.
bool EnsureStandardDescriptors();

/// Writes all bytes and waits for a slow reader. RETURNS 0, or the errno of the failure.
int WriteAll(int descriptor, std::string_view bytes) noexcept;

/// Standard output and standard error. All output goes through this class, so that a failed write
/// is always reported.
class ConsoleStreams {
  public:
    ConsoleStreams();

    /// Writes bytes unchanged; only for output that this program has composed itself.
    void Write(Stream stream, std::string_view bytes) noexcept;
    /// Passes what is written to standard output to a function instead.
    void DivertOutput(std::function<void(std::string_view)> receiver) {
        m_receiver = std::move(receiver);
    }
    /// Writes text of several lines with control characters made visible.
    void Print(Stream stream, std::string_view text);
    /// Writes "ispctl: ", the text with control characters made visible, and a newline to standard
    /// error: one line, which programs can search, and on a terminal lines of its width.
    void PrintMessage(std::string_view text);

    /// RETURNS whether everything has been written so far.
    bool IsComplete() const {
        return m_errors[0] == 0 && m_errors[1] == 0;
    }
    /// RETURNS a message about the first stream that failed; empty if none did.
    std::string Problem() const;
    /// Ends the output and reports a failed stream on the one that still works.
    /// \param quiet  true: standard output is JSON, so no message may be written to it
    /// RETURNS the status, or kExitFileError instead of success if output is missing.
    ExitStatus Finish(ExitStatus status, bool quiet);

    /// RETURNS whether the stream is a terminal that can erase a line, which a progress bar needs.
    static bool IsTerminal(Stream stream);
    /// RETURNS whether colours can be shown there and the user has not switched them off
    /// (https://no-color.org).
    static bool HasColours(Stream stream);
    /// RETURNS the width of the terminal there, 80 if it is not known. UNITS: columns.
    static int Width(Stream stream);
    /// RETURNS whether both streams go to the same file, pipe or terminal.
    static bool ShareOneTarget();

    Charset TheCharset() const {
        return m_charset;
    }

  private:
    Charset m_charset;
    std::function<void(std::string_view)> m_receiver;
    std::array<int, 2> m_errors{0, 0}; ///< errno of each stream's first failed write; 0: none
};

} // namespace ispctl

#endif
