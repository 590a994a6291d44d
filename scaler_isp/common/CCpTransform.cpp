#include "scaler_isp/common/CCpTransform.h"

#include <cwchar>

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/TextConversion.h"

namespace {

constexpr std::size_t kWideCharsForAByte = 4;

std::string ToEnvironmentEncoding(const wchar_t *text) {
    return CatchAll(std::string(),
                    [&] { return EnvironmentTextFromWide(text != nullptr ? text : L""); });
}

} // namespace

CCpTransform::~CCpTransform() = default;

std::string CCpTransform::ConvertUnicodeStringToUTF8(const std::wstring &text) const {
    return CatchAll(std::string(), [&] { return Utf8FromWide(text); });
}

std::wstring CCpTransform::ConvertUTF8StringToUnicode(const std::string &text) const {
    return CatchAll(std::wstring(), [&] { return WideFromUtf8(text); });
}

std::wstring CCpTransform::ConvertStringToWString(const std::string &text) const {
    return ConvertUTF8StringToUnicode(text);
}

std::string CCpTransform::ConvertUnicodeStringToANSI(const std::wstring &text) const {
    return ToEnvironmentEncoding(text.c_str());
}

std::string CCpTransform::ConvertWCHARToCHAR(const wchar_t *text) const {
    return ToEnvironmentEncoding(text);
}

std::string CCpTransform::ConvertWCHARToANSIString(const wchar_t *text) const {
    return ToEnvironmentEncoding(text);
}

// QUIRK ANSI_to_wide_is_measured_before_the_locale_switch: the capacity is measured in the host's
// locale, but the string is converted in the environment's. If the host's locale cannot decode it,
// the capacity is one wide character per byte.
std::wstring CCpTransform::ConvertANSIStringToUnicode(const std::string &text) const {
    return CatchAll(std::wstring(), [&] {
        std::mbstate_t state{};
        const char *source = text.c_str();
        const std::size_t measured = std::mbsrtowcs(nullptr, &source, 0, &state);
        const bool readable = measured != static_cast<std::size_t>(-1);
        return WideFromEnvironmentText(text.c_str(), readable ? measured : text.size());
    });
}

std::wstring CCpTransform::ConvertCHARToUnicodeString(const char *text) const {
    return CatchAll(std::wstring(), [&] {
        const std::string bytes = text != nullptr ? text : "";
        return WideFromEnvironmentText(bytes.c_str(), kWideCharsForAByte * bytes.size());
    });
}
