#ifndef SCALER_ISP_SELFTEST_LIBRARY_CALL_H
#define SCALER_ISP_SELFTEST_LIBRARY_CALL_H

#include <string>
#include <vector>

struct CallOutcome {
    int result = 0;
    std::string printed;  ///< on standard output
    std::string messages; ///< one per line; what is not ASCII as "?"
    std::vector<int> progress;
};

/// A library that was opened by path.
class OpenLibrary {
  public:
    explicit OpenLibrary(const std::string &path);
    ~OpenLibrary();
    OpenLibrary(const OpenLibrary &) = delete;
    OpenLibrary &operator=(const OpenLibrary &) = delete;

    /// Whether it is loaded and has OperateScaler.
    bool IsOpen() const;
    /// The reason of the system if it is not.
    const std::string &Error() const;
    /// The path that the system reports for it.
    std::string ReportedPath() const;
    /// REQUIRES IsOpen(). `capture` is a file for what the call prints.
    CallOutcome Call(const std::wstring &line, const std::string &capture) const;

  private:
    void *m_image;
    void *m_operate = nullptr;
    std::string m_error;
};

/// "0", "-1", "0x4003".
std::string ResultText(int result);

#endif
