#ifndef ISPCTL_CONSOLE_STREAMS_H
#define ISPCTL_CONSOLE_STREAMS_H

#include <string_view>

#include "RunObserver.h"

namespace ispctl {

/// Opens the null device for each standard descriptor that is closed, so that no file of ours gets
/// its number.
void EnsureStandardDescriptors();

/// Writes all bytes, or gives up silently: a run goes on when nobody reads what it says.
void WriteAll(int descriptor, std::string_view bytes) noexcept;

/// Standard output and standard error as the console was given them. Descriptors 1 and 2 may be
/// taken over meanwhile; what is written here still reaches the user.
class ConsoleStreams {
  public:
    ConsoleStreams();
    ~ConsoleStreams();
    ConsoleStreams(const ConsoleStreams &) = delete;
    ConsoleStreams &operator=(const ConsoleStreams &) = delete;

    void Write(Stream stream, std::string_view bytes) const noexcept {
        WriteAll(Descriptor(stream), bytes);
    }
    int Descriptor(Stream stream) const {
        return stream == Stream::Output ? m_output : m_error;
    }
    /// RETURNS whether a progress bar can be drawn there.
    bool IsTerminal(Stream stream) const;
    /// RETURNS whether both lead to the same file, pipe or terminal.
    bool AreOne() const;

  private:
    int m_output;
    int m_error;
};

} // namespace ispctl

#endif
