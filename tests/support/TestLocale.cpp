#include "support/TestLocale.h"

#include <optional>

#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#endif
#endif

namespace {

const std::string kFolder = SCALER_ISP_TEST_LOCALES;

#if defined(SANITIZER_LSAN_INTERFACE_H)
void LookAway() {
    __lsan_disable();
}

void LookAgain() {
    __lsan_enable();
}
#else
void LookAway() {}

void LookAgain() {}
#endif

} // namespace

bool HasTestLocale(const std::string &name) {
    return access((kFolder + "/" + name + "/LC_CTYPE").c_str(), R_OK) == 0;
}

EnvironmentLocaleGuard::EnvironmentLocaleGuard(const std::string &name)
    : m_folder("LOCPATH", HasTestLocale(name) ? std::optional(kFolder) : std::nullopt),
      m_name("LC_ALL", name), m_leak(HasTestLocale(name)) {}

EnvironmentLocaleGuard::LocpathLeak::LocpathLeak(bool expected) : m_expected(expected) {
    if (m_expected) {
        LookAway();
    }
}

EnvironmentLocaleGuard::LocpathLeak::~LocpathLeak() {
    if (m_expected) {
        LookAgain();
    }
}
