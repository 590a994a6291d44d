#ifndef SCALER_ISP_TESTS_HOST_CONSOLE_PROCESS_H
#define SCALER_ISP_TESTS_HOST_CONSOLE_PROCESS_H

#include <string>
#include <sys/types.h>
#include <vector>

/// One real console in a process of its own.
class ConsoleProcess {
  public:
    enum class Output {
        Pipes,   ///< standard output and standard error each into a pipe
        OnePipe, ///< both into the same pipe; all text counts as standard output
        Terminal ///< both into a terminal; all text counts as standard output
    };

    /// Whether a terminal can be made here; a bare root folder without /dev/pts has none. Tests
    /// that need one are skipped then.
    static bool CanHaveTerminal();

    /// \param folder  the working folder; empty for that of the test
    explicit ConsoleProcess(const std::vector<std::string> &arguments,
                            Output output = Output::Pipes, const std::string &folder = "");
    /// Ends the process if it still runs.
    ~ConsoleProcess();
    ConsoleProcess(const ConsoleProcess &) = delete;
    ConsoleProcess &operator=(const ConsoleProcess &) = delete;

    /// Reads until text has come on one of the streams. RETURNS false if the process ended before
    /// or 20 seconds passed.
    bool WaitForText(const std::string &text);
    /// Stops reading standard output, as a reader that goes away.
    void CloseOutput();
    void Signal(int signal) const;
    /// RETURNS whether the process has ended, whatever of its output was not read.
    bool HasEnded() const;
    /// Reads to the end. RETURNS the exit status, or -N where signal N ended the process.
    int Finish();

    const std::string &Out() const {
        return m_text[0];
    }
    const std::string &Err() const {
        return m_text[1];
    }

  private:
    bool ReadSome(int milliseconds);

    pid_t m_process = -1;
    int m_source[2] = {-1, -1};
    std::string m_text[2];
};

/// How a console ended and what it wrote.
struct ConsoleResult {
    int status;
    std::string out;
    std::string err;
};

/// Runs a console to its end.
ConsoleResult RunConsole(const std::vector<std::string> &arguments,
                         ConsoleProcess::Output output = ConsoleProcess::Output::Pipes,
                         const std::string &folder = "");

/// Runs `ispctl run [own] --verbatim --lib <scripted library> steps`.
ConsoleResult RunScripted(const std::vector<std::string> &own,
                          const std::vector<std::string> &steps,
                          ConsoleProcess::Output output = ConsoleProcess::Output::Pipes);

/// The arguments of RunScripted.
std::vector<std::string> ScriptedArguments(const std::vector<std::string> &own,
                                           const std::vector<std::string> &steps);

#endif
