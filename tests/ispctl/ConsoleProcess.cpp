#include "ConsoleProcess.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Ends {
    int ours;
    int theirs;
};

Ends OpenPipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        throw std::runtime_error("pipe");
    }
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    return {ends[0], ends[1]};
}

Ends OpenTerminal() {
    const int ours = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (ours < 0 || ::grantpt(ours) != 0 || ::unlockpt(ours) != 0) {
        throw std::runtime_error("posix_openpt");
    }
    ::fcntl(ours, F_SETFD, FD_CLOEXEC);
    return {ours, ::open(::ptsname(ours), O_RDWR | O_NOCTTY)};
}

[[noreturn]] void Become(const std::vector<std::string> &arguments, const std::string &folder,
                         int output, int error) {
    ::dup2(output, STDOUT_FILENO);
    ::dup2(error, STDERR_FILENO);
    for (const int descriptor : {output, error}) {
        if (descriptor > STDERR_FILENO) {
            ::close(descriptor);
        }
    }
    if (!folder.empty() && ::chdir(folder.c_str()) != 0) {
        ::_exit(126);
    }
    ::setenv("TERM", "xterm", 1);
    std::vector<std::string> copies{"ispctl"};
    copies.insert(copies.end(), arguments.begin(), arguments.end());
    std::vector<char *> argv;
    for (std::string &argument : copies) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    ::execv(ISPCTL_EXECUTABLE, argv.data());
    ::_exit(127);
}

} // namespace

bool ConsoleProcess::CanHaveTerminal() {
    const int ours = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (ours >= 0) {
        ::close(ours);
    }
    return ours >= 0;
}

ConsoleProcess::ConsoleProcess(const std::vector<std::string> &arguments, Output output,
                               const std::string &folder) {
    const Ends first = output == Output::Terminal ? OpenTerminal() : OpenPipe();
    const Ends second = output == Output::Pipes ? OpenPipe() : Ends{-1, first.theirs};
    m_source[0] = first.ours;
    m_source[1] = second.ours;
    m_process = ::fork();
    if (m_process == 0) {
        Become(arguments, folder, first.theirs, second.theirs);
    }
    ::close(first.theirs);
    if (output == Output::Pipes) {
        ::close(second.theirs);
    }
}

ConsoleProcess::~ConsoleProcess() {
    if (m_process > 0) {
        ::kill(m_process, SIGKILL);
        ::waitpid(m_process, nullptr, 0);
    }
    for (const int source : m_source) {
        if (source >= 0) {
            ::close(source);
        }
    }
}

bool ConsoleProcess::ReadSome(int milliseconds) {
    std::array<pollfd, 2> sources{{{m_source[0], POLLIN, 0}, {m_source[1], POLLIN, 0}}};
    if (::poll(sources.data(), sources.size(), milliseconds) <= 0) {
        return false;
    }
    for (std::size_t i = 0; i < sources.size(); ++i) {
        std::array<char, 4096> buffer;
        if (sources[i].revents == 0) {
            continue;
        }
        const ssize_t length = ::read(m_source[i], buffer.data(), buffer.size());
        if (length > 0) {
            m_text[i].append(buffer.data(), static_cast<std::size_t>(length));
        } else { // the end; a terminal reports it as an error
            ::close(m_source[i]);
            m_source[i] = -1;
        }
    }
    return true;
}

bool ConsoleProcess::WaitForText(const std::string &text) {
    const auto found = [&] {
        return Out().find(text) != std::string::npos || Err().find(text) != std::string::npos;
    };
    while (!found() && (m_source[0] >= 0 || m_source[1] >= 0)) {
        if (!ReadSome(20000)) {
            return false;
        }
    }
    return found();
}

void ConsoleProcess::CloseOutput() {
    ::close(m_source[0]);
    m_source[0] = -1;
}

void ConsoleProcess::Signal(int signal) const {
    ::kill(m_process, signal);
}

bool ConsoleProcess::HasEnded() const {
    siginfo_t info{};
    return ::waitid(P_PID, static_cast<id_t>(m_process), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == m_process;
}

int ConsoleProcess::Finish() {
    while ((m_source[0] >= 0 || m_source[1] >= 0) && ReadSome(60000)) {
    }
    int status = 0;
    ::waitpid(m_process, &status, 0);
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

ConsoleResult RunConsole(const std::vector<std::string> &arguments, ConsoleProcess::Output output,
                         const std::string &folder) {
    ConsoleProcess process(arguments, output, folder);
    const int status = process.Finish();
    return {status, process.Out(), process.Err()};
}

std::vector<std::string> ScriptedArguments(const std::vector<std::string> &own,
                                           const std::vector<std::string> &steps) {
    std::vector<std::string> arguments{"run"};
    arguments.insert(arguments.end(), own.begin(), own.end());
    arguments.insert(arguments.end(), {"--verbatim", "--lib", SCRIPTED_LIBRARY});
    arguments.insert(arguments.end(), steps.begin(), steps.end());
    return arguments;
}

ConsoleResult RunScripted(const std::vector<std::string> &own,
                          const std::vector<std::string> &steps, ConsoleProcess::Output output) {
    return RunConsole(ScriptedArguments(own, steps), output);
}
