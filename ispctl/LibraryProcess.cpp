#include "LibraryProcess.h"

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <fcntl.h>
#include <optional>
#include <stdexcept>
#include <unistd.h>

#include "CommandLine.h"
#include "ConsoleStreams.h"
#include "ImageWatch.h"
#include "LibraryPaths.h"
#include "Pipe.h"
#include "ScalerLibrary.h"
#include "Utf8.h"

namespace ispctl {
namespace {

ConsoleLink *g_link = nullptr; // the library's callbacks carry no context

int DescriptorFrom(const std::string &word) {
    int number = -1;
    std::from_chars(word.data(), word.data() + word.size(), number);
    return number;
}

std::optional<ScalerLibrary> OpenLibrary(const RunOptions &options, std::string &error) {
    if (!options.library.empty()) {
        return ScalerLibrary::Open(options.library, error);
    }
    return ScalerLibrary::Open(options.virtualScaler ? VirtualLibrary() : InstalledLibraryPath(),
                               error);
}

/// What is handed over.
struct Call {
    ScalerLibrary library;
    std::wstring line;
};

std::optional<Call> Prepare(const RunOptions &options, std::string &refusal) {
    auto library = OpenLibrary(options, refusal);
    if (!library) {
        return std::nullopt;
    }
    CommandLine line = BuildCommandLine(options.arguments,
                                        [&](const std::string &l) { return library->Split(l); });
    refusal = line.refusal;
    return line.IsValid() ? std::optional(Call{std::move(*library), std::move(line.line)})
                          : std::nullopt;
}

// Nothing of ours may go through the frames of a plug-in.
void OnProgress(int percent) {
    try {
        g_link->Send(FrameKind::Progress, BytesOf(percent));
    } catch (const std::exception &) {
    }
}

// The text is bounded before anything of it is kept.
void OnMessage(wchar_t *text) {
    try {
        const std::size_t length = text == nullptr ? 0 : ::wcsnlen(text, kMaxMessage + 1);
        std::wstring message(text != nullptr ? text : L"", std::min(length, kMaxMessage));
        if (length > kMaxMessage) {
            message +=
                L" [cut: a message has at most " + std::to_wstring(kMaxMessage) + L" characters]";
        }
        g_link->Send(FrameKind::Message, {reinterpret_cast<const char *>(message.data()),
                                          message.size() * sizeof(wchar_t)});
    } catch (const std::exception &) {
    }
}

} // namespace

std::unique_ptr<ConsoleLink> ConsoleLink::Take(std::vector<std::string> &arguments) {
    constexpr std::size_t kOwn = 3;
    const bool complete = arguments.size() >= kOwn;
    const int send = complete ? DescriptorFrom(arguments[1]) : -1;
    const int receive = complete ? DescriptorFrom(arguments[2]) : -1;
    if (send <= STDERR_FILENO || receive <= STDERR_FILENO || ::fcntl(send, F_GETFD) < 0 ||
        ::fcntl(receive, F_GETFD) < 0) {
        return nullptr;
    }
    SetInherited(send, false);
    SetInherited(receive, false);
    arguments.erase(arguments.begin(), arguments.begin() + kOwn);
    return std::make_unique<ConsoleLink>(send, receive);
}

bool ConsoleLink::Send(FrameKind kind, std::string_view payload) {
    const std::lock_guard lock(m_mutex);
    char answer = 0;
    return WriteAll(m_send, EncodeFrame(kind, payload)) == 0 && ReadExactly(m_receive, &answer, 1);
}

void BecomeLibraryProcess() {
    ::signal(SIGPIPE, SIG_IGN);
    // Library and plug-ins write through stdio. Unbuffered, a text is in its pipe when it is
    // written, so its position among the callbacks is known, and a crash loses nothing.
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    std::setvbuf(stderr, nullptr, _IONBF, 0);
}

void RunLibrary(const RunOptions &options, ConsoleLink &link) {
    std::optional<Call> call;
    std::string text;
    try {
        call = Prepare(options, text);
    } catch (const std::exception &error) {
        text = error.what();
    }
    if (!call) {
        link.Send(FrameKind::Refused, text.substr(0, kMaxFrame));
        return;
    }
    text = call->library.Path().string() + '\0' + EscapeWide(call->line).text;
    g_link = &link;
    if (!link.Send(FrameKind::Ready, text)) {
        return; // the console is gone before anything was done
    }
    const ImageWatch watch;
    RunResult result;
    result.code = call->library.Run(call->line, OnProgress, OnMessage);
    result.pluginLoaded = watch.MayHaveLoadedPlugin() ? 1 : 0;
    link.Send(FrameKind::Result, BytesOf(result));
}

} // namespace ispctl
