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

ParentLink *g_link = nullptr; // the library's callbacks have no context argument

int DescriptorFrom(const std::string &argument) {
    int number = -1;
    std::from_chars(argument.data(), argument.data() + argument.size(), number);
    return number;
}

std::optional<ScalerLibrary> OpenLibrary(const RunOptions &options, std::string &error) {
    if (!options.library.empty()) {
        return ScalerLibrary::Open(options.library, error);
    }
    return ScalerLibrary::Open(
        options.virtualScaler ? VirtualLibraryPath() : InstalledLibraryPath(), error);
}

/// An opened library and the command line to run.
struct Call {
    ScalerLibrary library;
    std::wstring line;
};

std::optional<Call> Prepare(const RunOptions &options, std::string &error) {
    auto library = OpenLibrary(options, error);
    if (!library) {
        return std::nullopt;
    }
    CommandLine line = BuildCommandLine(options.arguments,
                                        [&](const std::string &l) { return library->Split(l); });
    error = line.error;
    return line.IsValid() ? std::optional(Call{std::move(*library), std::move(line.line)})
                          : std::nullopt;
}

// No exception of this program may pass through the stack frames of a plug-in.
void OnProgress(int percent) {
    try {
        g_link->Send(FrameKind::Progress, BytesOf(percent));
    } catch (const std::exception &) {
    }
}

// The length is limited before anything is copied: a plug-in may pass a string without an end.
void OnMessage(wchar_t *text) {
    try {
        const std::size_t length = text == nullptr ? 0 : ::wcsnlen(text, kMaxMessage + 1);
        std::wstring message(text != nullptr ? text : L"", std::min(length, kMaxMessage));
        if (length > kMaxMessage) {
            message += L" [truncated: a message has at most " + std::to_wstring(kMaxMessage) +
                       L" characters]";
        }
        g_link->Send(FrameKind::Message, {reinterpret_cast<const char *>(message.data()),
                                          message.size() * sizeof(wchar_t)});
    } catch (const std::exception &) {
    }
}

} // namespace

std::unique_ptr<ParentLink> ParentLink::FromArguments(std::vector<std::string> &arguments) {
    constexpr std::size_t kLinkArguments = 3;
    const bool complete = arguments.size() >= kLinkArguments;
    const int send = complete ? DescriptorFrom(arguments[1]) : -1;
    const int receive = complete ? DescriptorFrom(arguments[2]) : -1;
    if (send <= STDERR_FILENO || receive <= STDERR_FILENO || ::fcntl(send, F_GETFD) < 0 ||
        ::fcntl(receive, F_GETFD) < 0) {
        return nullptr;
    }
    SetInherited(send, false);
    SetInherited(receive, false);
    arguments.erase(arguments.begin(), arguments.begin() + kLinkArguments);
    return std::make_unique<ParentLink>(send, receive);
}

bool ParentLink::Send(FrameKind kind, std::string_view payload) {
    const std::lock_guard lock(m_mutex);
    char answer = 0;
    return WriteAll(m_send, EncodeFrame(kind, payload)) == 0 && ReadExactly(m_receive, &answer, 1);
}

void BecomeLibraryProcess() {
    ::signal(SIGPIPE, SIG_IGN);
    // Library and plug-ins write through stdio. Without a buffer their text is in the pipe at once,
    // so its position among the callbacks is known and a crash loses nothing.
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    std::setvbuf(stderr, nullptr, _IONBF, 0);
}

void RunLibrary(const RunOptions &options, ParentLink &link) {
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
        return; // ispctl has ended, before anything was done
    }
    const ImageWatch watch;
    RunResult result;
    result.code = call->library.Run(call->line, OnProgress, OnMessage);
    result.pluginLoaded = watch.MayHaveLoadedPlugin() ? 1 : 0;
    link.Send(FrameKind::Result, BytesOf(result));
}

} // namespace ispctl
