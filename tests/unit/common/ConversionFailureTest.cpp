#include "scaler_isp/common/TextConversion.h"

#include <cerrno>
#include <functional>
#include <initializer_list>

#include <gtest/gtest.h>

#include "scaler_isp/common/CCpTransform.h"
#include "scaler_isp/common/CallFailure.h"
#include "support/SystemFault.h"
#include "support/TestLocale.h"

namespace {

constexpr int kNothingThrown = 0;
constexpr const char *kNeverKept = "C"; // each conversion makes this locale anew
constexpr int kTextsErrors[] = {EILSEQ, EINVAL, E2BIG};
constexpr int kSystemsErrors[] = {ENOMEM, EMFILE, EIO};

/// What a conversion gave: a size, and the error that it threw.
struct Outcome {
    std::size_t size = 0;
    int error = kNothingThrown;
};

Outcome Try(const std::function<std::size_t()> &convert) {
    Outcome outcome;
    try {
        outcome.size = convert();
    } catch (const CallFailure &failure) {
        outcome.error = failure.Error();
    }
    return outcome;
}

/// The four conversions as the library calls them, and the functions that each needs.
struct Row {
    const char *name;
    std::function<std::size_t()> convert;
    std::initializer_list<const char *> opens;
    const char *converts;
};

const Row kRows[] = {
    {"Utf8FromWide", [] { return Utf8FromWide(L"abc").size(); }, {"iconv_open"}, "iconv"},
    {"WideFromUtf8", [] { return WideFromUtf8("abc").size(); }, {"iconv_open"}, "iconv"},
    {"EnvironmentTextFromWide",
     [] { return EnvironmentTextFromWide(L"abc").size(); },
     {"newlocale"},
     "wcsrtombs"},
    {"WideFromEnvironmentText",
     [] { return WideFromEnvironmentText("abc", 3).size(); },
     {"newlocale"},
     "mbsrtowcs"},
};

const CCpTransform kTransform;

/// The exported functions; none of them throws.
struct ExportedRow {
    std::function<std::size_t()> convert;
    std::initializer_list<const char *> functions;
};

const ExportedRow kExported[] = {
    {[] { return kTransform.ConvertUnicodeStringToUTF8(L"abc").size(); }, {"iconv_open", "iconv"}},
    {[] { return kTransform.ConvertUTF8StringToUnicode("abc").size(); }, {"iconv_open", "iconv"}},
    {[] { return kTransform.ConvertStringToWString("abc").size(); }, {"iconv_open", "iconv"}},
    {[] { return kTransform.ConvertUnicodeStringToANSI(L"abc").size(); },
     {"newlocale", "wcsrtombs"}},
    {[] { return kTransform.ConvertWCHARToCHAR(L"abc").size(); }, {"newlocale", "wcsrtombs"}},
    {[] { return kTransform.ConvertWCHARToANSIString(L"abc").size(); }, {"newlocale", "wcsrtombs"}},
    {[] { return kTransform.ConvertANSIStringToUnicode("abc").size(); },
     {"newlocale", "mbsrtowcs"}},
    {[] { return kTransform.ConvertCHARToUnicodeString("abc").size(); },
     {"newlocale", "mbsrtowcs"}},
};

TEST(ConversionFailure, Conversion_returns_empty_string_if_iconv_rejects_input) {
    for (const Row &row : {kRows[0], kRows[1]}) {
        for (const int error : kTextsErrors) {
            const SystemFault fault(row.converts, error);
            const Outcome outcome = Try(row.convert);
            EXPECT_TRUE(fault.HasStruck()) << row.name;
            EXPECT_EQ(outcome.error, kNothingThrown) << row.name << " " << error;
            EXPECT_EQ(outcome.size, 0U) << row.name << " " << error;
        }
    }
}

TEST(ConversionFailure, Conversion_returns_empty_string_if_C_library_rejects_input) {
    for (const Row &row : {kRows[2], kRows[3]}) {
        const SystemFault fault(row.converts, EILSEQ);
        const Outcome outcome = Try(row.convert);
        EXPECT_TRUE(fault.HasStruck()) << row.name;
        EXPECT_EQ(outcome.error, kNothingThrown) << row.name;
        EXPECT_EQ(outcome.size, 0U) << row.name;
    }
}

TEST(ConversionFailure, System_failure_throws_its_error) {
    const EnvironmentLocaleGuard environment(kNeverKept);
    for (const Row &row : kRows) {
        for (const int error : kSystemsErrors) {
            const SystemFault fault(row.converts, error);
            EXPECT_EQ(Try(row.convert).error, error) << row.name << " " << row.converts;
        }
        for (const char *open : row.opens) {
            for (const int error : kSystemsErrors) {
                const SystemFault fault(open, error);
                EXPECT_EQ(Try(row.convert).error, error) << row.name << " " << open;
            }
        }
    }
}

TEST(ConversionFailure, Second_call_of_conversion_fails_like_first) {
    for (const int error : kSystemsErrors) { // the first call measures
        const SystemFault fault("wcsrtombs", error, 1);
        EXPECT_EQ(Try(kRows[2].convert).error, error);
        EXPECT_TRUE(fault.HasStruck());
    }
}

TEST(ConversionFailure, Charset_that_cannot_be_opened_throws_for_any_reason) {
    for (const int error : {EINVAL, ENOENT}) {
        const SystemFault fault("iconv_open", error);
        EXPECT_EQ(Try(kRows[0].convert).error, error);
        EXPECT_EQ(Try(kRows[1].convert).error, error);
    }
}

TEST(ConversionFailure, Charset_of_environment_is_empty_text_if_unknown) {
    const EnvironmentLocaleGuard environment("C.UTF-8");
    EXPECT_EQ(WideFromEnvironmentCharset("abc"), L"abc");
    for (const int error : {EINVAL, EMFILE}) {
        const SystemFault fault("iconv_open", error);
        const Outcome outcome = Try([] { return WideFromEnvironmentCharset("abc").size(); });
        EXPECT_EQ(outcome.size, 0U);
        EXPECT_EQ(outcome.error, error == EINVAL ? kNothingThrown : error);
    }
}

TEST(ConversionFailure, Charset_of_missing_locale_is_empty_text) {
    const EnvironmentLocaleGuard environment("xx_YY.none");
    EXPECT_EQ(WideFromEnvironmentCharset("abc"), L"");
}

TEST(ConversionFailure, Missing_locale_keeps_current_locale) {
    for (const int error : {ENOENT, EINVAL, 0}) {
        const EnvironmentLocaleGuard environment(kNeverKept);
        const SystemFault fault("newlocale", error);
        EXPECT_EQ(EnvironmentTextFromWide(L"abc"), "abc") << error;
        EXPECT_EQ(WideFromEnvironmentText("abc", 3), L"abc") << error;
#ifdef __linux__
        // This program runs in the C locale.
        EXPECT_EQ(EnvironmentTextFromWide(L"\u00E9"), "") << error;
        EXPECT_EQ(WideFromEnvironmentText("\xC3\xA9", 2), L"") << error;
#endif
        EXPECT_TRUE(fault.HasStruck());
    }
    EXPECT_EQ(EnvironmentTextFromWide(L"\u00E9"), "\xC3\xA9");
}

TEST(ConversionFailure, Exported_functions_return_empty_string_for_every_failure) {
    const EnvironmentLocaleGuard environment(kNeverKept);
    for (const ExportedRow &row : kExported) {
        for (const char *function : row.functions) {
            for (const int error : {EILSEQ, EINVAL, E2BIG, ENOMEM, EMFILE, EIO}) {
                if (function == std::string("newlocale") && error == EINVAL) {
                    continue; // a name that can be none: the locale in force stays
                }
                const SystemFault fault(function, error);
                const Outcome outcome = Try(row.convert);
                EXPECT_TRUE(fault.HasStruck()) << function;
                EXPECT_EQ(outcome.error, kNothingThrown) << function << " " << error;
                EXPECT_EQ(outcome.size, 0U) << function << " " << error;
            }
        }
        EXPECT_EQ(row.convert(), 3U);
    }
}

} // namespace
