#ifndef SCALER_ISP_TESTS_SUPPORT_SYSTEM_FAULT_H
#define SCALER_ISP_TESTS_SUPPORT_SYSTEM_FAULT_H

#include <string>

/// While it lives, a function of the C library fails with an error of its own. One at a time.
///
/// A program that uses it replaces newlocale, wcsrtombs, mbsrtowcs, realpath, opendir and readdir;
/// a test file that replaces another function asks Strikes itself.
class SystemFault {
  public:
    /// \param successes  calls of the function that succeed before it fails; then it fails always.
    SystemFault(const std::string &function, int error, int successes = 0);
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
    bool m_struck = false;
};

#endif
