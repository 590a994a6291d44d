#include "scaler_isp/common/EnvironmentLocale.h"

#include <clocale>

namespace {

// setlocale's text lives until its next call, so it is copied at once.
std::string CurrentName(int category) {
    const char *name = std::setlocale(category, nullptr);
    return name != nullptr ? name : "";
}

} // namespace

EnvironmentLocale::EnvironmentLocale()
    : m_formerAll(CurrentName(LC_ALL)), m_formerCharacterType(CurrentName(LC_CTYPE)) {
    if (const char *all = std::setlocale(LC_ALL, "")) {
        // A mixed environment has a composite name that LC_CTYPE refuses; it is right already then.
        const std::string name = all;
        std::setlocale(LC_CTYPE, name.c_str());
    } else {
        // One category that does not exist (LC_TIME=bogus) must not cost us the encoding.
        std::setlocale(LC_CTYPE, "");
    }
}

EnvironmentLocale::~EnvironmentLocale() {
    std::setlocale(LC_CTYPE, m_formerCharacterType.c_str());
    std::setlocale(LC_ALL, m_formerAll.c_str());
}
