#ifndef ISPCTL_RUN_EVENTS_H
#define ISPCTL_RUN_EVENTS_H

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "OutputCapture.h"
#include "RunObserver.h"
#include "ScalerLibrary.h"

namespace ispctl {

/// Carries out one run and tells the observers what happens, in the order in which it happens: text
/// that was written before a callback is told before it.
class RunEvents {
  public:
    explicit RunEvents(std::vector<RunObserver *> observers) : m_observers(std::move(observers)) {}

    /// \param capture  where library and plug-ins write, or null to leave their output alone
    /// RETURNS the library's result. One run at a time in a process.
    int Run(const ScalerLibrary &library, const std::wstring &line, OutputCapture *capture);

  private:
    static void OnProgress(int percent);
    static void OnMessage(wchar_t *text);

    void Tell(const std::function<void(RunObserver &)> &event);
    void TakeText();
    void Read();

    static RunEvents *s_current; ///< the library's callbacks carry no context
    std::vector<RunObserver *> m_observers;
    OutputCapture *m_capture = nullptr;
    std::mutex m_mutex; ///< held while text is taken and while observers are told
};

} // namespace ispctl

#endif
