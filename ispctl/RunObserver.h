#ifndef ISPCTL_RUN_OBSERVER_H
#define ISPCTL_RUN_OBSERVER_H

#include <string_view>

#include "RunOutcome.h"

namespace ispctl {

/// The standard stream that text was written to.
enum class Stream { Output, Error };

/// Receives the events of one run in their order.
class RunObserver {
  public:
    virtual ~RunObserver() = default;

    /// UNITS: percent, as reported by the plug-in; may be outside 0 to 100.
    virtual void OnProgress(int percent) = 0;
    /// A message of the plug-in for the user, unchanged; it may or may not end with a newline.
    virtual void OnMessage(std::wstring_view text) = 0;
    /// Output of the library and its plug-ins in pieces of any length; a line may take several
    /// calls.
    virtual void OnConsole(Stream stream, std::string_view bytes) = 0;
    /// Nothing was written for a while, so an incomplete line can be shown.
    virtual void OnPause() {}
    /// A message of ispctl itself during the run.
    virtual void OnNotice(std::string_view) {}
    /// The run is over; nothing follows.
    virtual void OnEnd(const RunOutcome &outcome, ExitStatus status) = 0;
};

} // namespace ispctl

#endif
