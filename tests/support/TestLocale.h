#ifndef SCALER_ISP_TESTS_SUPPORT_TEST_LOCALE_H
#define SCALER_ISP_TESTS_SUPPORT_TEST_LOCALE_H

#include <string>

#include "support/EnvGuard.h"

/// Whether the build made this locale: de_DE.ISO-8859-1, de_DE.UTF-8, ja_JP.EUC-JP or tr_TR.UTF-8
/// (the list is in tests/support/CMakeLists.txt). Where it did not, a test calls GTEST_SKIP.
bool HasTestLocale(const std::string &name);

/// Makes a locale that of the environment (LC_ALL) while it lives. The process keeps its own
/// locale: switching to the environment's is the library's business.
///
/// Also takes the names every system has: "C", "POSIX", "C.UTF-8".
class EnvironmentLocaleGuard {
  public:
    explicit EnvironmentLocaleGuard(const std::string &name);

  private:
    /// glibc's newlocale never frees its copy of LOCPATH; a leak checker looks away while it is
    /// set.
    class LocpathLeak {
      public:
        explicit LocpathLeak(bool expected);
        ~LocpathLeak();
        LocpathLeak(const LocpathLeak &) = delete;
        LocpathLeak &operator=(const LocpathLeak &) = delete;

      private:
        bool m_expected;
    };

    EnvGuard m_folder;
    EnvGuard m_name;
    LocpathLeak m_leak;
};

#endif
