#ifndef ISPCTL_CHILD_PROCESS_H
#define ISPCTL_CHILD_PROCESS_H

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

#include "Pipe.h"
#include "RunObserver.h"
#include "RunSignals.h"
#include "RunWire.h"

namespace ispctl {

/// The first argument of the process that the library runs in.
inline constexpr std::string_view kLibraryProcess = "library-process";

/// The process that the library runs in: this program once more, with its standard output and
/// standard error in pipes and a pipe for frames.
class ChildProcess {
  public:
    enum class Ordering {
        OnePipe,  ///< the order of both streams is kept; all text counts as standard output
        TwoPipes, ///< each stream keeps its own order
    };
    using TextHandler = std::function<void(Stream, std::string_view)>;

    /// \param arguments  of this program; the process gets the same ones
    /// Throws std::system_error where a pipe or the process cannot be made.
    ChildProcess(const std::vector<std::string> &arguments, Ordering ordering,
                 RunSignals::Stop stop);
    /// Lets a process that waits for an answer end, and waits for it.
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    /// Waits for frames, text, signals or the end. \param milliseconds  -1: as long as it takes
    /// RETURNS whether something came.
    bool Wait(int milliseconds);
    /// Hands over the text that was written up to now; never waits. RETURNS whether there was any.
    /// Throws std::system_error where a stream cannot be read; it is closed then.
    bool DrainAvailable(const TextHandler &take);
    /// Throws std::exception where frames cannot be read or understood.
    std::optional<Frame> TakeFrame();
    /// After this the process gets no more answers and waits for none.
    void StopListening();
    /// Lets the process go on after a frame.
    void Answer();
    std::vector<int> TakeSignals() {
        return m_signals.Take();
    }
    /// RETURNS the status of waitpid once the process has ended.
    std::optional<int> Status();

  private:
    long ReadText(Descriptor &stream, char *buffer, std::size_t size);
    void Start(const std::vector<std::string> &arguments, const Pipe &output, const Pipe &error,
               const Pipe &events, const Pipe &answers);

    RunSignals m_signals;
    std::array<Descriptor, 2> m_text; ///< standard output (or both), standard error
    Descriptor m_events;
    Descriptor m_answers;
    FrameReader m_frames;
    pid_t m_process = 0;
    std::optional<int> m_status;
};

} // namespace ispctl

#endif
