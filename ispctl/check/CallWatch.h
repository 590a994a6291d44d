#ifndef ISPCTL_CHECK_CALL_WATCH_H
#define ISPCTL_CHECK_CALL_WATCH_H

#include "check/CallReporter.h"
#include "scaler_isp/abi/Callbacks.h"

namespace ispctl::check {

/// The callbacks that a plug-in gets: they examine what it reports. There is one watch per process,
/// because callbacks have no context argument.
class CallWatch {
  public:
    explicit CallWatch(CallReporter &reporter);
    ~CallWatch();
    CallWatch(const CallWatch &) = delete;
    CallWatch &operator=(const CallWatch &) = delete;

    /// An action begins: its progress may begin at 0 again.
    static void BeginAction();
    static void OnProgress(int percent);
    static void OnMessage(wchar_t *text);
};

} // namespace ispctl::check

#endif
