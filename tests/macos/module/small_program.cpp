// A program that the loader runs: what every program needs of the system at its start, and what
// ispctl needs of it for the process that it starts. Each line of its output is expected by
// tests/macos.

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <mach-o/dyld.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char **environ;

namespace {

volatile std::sig_atomic_t g_signal = 0;

void OnSignal(int signal) {
    g_signal = signal;
}

std::string OwnPath() {
    char path[4096];
    std::uint32_t size = sizeof path;
    return _NSGetExecutablePath(path, &size) == 0 ? path : "";
}

void Exceptions() {
    std::string text;
    try {
        throw std::runtime_error("an exception");
    } catch (const std::exception &error) {
        text = error.what();
    }
    std::printf("caught %s\n", text.c_str());
}

void Threads() {
    int value = 0;
    std::thread([&] { value = 42; }).join();
    std::printf("a thread wrote %d\n", value);
}

void Signals() {
    struct sigaction wanted {};
    struct sigaction before {};
    wanted.sa_handler = OnSignal;
    sigaction(SIGUSR1, &wanted, &before);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGUSR1);
    sigprocmask(SIG_BLOCK, &set, nullptr);
    raise(SIGUSR1);
    const bool blocked = g_signal == 0;
    sigprocmask(SIG_UNBLOCK, &set, nullptr);
    std::printf("signal blocked %d, then delivered %d\n", blocked, g_signal == SIGUSR1);
    sigaction(SIGUSR1, &before, nullptr);
}

/// The child is this program; it writes into the pipe and ends by its exit status or by a signal.
void Child(const char *how) {
    int ends[2];
    pipe(ends);
    fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    fcntl(ends[0], F_SETFL, fcntl(ends[0], F_GETFL) | O_NONBLOCK);
    char nothing = 0;
    std::printf("an empty pipe reads %d\n", static_cast<int>(read(ends[0], &nothing, 1)));
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    std::string path = OwnPath();
    std::string word = how;
    char *arguments[] = {path.data(), word.data(), nullptr};
    pid_t child = 0;
    const int error = posix_spawn(&child, path.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    int status = 0;
    waitpid(child, &status, 0);
    pollfd source{ends[0], POLLIN, 0};
    poll(&source, 1, 1000);
    char text[256] = "";
    read(ends[0], text, sizeof text - 1);
    close(ends[0]);
    std::printf("child %s: error %d, exit %d, signal %d, wrote %s", how, error,
                WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                WIFSIGNALED(status) ? WTERMSIG(status) : 0, text);
}

} // namespace

int main(int argc, char **argv) {
    const std::string how = argc == 2 ? argv[1] : "";
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    if (how == "exits") {
        std::printf("bytes through the pipe\n");
        return 7;
    }
    if (how == "dies") {
        std::printf("its last words\n");
        raise(SIGUSR1);
    }
    std::printf("%d arguments, path %s\n", argc, OwnPath() == argv[0] ? "as argv[0]" : "another");
    Exceptions();
    Threads();
    Signals();
    Child("exits");
    Child("dies");
    return 3;
}
