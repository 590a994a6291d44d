#ifndef ISPCTL_RUN_OBSERVER_H
#define ISPCTL_RUN_OBSERVER_H

#include <string_view>

#include "RunOutcome.h"

namespace ispctl {

/// Which standard stream a text was written to.
enum class Stream { Output, Error };

/// Sees one run as it happens.
class RunObserver {
  public:
    virtual ~RunObserver() = default;

    /// UNITS: percent, as the plug-in reports it.
    virtual void OnProgress(int percent) = 0;
    /// A message for the user, as the plug-in gives it; it may or may not end in a line end.
    virtual void OnMessage(std::wstring_view text) = 0;
    /// What library and plug-ins wrote, in pieces of any length: a line may come in several calls.
    virtual void OnConsole(Stream stream, std::string_view bytes) = 0;
    /// Nothing was written for a while.
    virtual void OnPause() {}
    /// What the console itself says while the run goes on.
    virtual void OnNotice(std::string_view) {}
    /// The run is over; nothing follows.
    virtual void OnEnd(const RunOutcome &outcome) = 0;
};

} // namespace ispctl

#endif
