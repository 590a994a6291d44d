#include "scaler_isp/common/EnvironmentLocale.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cwchar>
#include <langinfo.h>
#include <mutex>
#include <string>

#include "scaler_isp/common/CallFailure.h"

namespace {

/// What newlocale reads of the environment, one value a line; an empty variable counts as absent.
/// In LOCPATH glibc looks for locales.
std::string EnvironmentValues() {
    std::string values;
    for (const char *variable : {"LC_ALL", "LC_CTYPE", "LANG", "LOCPATH"}) {
        const char *value = std::getenv(variable);
        (values += value != nullptr ? value : "") += '\n';
    }
    return values;
}

/// The locale of the last environment. Loading one takes longer than a call otherwise does.
class KeptLocale {
  public:
    /// Null if the environment is another one now.
    LocalePointer Find(const std::string &values) {
        const std::lock_guard lock(m_mutex);
        return values == m_values ? m_locale : nullptr;
    }

    void Replace(std::string &values, LocalePointer locale) {
        const std::lock_guard lock(m_mutex);
        m_values.swap(values);
        m_locale.swap(locale);
    }

  private:
    std::mutex m_mutex;
    std::string m_values;
    LocalePointer m_locale;
};

// Not a local object of a function: objects of a host may still convert text when they are
// destroyed.
KeptLocale g_kept;

// glibc reports an impossible name (with a slash) as EINVAL. From the second request on it
// remembers that a locale is missing, makes no system call and leaves errno unchanged.
bool SaysNoSuchLocale(int error) {
    return error == ENOENT || error == EINVAL || error == 0;
}

LocalePointer MakeLocale() {
    errno = 0;
    const locale_t locale = ::newlocale(LC_CTYPE_MASK, "", locale_t{});
    if (locale == locale_t{} && !SaysNoSuchLocale(errno)) {
        throw CallFailure(errno);
    }
    return {locale, [](locale_t made) {
                if (made != locale_t{}) {
                    ::freelocale(made);
                }
            }};
}

/// Whether the current locale can encode a character outside ASCII. If glibc has no memory to load
/// a character set, the locale object behaves as plain ASCII for the rest of its life.
bool CharsetIsLoaded() {
    constexpr std::array kSamples = {L'\u00E9', L'\u03B1', L'\u0430', L'\u3042'};
    return std::any_of(kSamples.begin(), kSamples.end(), [](wchar_t sample) {
        std::array<char, MB_LEN_MAX> bytes{};
        std::mbstate_t state{};
        return std::wcrtomb(bytes.data(), sample, &state) != static_cast<std::size_t>(-1);
    });
}

} // namespace

EnvironmentLocale::EnvironmentLocale() {
    std::string values = EnvironmentValues();
    m_locale = g_kept.Find(values);
    if (m_locale != nullptr) {
        return;
    }
    m_locale = MakeLocale();
    if (!Exists()) {
        return;
    }
    const InUse use(*this);
    if (CharsetIsLoaded()) {
        g_kept.Replace(values, m_locale);
    }
}

EnvironmentLocale::~EnvironmentLocale() = default;

const char *EnvironmentLocale::Charset() const {
    return ::nl_langinfo_l(CODESET, m_locale.get());
}

EnvironmentLocale::InUse::InUse(const EnvironmentLocale &locale)
    : m_previous(locale.Exists() ? ::uselocale(locale.m_locale.get()) : locale_t{}) {}

EnvironmentLocale::InUse::~InUse() {
    if (m_previous != locale_t{}) {
        ::uselocale(m_previous);
    }
}
