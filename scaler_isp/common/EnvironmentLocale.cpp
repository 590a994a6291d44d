#include "scaler_isp/common/EnvironmentLocale.h"

#include <clocale>

namespace {

// setlocale's text lives until its next call, so it is copied at once.
std::string CurrentName() {
    const char *name = std::setlocale(LC_CTYPE, nullptr);
    return name != nullptr ? name : "";
}

} // namespace

EnvironmentLocale::EnvironmentLocale() : m_former(CurrentName()) {
    std::setlocale(LC_CTYPE, "");
}

EnvironmentLocale::~EnvironmentLocale() {
    std::setlocale(LC_CTYPE, m_former.c_str());
}
