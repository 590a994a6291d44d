#include "LibraryRun.h"

#include <algorithm>
#include <csignal>
#include <cstring>
#include <fmt/format.h>
#include <sys/wait.h>

#include "ResultInfo.h"

namespace ispctl {
namespace {

// How long a text without a newline waits for the rest of its line.
constexpr int kPauseMilliseconds = 200;
constexpr std::size_t kMaxEarlyText = 64 * 1024;

std::string SignalNotice(int signal, bool inBackup) {
    if (inBackup) {
        constexpr const char *kEnd = "the run ends after this read, nothing is programmed";
        return signal == SIGINT ? fmt::format("{}; press Ctrl-C again to stop immediately", kEnd)
                                : fmt::format("{}: {}", NameOfSignal(signal), kEnd);
    }
    constexpr const char *kReason = "stopping now can leave the device without firmware";
    return signal == SIGINT
               ? fmt::format("{}; press Ctrl-C again to stop immediately", kReason)
               : fmt::format(
                     "{}: the run continues, because {}; press Ctrl-C twice to stop immediately",
                     NameOfSignal(signal), kReason);
}

std::wstring MessageOf(const Frame &frame) {
    std::wstring text(frame.payload.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), frame.payload.data(), text.size() * sizeof(wchar_t));
    return text;
}

} // namespace

// A failure while showing a run must not end it, because it programs a device.
// RETURNS whether action succeeded.
template <class Action> bool LibraryRun::Attempt(const Action &action) {
    constexpr const char *kOutOfMemory = "out of memory"; // short: needs no allocation
    try {
        action();
        return true;
    } catch (const std::bad_alloc &) {
        m_problem = kOutOfMemory;
    } catch (const std::exception &error) {
        m_problem = kOutOfMemory;
        m_problem = error.what();
    }
    return false;
}

template <class Event> void LibraryRun::Notify(const Event &event) {
    for (RunObserver *observer : m_observers) {
        Attempt([&] { event(*observer); });
    }
}

void LibraryRun::ReportSignals() {
    for (const int signal : m_child.DrainSignals()) {
        m_isSignalled = true;
        if (!RunSignals::HasStopped()) {
            const std::string notice = SignalNotice(signal, m_inBackup);
            m_streams.Write(Stream::Error, "\nispctl: " + notice + "\n");
            Notify([&](RunObserver &observer) { observer.OnNotice(notice); });
        }
    }
}

bool LibraryRun::DrainText() {
    bool any = false;
    Attempt([&] {
        any = m_child.DrainAvailable([this](Stream stream, std::string_view bytes) {
            Notify([&](RunObserver &observer) { observer.OnConsole(stream, bytes); });
        });
    });
    return any;
}

void LibraryRun::ShowNotice(const std::string &text) {
    Attempt([&] { m_streams.PrintMessage(text); });
    Notify([&](RunObserver &observer) { observer.OnNotice(text); });
}

// The progress of a backup is none of what follows.
void LibraryRun::BeginStage(RunStage stage) {
    m_inBackup = stage == RunStage::Backup;
    m_percent.reset();
}

// Between two calls of the library, of which none has programmed yet. A signal that came before
// the answer counts, whether it was reported or not.
bool LibraryRun::EndsBeforeProgramming(const Frame &frame) {
    if (frame.kind != FrameKind::Stage && frame.kind != FrameKind::Backup) {
        return false;
    }
    const bool wasInBackup = m_inBackup;
    m_inBackup = true;
    ReportSignals();
    m_stoppedInBackup = m_isSignalled;
    m_inBackup = wasInBackup || m_stoppedInBackup;
    return m_stoppedInBackup;
}

void LibraryRun::HandleFrame(const Frame &frame) {
    switch (frame.kind) {
    case FrameKind::Progress:
        m_percent = ValueOf<int>(frame.payload);
        m_calledBack = true;
        Notify([&](RunObserver &observer) { observer.OnProgress(*m_percent); });
        break;
    case FrameKind::Message:
        m_calledBack = true;
        Notify([&](RunObserver &observer) { observer.OnMessage(MessageOf(frame)); });
        break;
    case FrameKind::Notice:
        ShowNotice(frame.payload);
        break;
    case FrameKind::Stage:
        BeginStage(ValueOf<RunStage>(frame.payload));
        break;
    case FrameKind::Backup:
        Attempt([&] { m_backups.push_back(frame.payload); });
        break;
    case FrameKind::Refused:
        Attempt([&] { m_refusal = DecodeRefusal(frame.payload); });
        break;
    case FrameKind::Result:
        m_result = ValueOf<RunResult>(std::string_view(frame.payload).substr(0, sizeof(RunResult)));
        m_detail = frame.payload.substr(std::min(frame.payload.size(), sizeof(RunResult)));
        break;
    default:
        break;
    }
}

