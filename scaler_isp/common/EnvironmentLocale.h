#ifndef SCALER_ISP_COMMON_ENVIRONMENT_LOCALE_H
#define SCALER_ISP_COMMON_ENVIRONMENT_LOCALE_H

#include <locale.h> // NOLINT(*-deprecated-headers): locale_t is not in <clocale>
#include <memory>
#include <type_traits>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

using LocalePointer = std::shared_ptr<std::remove_pointer_t<locale_t>>;

/// The character encoding that the environment names (LC_ALL, LC_CTYPE, LANG), as a separate locale
/// object (newlocale, POSIX). The host's setlocale and uselocale do not affect it, and it does not
/// affect the host.
///
/// Only LC_CTYPE is loaded, because an unknown LC_TIME must not prevent the conversion.
///
/// The object of the last environment is kept until the environment names another locale or the
/// library is unloaded. Any thread may make and use an EnvironmentLocale.
class EnvironmentLocale {
  public:
    /// Throws CallFailure if the locale cannot be created, unless the reason is that the
    /// environment names one that does not exist.
    EnvironmentLocale();
    ~EnvironmentLocale();
    EnvironmentLocale(const EnvironmentLocale &) = delete;
    EnvironmentLocale &operator=(const EnvironmentLocale &) = delete;

    /// False if the environment names a locale that does not exist.
    bool Exists() const {
        return m_locale != nullptr;
    }

    /// The name of its character set for iconv. REQUIRES: Exists().
    const char *Charset() const;

    /// During its lifetime, the multibyte functions of this thread use the locale; the destructor
    /// restores the previous one. If the locale does not exist, the thread's current one stays.
    class InUse {
      public:
        explicit InUse(const EnvironmentLocale &locale);
        ~InUse();
        InUse(const InUse &) = delete;
        InUse &operator=(const InUse &) = delete;

      private:
        locale_t m_previous;
    };

  private:
    LocalePointer m_locale;
};

#endif
