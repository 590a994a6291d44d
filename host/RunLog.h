#ifndef ISPCTL_RUN_LOG_H
#define ISPCTL_RUN_LOG_H

#include <filesystem>
#include <fstream>
#include <string_view>

#include "RunObserver.h"
#include "TextPieces.h"

namespace ispctl {

/// Appends a run to a file, one line an event: time (UTC, milliseconds), kind, text. Texts that
/// hold control characters or bytes that are not UTF-8 show them as \xNN.
class RunLog : public RunObserver {
  public:
    explicit RunLog(const std::filesystem::path &file);

    /// RETURNS whether everything up to now reached the file.
    bool IsGood() const {
        return m_file.good();
    }
    void Write(std::string_view kind, std::string_view text);

    void OnProgress(int percent) override;
    void OnMessage(std::wstring_view text) override;
    void OnConsole(Stream stream, std::string_view bytes) override;
    void OnPause() override;
    void OnResult(int code) override;

  private:
    void FinishConsole();

    std::ofstream m_file;
    TextPieces m_output;
    TextPieces m_error;
};

} // namespace ispctl

#endif