void LibraryRun::HandleFrames() {
    while (m_readable) {
        std::optional<Frame> frame;
        m_readable = Attempt([&] { frame = m_child.NextFrame(); });
        if (!m_readable) {
            m_child.StopListening();
        }
        if (!frame) {
            return;
        }
        DrainText();
        if (EndsBeforeProgramming(*frame)) {
            if (frame->kind == FrameKind::Backup) {
                HandleFrame(*frame);
            }
            m_child.Kill();
            return;
        }
        HandleFrame(*frame);
        m_child.Answer();
    }
}

std::optional<Frame> LibraryRun::WaitForFrame() {
    std::optional<Frame> frame;
    while (!frame && !m_child.Status()) {
        m_child.Wait(-1);
        if (!m_child.DrainSignals().empty()) {
            m_stoppedBeforeCall = true; // nothing is programmed yet
            m_child.Kill();
        }
        frame = m_child.NextFrame();
        m_child.DrainAvailable([this](Stream, std::string_view bytes) {
            m_earlyText += bytes.substr(0, kMaxEarlyText - m_earlyText.size());
        });
    }
    return frame ? frame : m_child.NextFrame();
}

void LibraryRun::Follow() {
    bool textPending = !m_earlyText.empty();
    while (!m_child.Status()) {
        const bool woken = m_child.Wait(textPending ? kPauseMilliseconds : -1);
        ReportSignals();
        HandleFrames();
        const bool text = DrainText();
        if (!woken) {
            Notify([](RunObserver &observer) { observer.OnPause(); });
        }
        // OnPause has emitted all pending text; only new text starts the next wait.
        textPending = text || (textPending && woken);
    }
    HandleFrames();
    DrainText();
}

RunOutcome LibraryRun::Run(std::vector<RunObserver *> observers) {
    m_observers = std::move(observers);
    Notify([&](RunObserver &observer) { observer.OnConsole(Stream::Output, m_earlyText); });
    m_child.Answer();
    Follow();
    return Outcome();
}

void LibraryRun::NotifyEnd(RunObserver &observer, const RunOutcome &outcome, ExitStatus status) {
    Attempt([&] { observer.OnEnd(outcome, status); });
}

RunOutcome LibraryRun::Outcome() const {
    RunOutcome outcome;
    int status = m_child.Status().value_or(0); // not const, for the macros of macOS
    outcome.percent = m_percent;
    outcome.inBackup = m_inBackup;
    outcome.backups = m_backups;
    if (m_result) {
        outcome.code = m_result->code;
        outcome.fromLibrary = m_result->fromLibrary != 0;
        outcome.deviceUntouched = m_result->deviceUntouched != 0;
        outcome.detail = m_detail;
    }
    if (RunSignals::HasStopped() || m_stoppedInBackup) {
        outcome.end = RunEnd::Interrupted;
    } else if (!m_result && !m_readable) {
        outcome.end = RunEnd::Unheard;
    } else if (WIFSIGNALED(status)) {
        outcome.end = RunEnd::Signal;
        outcome.number = WTERMSIG(status);
    } else if (!m_result || WEXITSTATUS(status) != 0) {
        outcome.end = RunEnd::Exit;
        outcome.number = WEXITSTATUS(status);
    }
    if (m_refusal && outcome.end == RunEnd::Returned) {
        outcome.problem = m_refusal->text;
        outcome.code.reset(); // that of a backup which is none
    }
    // A code that the library has not formed itself comes from a plug-in, so one was called.
    outcome.pluginCalled = !outcome.fromLibrary || m_result->pluginLoaded != 0 || m_calledBack ||
                           outcome.end != RunEnd::Returned;
    return outcome;
}

} // namespace ispctl
