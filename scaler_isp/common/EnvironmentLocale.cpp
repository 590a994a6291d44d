#include "scaler_isp/common/EnvironmentLocale.h"

#include <cerrno>
#include <langinfo.h>

#include "scaler_isp/common/CallFailure.h"

namespace {

// glibc reports an impossible name (with a slash) as EINVAL. From the second request on it
// remembers that a locale is missing, makes no system call and leaves errno unchanged.
bool SaysNoSuchLocale(int error) {
    return error == ENOENT || error == EINVAL || error == 0;
}

} // namespace

EnvironmentLocale::EnvironmentLocale() {
    errno = 0;
    m_locale = ::newlocale(LC_CTYPE_MASK, "", locale_t{});
    if (m_locale == locale_t{} && !SaysNoSuchLocale(errno)) {
        throw CallFailure(errno);
    }
}

EnvironmentLocale::~EnvironmentLocale() {
    if (Exists()) {
        ::freelocale(m_locale);
    }
}

const char *EnvironmentLocale::Charset() const {
    return ::nl_langinfo_l(CODESET, m_locale);
}

EnvironmentLocale::InUse::InUse(const EnvironmentLocale &locale)
    : m_previous(locale.Exists() ? ::uselocale(locale.m_locale) : locale_t{}) {}

EnvironmentLocale::InUse::~InUse() {
    if (m_previous != locale_t{}) {
        ::uselocale(m_previous);
    }
}
