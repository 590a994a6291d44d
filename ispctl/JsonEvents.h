#ifndef ISPCTL_JSON_EVENTS_H
#define ISPCTL_JSON_EVENTS_H

#include "ConsoleStreams.h"
#include "LineBuffer.h"
#include "RunObserver.h"
#include "Utf8.h"

namespace ispctl {

/// Writes a run to standard output as JSON, one event per line:
///   {"event":"progress","percent":N}
///   {"event":"message","text":T}
///   {"event":"console","text":T}    T with its newline, if it has one
///   {"event":"result", ...}         always the last one; docs/ispctl-events.schema.json has its
///   keys
/// A string that is not valid Unicode is escaped (see EscapedText) and its event has
/// "escaped":true.
class JsonEvents : public RunObserver {
  public:
    explicit JsonEvents(ConsoleStreams &streams);

    void OnProgress(int percent) override;
    void OnMessage(std::wstring_view text) override;
    void OnConsole(Stream stream, std::string_view bytes) override;
    void OnPause() override;
    void OnEnd(const RunOutcome &outcome, ExitStatus status) override;

    /// The result event of a run that has no result of the library.
    /// \param stage  "usage", "open", "check", "log", "station", "lock", "files" or "backup" if the
    /// library was not called; "call" if ispctl itself failed after it was
    /// \param run  id of the run; empty: it is recorded nowhere
    static void WriteNotCalled(ConsoleStreams &streams, ExitStatus status, std::string_view stage,
                               std::string_view reason, const std::vector<Finding> &findings,
                               std::string_view run = {});
    static std::string NotCalled(ExitStatus status, std::string_view stage, std::string_view reason,
                                 const std::vector<Finding> &findings, Charset charset,
                                 std::string_view run = {});

  private:
    void WriteText(const char *event, const EscapedText &text);

    ConsoleStreams &m_streams;
    LineBuffer m_console;
};

} // namespace ispctl

#endif
