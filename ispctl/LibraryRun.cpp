#include "LibraryRun.h"

#include <csignal>
#include <cstring>
#include <fmt/format.h>
#include <sys/wait.h>

#include "ResultInfo.h"

namespace ispctl {
namespace {

// How long a text without line end waits for the rest of its line.
constexpr int kPauseMilliseconds = 200;
constexpr std::size_t kMaxEarlyText = 64 * 1024;

std::string WordsOfSignal(int signal) {
    constexpr const char *kReason = "stopping now can leave the device without firmware";
    return signal == SIGINT
               ? fmt::format("{}; press Ctrl-C again to stop at once", kReason)
               : fmt::format("{}: the run goes on, because {}; press Ctrl-C twice to stop at once",
                             NameOfSignal(signal), kReason);
}

std::wstring MessageOf(const Frame &frame) {
    std::wstring text(frame.payload.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), frame.payload.data(), text.size() * sizeof(wchar_t));
    return text;
}

} // namespace

// What goes wrong while a run is shown must not end a run that programs a device.
// RETURNS whether nothing did.
template <class Action> bool LibraryRun::Attempt(const Action &action) {
    constexpr const char *kNoMemory = "no memory"; // short enough to need none
    try {
        action();
        return true;
    } catch (const std::bad_alloc &) {
        m_problem = kNoMemory;
    } catch (const std::exception &error) {
        m_problem = kNoMemory;
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
    for (const int signal : m_child.TakeSignals()) {
        if (!RunSignals::HasStopped()) {
            const std::string words = WordsOfSignal(signal);
            m_streams.Write(Stream::Error, "\nispctl: " + words + "\n");
            Notify([&](RunObserver &observer) { observer.OnNotice(words); });
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

void LibraryRun::TellFrame(const Frame &frame) {
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
    case FrameKind::Result:
        m_result = ValueOf<RunResult>(frame.payload);
        break;
    default:
        break;
    }
}

void LibraryRun::TakeFrames() {
    while (m_heard) {
        std::optional<Frame> frame;
        m_heard = Attempt([&] { frame = m_child.TakeFrame(); });
        if (!m_heard) {
            m_child.StopListening();
        }
        if (!frame) {
            return;
        }
        DrainText();
        TellFrame(*frame);
        m_child.Answer();
    }
}

std::optional<Frame> LibraryRun::WaitForFirst() {
    std::optional<Frame> frame;
    while (!frame && !m_child.Status()) {
        m_child.Wait(-1);
        ReportSignals();
        frame = m_child.TakeFrame();
        m_child.DrainAvailable([this](Stream, std::string_view bytes) {
            m_earlyText += bytes.substr(0, kMaxEarlyText - m_earlyText.size());
        });
    }
    return frame ? frame : m_child.TakeFrame();
}

void LibraryRun::Follow() {
    bool textWaits = !m_earlyText.empty();
    while (!m_child.Status()) {
        const bool came = m_child.Wait(textWaits ? kPauseMilliseconds : -1);
        ReportSignals();
        TakeFrames();
        const bool text = DrainText();
        if (!came) {
            Notify([](RunObserver &observer) { observer.OnPause(); });
        }
        // After a pause everything is told; only new text starts the next one.
        textWaits = text || (textWaits && came);
    }
    TakeFrames();
    DrainText();
}

RunOutcome LibraryRun::Run(std::vector<RunObserver *> observers) {
    m_observers = std::move(observers);
    Notify([&](RunObserver &observer) { observer.OnConsole(Stream::Output, m_earlyText); });
    m_child.Answer();
    Follow();
    const RunOutcome outcome = Outcome();
    Notify([&](RunObserver &observer) { observer.OnEnd(outcome); });
    return outcome;
}

RunOutcome LibraryRun::Outcome() const {
    RunOutcome outcome;
    const int status = m_child.Status().value_or(0);
    outcome.percent = m_percent;
    if (m_result) {
        outcome.code = m_result->code;
    }
    if (RunSignals::HasStopped()) {
        outcome.end = RunEnd::Interrupted;
    } else if (!m_result && !m_heard) {
        outcome.end = RunEnd::Unheard;
    } else if (WIFSIGNALED(status)) {
        outcome.end = RunEnd::Signal;
        outcome.number = WTERMSIG(status);
    } else if (!m_result || WEXITSTATUS(status) != 0) {
        outcome.end = RunEnd::Exit;
        outcome.number = WEXITSTATUS(status);
    }
    // A code that the library does not form comes from a plug-in, whatever else is seen.
    const bool own = m_result && !DescribeResult(m_result->code).name.empty();
    outcome.pluginCalled =
        !own || m_result->pluginLoaded != 0 || m_calledBack || outcome.end != RunEnd::Returned;
    return outcome;
}

} // namespace ispctl
