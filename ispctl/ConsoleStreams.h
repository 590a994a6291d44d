#ifndef ISPCTL_CONSOLE_STREAMS_H
#define ISPCTL_CONSOLE_STREAMS_H

#include <array>
#include <string>
#include <string_view>

#include "ExitStatus.h"
#include "RunObserver.h"
#include "VisibleText.h"

namespace ispctl {

/// Opens the null device for each standard descriptor that is closed, so that no file of ours gets
/// its number. RETURNS whether all three are open now.
bool EnsureStandardDescriptors();

/// Writes all bytes, however long the reader takes. RETURNS 0, or the errno of the failure.
int WriteAll(int descriptor, std::string_view bytes) noexcept;

/// Standard output and standard error: the one way to the user. Nothing written is lost silently.
class ConsoleStreams {
  public:
    ConsoleStreams();

    /// Writes bytes as they are; only for what this program itself has formed.
    void Write(Stream stream, std::string_view bytes) noexcept;
    /// Writes a text with lines, made visible.
    void Print(Stream stream, std::string_view text);
    /// Writes "ispctl: ", the text made visible, and a line end to standard error.
    void PrintMessage(std::string_view text);

    /// RETURNS whether everything was written up to now.
    bool IsComplete() const {
        return m_errors[0] == 0 && m_errors[1] == 0;
    }
    /// What is wrong with the streams in words; empty where nothing is.
    std::string Problem() const;
    /// Ends the output: what could not be written is said on the stream that still works.
    /// \param quiet  standard output carries something else
    /// RETURNS the status, or kExitFailedRun instead of success where something is missing.
    ExitStatus Finish(ExitStatus status, bool quiet);

    /// RETURNS whether a progress bar can be drawn there.
    static bool IsTerminal(Stream stream);
    /// RETURNS whether both lead to the same file, pipe or terminal.
    static bool ShareOneTarget();

    Charset TheCharset() const {
        return m_charset;
    }

  private:
    Charset m_charset;
    std::array<int, 2> m_errors{0, 0}; ///< of each stream; the first one
};

} // namespace ispctl

#endif
