#ifndef SCALER_ISP_TESTS_SUPPORT_SYSTEM_FAULT_H
#define SCALER_ISP_TESTS_SUPPORT_SYSTEM_FAULT_H

#include <string>

/// While it lives, a function of the C library fails with an error of its own. One at a time.
///
/// A program that uses it replaces newlocale, wcsrtombs, mbsrtowcs, realpath, opendir and readdir;
/// a test file that replaces another function asks Strikes itself.
class SystemFault {
  public:
    static constexpr int kAlways = -1;

    /// \param successes  calls of the function that succeed before it fails
    /// \param failures   calls that fail then, after which it succeeds again; kAlways: all
    SystemFault(const std::string &function, int error, int successes = 0, int failures = kAlways);
    ~SystemFault();
    SystemFault(const SystemFault &) = delete;
    SystemFault &operator=(const SystemFault &) = delete;

    /// Whether the function has failed.
    bool HasStruck() const {
        return m_struck;
    }

    /// Asked by a replaced function. True, with errno set: it must fail.
    static bool Strikes(const char *function);

  private:
    std::string m_function;
    int m_error;
    int m_successes;
    int m_failures;
    bool m_struck = false;
};

#endif
