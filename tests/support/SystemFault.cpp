#include "support/SystemFault.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <dirent.h>
#include <locale.h> // NOLINT(*-deprecated-headers): locale_t is not in <clocale>
#if __has_include(<xlocale.h>)
#include <xlocale.h> // macOS declares locale_t there
#endif

#include "support/RealFunction.h"

namespace {

constexpr std::size_t kFailed = static_cast<std::size_t>(-1);
constexpr const char *kUnresolved = "/as/far/as/it/exists";

SystemFault *g_current = nullptr;

} // namespace

SystemFault::SystemFault(const std::string &function, int error, int successes, int failures)
    : m_function(function), m_error(error), m_successes(successes), m_failures(failures) {
    g_current = this;
}

SystemFault::~SystemFault() {
    g_current = nullptr;
}

bool SystemFault::Strikes(const char *function) {
    if (g_current == nullptr || g_current->m_function != function || g_current->m_successes-- > 0) {
        return false;
    }
    g_current->m_successes = 0;
    if (g_current->m_failures == 0) {
        return false;
    }
    g_current->m_failures -= g_current->m_failures == kAlways ? 0 : 1;
    g_current->m_struck = true;
    errno = g_current->m_error;
    return true;
}

extern "C" locale_t newlocale(int mask, const char *name,
                              locale_t base) SCALER_ISP_SYSTEM_NOEXCEPT {
    static const auto real = RealFunction<locale_t (*)(int, const char *, locale_t)>("newlocale");
    return SystemFault::Strikes("newlocale") ? locale_t{} : real(mask, name, base);
}

extern "C" std::size_t wcsrtombs(char *to, const wchar_t **from, std::size_t size,
                                 std::mbstate_t *state) SCALER_ISP_SYSTEM_NOEXCEPT {
    static const auto real =
        RealFunction<std::size_t (*)(char *, const wchar_t **, std::size_t, std::mbstate_t *)>(
            "wcsrtombs");
    return SystemFault::Strikes("wcsrtombs") ? kFailed : real(to, from, size, state);
}

extern "C" std::size_t mbsrtowcs(wchar_t *to, const char **from, std::size_t size,
                                 std::mbstate_t *state) SCALER_ISP_SYSTEM_NOEXCEPT {
    static const auto real =
        RealFunction<std::size_t (*)(wchar_t *, const char **, std::size_t, std::mbstate_t *)>(
            "mbsrtowcs");
    return SystemFault::Strikes("mbsrtowcs") ? kFailed : real(to, from, size, state);
}

extern "C" char *realpath(const char *path, char *resolved) SCALER_ISP_SYSTEM_NOEXCEPT {
    static const auto real = RealFunction<char *(*)(const char *, char *)>("realpath");
    if (!SystemFault::Strikes("realpath")) {
        return real(path, resolved);
    }
    if (resolved != nullptr) {
        std::strcpy(resolved, kUnresolved);
    }
    return nullptr;
}

extern "C" DIR *opendir(const char *name) {
    static const auto real = RealFunction<DIR *(*)(const char *)>("opendir");
    return SystemFault::Strikes("opendir") ? nullptr : real(name);
}

extern "C" dirent *readdir(DIR *directory) {
    static const auto real = RealFunction<dirent *(*)(DIR *)>("readdir");
    return SystemFault::Strikes("readdir") ? nullptr : real(directory);
}
