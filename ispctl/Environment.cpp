#include "Environment.h"

#include <clocale>
#include <cwchar>
#include <langinfo.h>
#include <memory>
#include <type_traits>

#if defined(__APPLE__)
#include <xlocale.h>
#endif

namespace ispctl {
namespace {

struct Deleter {
    void operator()(locale_t locale) const {
        ::freelocale(locale);
    }
};
using Locale = std::unique_ptr<std::remove_pointer_t<locale_t>, Deleter>;

// A locale object, because the process itself stays in the locale C: number formats and the like
// must not depend on the environment.
Locale EnvironmentLocale() {
    Locale locale(::newlocale(LC_CTYPE_MASK, "", nullptr));
    return locale ? std::move(locale) : Locale(::newlocale(LC_CTYPE_MASK, "C", nullptr));
}

} // namespace

std::string EnvironmentEncoding() {
    const Locale locale = EnvironmentLocale();
    return locale ? ::nl_langinfo_l(CODESET, locale.get()) : "";
}

bool IsUtf8Environment() {
    return EnvironmentEncoding() == "UTF-8";
}

bool IsTextOfEnvironment(const std::filesystem::path &path) {
    const Locale locale = EnvironmentLocale();
    if (!locale) {
        return false;
    }
    const locale_t previous = ::uselocale(locale.get());
    std::mbstate_t state{};
    const char *bytes = path.c_str();
    const bool isText = std::mbsrtowcs(nullptr, &bytes, 0, &state) != static_cast<std::size_t>(-1);
    ::uselocale(previous);
    return isText;
}

} // namespace ispctl
