#ifndef ISPCTL_INPUT_SOURCE_H
#define ISPCTL_INPUT_SOURCE_H

#include <cstddef>
#include <string>

#include "Pipe.h"

namespace ispctl {

/// What the user names as input: a file, a device, a pipe, or standard input.
class InputSource {
  public:
    static InputSource Open(const std::string &name);
    static InputSource StandardInput();

    bool IsOpen() const {
        return m_number >= 0;
    }
    /// Whether a named pipe was left because nobody opened it for writing.
    bool LacksWriter() const;

    /// Waits for bytes; a named pipe that nobody opens for writing soon has its end.
    /// RETURNS their count, 0 at the end, -1 with errno.
    long Read(char *buffer, std::size_t size);

  private:
    InputSource(Descriptor owned, int number);
    int Poll(int milliseconds) const;
    bool MayGetWriter();

    Descriptor m_owned; ///< not that of standard input
    int m_number;
    bool m_awaitsWriter = false;
    int m_waitedMs = 0;
};

} // namespace ispctl

#endif
