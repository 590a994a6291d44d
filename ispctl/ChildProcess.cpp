#include "ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "ConsoleStreams.h"
#include "LibraryPaths.h"

extern char **environ;

namespace ispctl {
namespace {

// No pipe holds more than this, so one pass reads all text written before a frame; the limit keeps
// a process that writes without pause from blocking the loop. UNITS: bytes.
constexpr std::size_t kMaxBytesPerPass = 1024 * 1024;

// Blocks the stop signals of this process during its lifetime: their handler must not kill a
// process id that is not known yet or was just reaped.
class SignalsBlocked {
  public:
    SignalsBlocked() {
        const sigset_t set = RunSignals::StopSignals();
        ::sigprocmask(SIG_BLOCK, &set, &m_previous);
    }
    ~SignalsBlocked() {
        ::sigprocmask(SIG_SETMASK, &m_previous, nullptr);
    }
    SignalsBlocked(const SignalsBlocked &) = delete;
    SignalsBlocked &operator=(const SignalsBlocked &) = delete;

  private:
    sigset_t m_previous{};
};

void Check(int error) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category(),
                                "cannot start the library's process");
    }
}

class FileActions {
  public:
    FileActions() {
        Check(::posix_spawn_file_actions_init(&m_actions));
    }
    ~FileActions() {
        ::posix_spawn_file_actions_destroy(&m_actions);
    }
    FileActions(const FileActions &) = delete;
    FileActions &operator=(const FileActions &) = delete;

    void Put(const Descriptor &from, int to) {
        Check(::posix_spawn_file_actions_adddup2(&m_actions, from.Number(), to));
    }
    const posix_spawn_file_actions_t *Get() const {
        return &m_actions;
    }

  private:
    posix_spawn_file_actions_t m_actions{};
};

// The child blocks the stop signals from its start, because a terminal sends them to both processes
// and only ispctl decides. SIGXFSZ is ignored in ispctl only for its own output, so the child gets
// the default action back.
class Attributes {
  public:
    Attributes() {
        Check(::posix_spawnattr_init(&m_attributes));
        const sigset_t blocked = RunSignals::StopSignals();
        sigset_t defaults;
        sigemptyset(&defaults);
        sigaddset(&defaults, SIGXFSZ);
        ::posix_spawnattr_setsigmask(&m_attributes, &blocked);
        ::posix_spawnattr_setsigdefault(&m_attributes, &defaults);
        ::posix_spawnattr_setflags(
            &m_attributes, static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
    }
    ~Attributes() {
        ::posix_spawnattr_destroy(&m_attributes);
    }
    Attributes(const Attributes &) = delete;
    Attributes &operator=(const Attributes &) = delete;

    const posix_spawnattr_t *Get() const {
        return &m_attributes;
    }

  private:
    posix_spawnattr_t m_attributes{};
};

std::vector<char *> ArgvOf(std::vector<std::string> &arguments) {
    std::vector<char *> pointers;
    for (std::string &argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string> &arguments, Ordering ordering,
                           RunSignals::Stop stop)
    : m_signals(stop) {
    const bool twoPipes = ordering == Ordering::TwoPipes;
    Pipe output = Pipe::Make();
    Pipe error = twoPipes ? Pipe::Make() : Pipe();
    Pipe events = Pipe::Make();
    Pipe answers = Pipe::Make();
    for (const Descriptor *end : {&output.readEnd, &error.readEnd, &events.readEnd}) {
        SetNonBlocking(*end);
    }
    Start(arguments, output, twoPipes ? error : output, events, answers);
    m_text = {std::move(output.readEnd), std::move(error.readEnd)};
    m_events = std::move(events.readEnd);
    m_answers = std::move(answers.writeEnd);
}

void ChildProcess::Start(const std::vector<std::string> &arguments, const Pipe &output,
                         const Pipe &error, const Pipe &events, const Pipe &answers) {
    const int send = events.writeEnd.Number();
    const int receive = answers.readEnd.Number();
    std::vector<std::string> argv{"ispctl", std::string(kLibraryProcess), std::to_string(send),
                                  std::to_string(receive)};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    FileActions actions;
    actions.Put(output.writeEnd, STDOUT_FILENO);
    actions.Put(error.writeEnd, STDERR_FILENO);
    const Attributes attributes;
    const std::string file = ExecutableFile().string();
    SetInherited(send, true);
    SetInherited(receive, true);
    const SignalsBlocked blocked;
    Check(::posix_spawn(&m_process, file.c_str(), actions.Get(), attributes.Get(),
                        ArgvOf(argv).data(), environ));
    RunSignals::Watch(m_process);
}

ChildProcess::~ChildProcess() {
    StopListening();
    m_text[0].Close();
    m_text[1].Close();
    int ignored = 0;
    while (!m_status && m_process > 0 && ::waitpid(m_process, &ignored, 0) < 0 && errno == EINTR) {
    }
    RunSignals::Watch(0);
}

bool ChildProcess::Wait(int milliseconds) {
    std::array<pollfd, 4> sources{{{m_signals.WakeDescriptor(), POLLIN, 0},
                                   {m_events.Number(), POLLIN, 0},
                                   {m_text[0].Number(), POLLIN, 0},
                                   {m_text[1].Number(), POLLIN, 0}}};
    return ::poll(sources.data(), sources.size(), milliseconds) != 0;
}

// A stream that has ended or cannot be read is closed, because poll would report it again and
// again.
long ChildProcess::ReadText(Descriptor &stream, char *buffer, std::size_t size) {
    try {
        const long length = ReadAvailable(stream.Number(), buffer, size);
        if (length == 0) {
            stream.Close();
        }
        return length;
    } catch (const std::system_error &) {
        stream.Close();
        throw;
    }
}

bool ChildProcess::DrainAvailable(const TextHandler &handle) {
    std::array<char, 16384> buffer;
    bool any = false;
    for (std::size_t i = 0; i < m_text.size(); ++i) {
        long length = 1;
        for (std::size_t total = 0; m_text[i].IsOpen() && length > 0 && total < kMaxBytesPerPass;
             total += static_cast<std::size_t>(length)) {
            length = ReadText(m_text[i], buffer.data(), buffer.size());
            if (length <= 0) {
                break;
            }
            any = true;
            handle(i == 0 ? Stream::Output : Stream::Error,
                   {buffer.data(), static_cast<std::size_t>(length)});
        }
    }
    return any;
}

std::optional<Frame> ChildProcess::NextFrame() {
    std::array<char, 16384> buffer;
    long length = 1;
    for (std::size_t total = 0; m_events.IsOpen() && length > 0 && total < kMaxBytesPerPass;
         total += buffer.size()) {
        length = ReadAvailable(m_events.Number(), buffer.data(), buffer.size());
        if (length > 0) {
            m_frames.Add({buffer.data(), static_cast<std::size_t>(length)});
        } else if (length == 0) {
            m_events.Close();
        }
    }
    return m_frames.Next();
}

void ChildProcess::StopListening() {
    m_answers.Close();
    m_events.Close();
}

void ChildProcess::Answer() {
    WriteAll(m_answers.Number(), "+");
}

void ChildProcess::Kill() const {
    if (!m_status) {
        ::kill(m_process, SIGKILL);
    }
}

std::optional<int> ChildProcess::Status() {
    const SignalsBlocked blocked;
    int status = 0;
    const pid_t ended = m_status ? 0 : ::waitpid(m_process, &status, WNOHANG);
    if (ended == m_process || (ended < 0 && errno == ECHILD)) {
        m_status = status;
        RunSignals::Watch(0);
    }
    return m_status;
}

} // namespace ispctl
