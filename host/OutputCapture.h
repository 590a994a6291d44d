#ifndef ISPCTL_OUTPUT_CAPTURE_H
#define ISPCTL_OUTPUT_CAPTURE_H

#include <array>
#include <functional>
#include <string_view>

#include "ConsoleStreams.h"

namespace ispctl {

/// While it lives, everything that this process writes to descriptors 1 and 2 goes into pipes.
///
/// A pipe holds little, and a writer waits when it is full: somebody must wait in WaitForText on
/// another thread and take what has come. Should the process crash, that thread is given the time
/// to show the last words; what then is still in the pipes goes to the real standard error.
class OutputCapture {
  public:
    enum class Ordering {
        OnePipe,  ///< the order of both streams is kept; all text counts as standard output
        TwoPipes, ///< each stream keeps its own order
    };
    using TakeText = std::function<void(Stream, std::string_view)>;

    OutputCapture(const ConsoleStreams &streams, Ordering ordering);
    /// Gives the descriptors back. Text that nobody took is lost.
    ~OutputCapture();
    OutputCapture(const OutputCapture &) = delete;
    OutputCapture &operator=(const OutputCapture &) = delete;

    /// RETURNS whether the pipes could be made; without them nothing is captured.
    bool IsActive() const {
        return m_active;
    }
    /// Gives descriptors 1 and 2 back; what was written before can still be taken.
    void Restore();
    /// Hands over all text that has been written up to now; never waits. One thread at a time.
    void TakeAvailable(const TakeText &take);

    enum class Event { Text, Pause, Stop };
    /// Waits for text to be taken, for a pause of that length, or for StopWaiting.
    /// \param milliseconds  -1: no pause is wanted
    Event WaitForText(int milliseconds);
    void StopWaiting();
    /// The waiting thread has shown everything after Event::Stop.
    void AcknowledgeStop();

  private:
    void CloseAll();

    const ConsoleStreams &m_streams;
    bool m_active = false;
    bool m_taken = false;
    std::array<int, 2> m_readEnds{-1, -1}; ///< standard output (or both), standard error
    /// Kept open, so that no pipe ever comes to its end, even if a plug-in closes its output.
    std::array<int, 2> m_writeEnds{-1, -1};
    std::array<int, 2> m_wake{-1, -1};
};

} // namespace ispctl

#endif
