#ifndef SCALER_ISP_COMMON_ENVIRONMENT_LOCALE_H
#define SCALER_ISP_COMMON_ENVIRONMENT_LOCALE_H

#include <string>

/// While it lives, the process uses the locale of the environment; then the former locale returns.
///
/// The character type locale is restored by its own name first: on some systems the name of a mixed
/// locale cannot be given back to setlocale as a whole.
class EnvironmentLocale {
  public:
    EnvironmentLocale();
    ~EnvironmentLocale();
    EnvironmentLocale(const EnvironmentLocale &) = delete;
    EnvironmentLocale &operator=(const EnvironmentLocale &) = delete;

  private:
    std::string m_formerAll;
    std::string m_formerCharacterType;
};

#endif
