#include "support/TestLocale.h"

#include <optional>

#include <unistd.h>

namespace {

const std::string kFolder = SCALER_ISP_TEST_LOCALES;

} // namespace

bool HasTestLocale(const std::string &name) {
    return access((kFolder + "/" + name + "/LC_CTYPE").c_str(), R_OK) == 0;
}

EnvironmentLocaleGuard::EnvironmentLocaleGuard(const std::string &name)
    : m_folder("LOCPATH", HasTestLocale(name) ? std::optional(kFolder) : std::nullopt),
      m_name("LC_ALL", name) {}
