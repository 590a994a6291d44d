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

/// The first argument of the process in which the library runs.
inline constexpr std::string_view kLibraryProcess = "library-process";

/// The process in which the library runs: a second instance of this program, with pipes for its
/// standard output, its standard error and its frames. Separate, because a plug-in may exit, crash
/// or hang.
class ChildProcess {
  public:
    enum class Ordering {
        OnePipe,  ///< keeps the order across both streams; all text is reported as standard output
        TwoPipes, ///< keeps the order within each stream only
    };
    using TextHandler = std::function<void(Stream, std::string_view)>;

    /// \param arguments  of this program; the process gets the same ones
    /// Throws std::system_error if a pipe or the process cannot be created.
    ChildProcess(const std::vector<std::string> &arguments, Ordering ordering,
                 RunSignals::Stop stop);
    /// Closes the answer pipe, so that a process waiting for an answer ends, and waits for its end.
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    /// Waits for frames, text, signals or the end of the process.
    /// \param milliseconds  -1: no timeout
    /// RETURNS false on a timeout.
    bool Wait(int milliseconds);
    /// Passes the text written so far to handle; never waits. RETURNS whether there was any.
    /// Throws std::system_error if a stream cannot be read; that stream is then closed.
    bool DrainAvailable(const TextHandler &handle);
    /// RETURNS the next complete frame, or nothing if none is there yet.
    /// Throws std::exception if frames cannot be read or decoded.
    std::optional<Frame> NextFrame();
    /// Closes both frame pipes: the process gets no more answers and no longer waits for any.
    void StopListening();
    /// Lets the process continue after a frame.
    void Answer();
    /// RETURNS the stop signals received since the last call.
    std::vector<int> DrainSignals() {
        return m_signals.Drain();
    }
    /// Ends the process at once. It still has to be waited for.
    void Kill() const;
    /// RETURNS the status from waitpid once the process has ended; nothing before.
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
