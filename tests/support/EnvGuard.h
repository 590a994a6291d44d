#ifndef SCALER_ISP_TESTS_SUPPORT_ENV_GUARD_H
#define SCALER_ISP_TESTS_SUPPORT_ENV_GUARD_H

#include <optional>
#include <string>

/// Sets or removes an environment variable while it lives; then the former state returns.
class EnvGuard {
  public:
    /// \param value  the new value; nothing removes the variable.
    EnvGuard(const std::string &name, const std::optional<std::string> &value);
    ~EnvGuard();
    EnvGuard(const EnvGuard &) = delete;
    EnvGuard &operator=(const EnvGuard &) = delete;

  private:
    std::string m_name;
    std::optional<std::string> m_previous;
};

#endif
