#include "support/EnvGuard.h"

#include <cstdlib>

namespace {

void Put(const std::string &name, const std::optional<std::string> &value) {
    if (value) {
        setenv(name.c_str(), value->c_str(), 1);
    } else {
        unsetenv(name.c_str());
    }
}

} // namespace

EnvGuard::EnvGuard(const std::string &name, const std::optional<std::string> &value)
    : m_name(name) {
    if (const char *former = std::getenv(name.c_str())) {
        m_previous = former;
    }
    Put(name, value);
}

EnvGuard::~EnvGuard() {
    Put(m_name, m_previous);
}
