#include "RunEvents.h"

#include <cstdio>

namespace ispctl {
namespace {

// How long a text without line end waits for the rest of its line.
constexpr int kPauseMilliseconds = 200;

// Library and plug-ins write through stdio. Unbuffered, a text reaches the descriptor when it is
// written, so that its place among the callbacks is known.
class UnbufferedStdio {
  public:
    UnbufferedStdio() {
        Set(_IONBF, _IONBF);
    }
    ~UnbufferedStdio() {
        Set(_IOLBF, _IONBF);
    }
    UnbufferedStdio(const UnbufferedStdio &) = delete;
    UnbufferedStdio &operator=(const UnbufferedStdio &) = delete;

  private:
    static void Set(int output, int error) {
        std::fflush(stdout);
        std::fflush(stderr);
        std::setvbuf(stdout, nullptr, output, BUFSIZ);
        std::setvbuf(stderr, nullptr, error, BUFSIZ);
    }
};

// What goes wrong while a run is shown must not end a run that programs a device.
template <class Action> void Guarded(const Action &action) noexcept {
    try {
        action();
    } catch (...) {
    }
}

} // namespace

RunEvents *RunEvents::s_current = nullptr;

void RunEvents::TakeText() {
    if (m_capture != nullptr) {
        m_capture->TakeAvailable([this](Stream stream, std::string_view bytes) {
            for (RunObserver *observer : m_observers) {
                observer->OnConsole(stream, bytes);
            }
        });
    }
}

void RunEvents::Tell(const std::function<void(RunObserver &)> &event) {
    const std::lock_guard lock(m_mutex);
    TakeText();
    for (RunObserver *observer : m_observers) {
        event(*observer);
    }
}

void RunEvents::OnProgress(int percent) {
    Guarded([percent] {
        s_current->Tell([percent](RunObserver &observer) { observer.OnProgress(percent); });
    });
}

void RunEvents::OnMessage(wchar_t *text) {
    Guarded([text] {
        const std::wstring_view message = text != nullptr ? text : L"";
        s_current->Tell([message](RunObserver &observer) { observer.OnMessage(message); });
    });
}

// Takes text as it comes, so that no writer ever waits at a full pipe.
void RunEvents::Read() {
    auto event = OutputCapture::Event::Pause;
    while (event != OutputCapture::Event::Stop) {
        // After a pause everything is told; only new text starts the next one.
        const bool textWaits = event == OutputCapture::Event::Text;
        event = m_capture->WaitForText(textWaits ? kPauseMilliseconds : -1);
        Guarded([&] {
            const std::lock_guard lock(m_mutex);
            TakeText();
            if (event != OutputCapture::Event::Text) {
                for (RunObserver *observer : m_observers) {
                    observer->OnPause();
                }
            }
        });
    }
    m_capture->AcknowledgeStop();
}

int RunEvents::Run(const ScalerLibrary &library, const std::wstring &line, OutputCapture *capture) {
    m_capture = capture;
    s_current = this;
    std::thread reader;
    int result = 0;
    {
        const UnbufferedStdio unbuffered;
        if (m_capture != nullptr) {
            reader = std::thread([this] { Read(); });
        }
        result = library.Run(line, OnProgress, OnMessage);
    }
    if (m_capture != nullptr) {
        m_capture->Restore();
        m_capture->StopWaiting();
        reader.join();
    }
    Tell([result](RunObserver &observer) { observer.OnResult(result); });
    s_current = nullptr;
    return result;
}

} // namespace ispctl
