#include "Environment.h"

#include <clocale>
#include <cwchar>
#include <langinfo.h>
#include <memory>
#include <type_traits>

#if defined(__APPLE__)
#include <xlocale.h>
#endif

#include "Utf8.h"

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
    return CountCharactersOfEnvironment(path.native()).has_value();
}

bool HasNameInRecords(const std::filesystem::path &directory) {
#if defined(__APPLE__)
    return IsTextOfEnvironment(directory);
#else
    return IsTextOfEnvironment(directory) || WideFromUtf8(directory.native()).has_value();
#endif
}

std::optional<std::size_t> CountCharactersOfEnvironment(const std::string &text) {
    const Locale locale = EnvironmentLocale();
    if (!locale) {
        return std::nullopt;
    }
    const locale_t previous = ::uselocale(locale.get());
    std::mbstate_t state{};
    const char *bytes = text.c_str();
    const std::size_t count = std::mbsrtowcs(nullptr, &bytes, 0, &state);
    ::uselocale(previous);
    return count != static_cast<std::size_t>(-1) ? std::optional(count) : std::nullopt;
}

} // namespace ispctl
