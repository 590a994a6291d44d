#include "scaler_isp/common/EnvironmentLocale.h"

#include <cerrno>

#include "scaler_isp/common/CallFailure.h"

EnvironmentLocale::EnvironmentLocale() {
    errno = 0;
    m_locale = ::newlocale(LC_CTYPE_MASK, "", locale_t{});
    if (m_locale == locale_t{} && errno != ENOENT) {
        throw CallFailure(errno);
    }
}

EnvironmentLocale::~EnvironmentLocale() {
    if (Exists()) {
        ::freelocale(m_locale);
    }
}

EnvironmentLocale::InUse::InUse(const EnvironmentLocale &locale)
    : m_previous(locale.Exists() ? ::uselocale(locale.m_locale) : locale_t{}) {}

EnvironmentLocale::InUse::~InUse() {
    if (m_previous != locale_t{}) {
        ::uselocale(m_previous);
    }
}
