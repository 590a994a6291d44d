#ifndef SCALER_ISP_COMMON_ENVIRONMENT_LOCALE_H
#define SCALER_ISP_COMMON_ENVIRONMENT_LOCALE_H

#include <locale.h> // NOLINT(*-deprecated-headers): locale_t is not in <clocale>
#if __has_include(<xlocale.h>)
#include <xlocale.h>
#endif

/// The character encoding that the environment names (LC_ALL, LC_CTYPE, LANG), as a locale of its
/// own (newlocale, POSIX). Neither the host's setlocale nor its uselocale affects it, and the host
/// sees nothing of it.
///
/// Only the character type is asked for: an unknown LC_TIME must not cost the encoding.
class EnvironmentLocale {
  public:
    /// Throws CallFailure if the locale could not be made for another reason than that the
    /// environment names none that exists.
    EnvironmentLocale();
    ~EnvironmentLocale();
    EnvironmentLocale(const EnvironmentLocale &) = delete;
    EnvironmentLocale &operator=(const EnvironmentLocale &) = delete;

    /// False if the environment names a locale that does not exist.
    bool Exists() const {
        return m_locale != locale_t{};
    }

    /// iconv's name of its character set. Call it only if the locale exists.
    const char *Charset() const;

    /// While it lives, the multibyte functions of this thread use the locale. If it does not exist,
    /// the thread's current locale stays.
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
    locale_t m_locale;
};

#endif
