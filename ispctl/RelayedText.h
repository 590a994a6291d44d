#ifndef ISPCTL_RELAYED_TEXT_H
#define ISPCTL_RELAYED_TEXT_H

#include "ConsoleStreams.h"
#include "RunObserver.h"

namespace ispctl {

/// Shows what a library's process prints, each stream on its own. For commands whose report is
/// text: they have no progress.
class RelayedText : public RunObserver {
  public:
    explicit RelayedText(ConsoleStreams &streams)
        : m_streams(streams), m_output(streams.TheCharset()), m_error(streams.TheCharset()) {}

    void OnProgress(int) override {}
    void OnMessage(std::wstring_view) override {}
    void OnConsole(Stream stream, std::string_view bytes) override {
        m_streams.Write(stream, (stream == Stream::Output ? m_output : m_error).Add(bytes));
    }
    void OnEnd(const RunOutcome &, ExitStatus) override {
        m_streams.Write(Stream::Output, m_output.Finish());
        m_streams.Write(Stream::Error, m_error.Finish());
    }

  protected:
    ConsoleStreams &Streams() {
        return m_streams;
    }

  private:
    ConsoleStreams &m_streams;
    VisibleStream m_output;
    VisibleStream m_error;
};

} // namespace ispctl

#endif
