#ifndef ISPCTL_STATION_ORIGINAL_NAMES_H
#define ISPCTL_STATION_ORIGINAL_NAMES_H

#include <string>
#include <utility>
#include <vector>

#include "JsonText.h"
#include "RunObserver.h"

namespace ispctl {

/// Passes the events of a run on, with the names that the user typed instead of those of the
/// private copies. Text of the library that arrives in pieces is passed as it is if a piece ends
/// within a name.
class OriginalNames : public RunObserver {
  public:
    /// \param files  array of RunFileJson
    OriginalNames(const Json &files, std::vector<RunObserver *> observers);

    std::string Replace(std::string text) const;

    void OnProgress(int percent) override;
    void OnMessage(std::wstring_view text) override;
    void OnConsole(Stream stream, std::string_view bytes) override;
    void OnPause() override;
    void OnNotice(std::string_view text) override;
    /// Passed on by nobody: the end is reported to each observer by itself.
    void OnEnd(const RunOutcome &, ExitStatus) override {}

  private:
    std::vector<std::pair<std::string, std::string>> m_names; ///< of a copy; as typed
    std::vector<std::pair<std::wstring, std::wstring>> m_wideNames;
    std::vector<RunObserver *> m_observers;
};

} // namespace ispctl

#endif
