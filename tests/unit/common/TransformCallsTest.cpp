#include "scaler_isp/common/CCpTransform.h"

#include <cerrno>
#include <iconv.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/RealFunction.h"
#include "support/SystemFault.h"

namespace {

using Calls = std::vector<std::string>;

/// What the conversions ask of iconv while it lives. `missing` is a character set that cannot be
/// opened.
class IconvWatch {
  public:
    IconvWatch() {
        current = this;
    }
    ~IconvWatch() {
        current = nullptr;
    }
    IconvWatch(const IconvWatch &) = delete;
    IconvWatch &operator=(const IconvWatch &) = delete;

    Calls calls;
    Calls missing;
    static IconvWatch *current;
};

IconvWatch *IconvWatch::current = nullptr;

void ReportCall(const std::string &call) {
    if (IconvWatch::current != nullptr) {
        IconvWatch::current->calls.push_back(call);
    }
}

} // namespace

// The calls are the promise here, and no result shows them all.
extern "C" iconv_t iconv_open(const char *to, const char *from) {
    static const auto real = RealFunction<iconv_t (*)(const char *, const char *)>("iconv_open");
    ReportCall("open " + std::string(from) + " to " + to);
    if (SystemFault::Strikes("iconv_open")) {
        return reinterpret_cast<iconv_t>(-1);
    }
    if (IconvWatch::current != nullptr) {
        for (const std::string &name : IconvWatch::current->missing) {
            if (name == to || name == from) {
                errno = EINVAL;
                return reinterpret_cast<iconv_t>(-1);
            }
        }
    }
    return real(to, from);
}

extern "C" std::size_t iconv(iconv_t descriptor, char **in, std::size_t *inLeft, char **out,
                             std::size_t *outLeft) {
    static const auto real =
        RealFunction<std::size_t (*)(iconv_t, char **, std::size_t *, char **, std::size_t *)>(
            "iconv");
    ReportCall("convert " + std::to_string(*inLeft) + " into " + std::to_string(*outLeft));
    if (SystemFault::Strikes("iconv")) {
        return static_cast<std::size_t>(-1);
    }
    return real(descriptor, in, inLeft, out, outLeft);
}

extern "C" int iconv_close(iconv_t descriptor) {
    static const auto real = RealFunction<int (*)(iconv_t)>("iconv_close");
    ReportCall("close");
    return real(descriptor);
}

namespace {

TEST(TransformCalls, Each_conversion_opens_converts_once_and_closes) {
    const CCpTransform transform;
    const struct {
        const char *what;
        void (*convert)(const CCpTransform &);
        Calls calls;
    } rows[] = {
        {"to UTF-8",
         [](const CCpTransform &t) {
             EXPECT_EQ(t.ConvertUnicodeStringToUTF8(L"a\u00E4\u20AC"), "a\xC3\xA4\xE2\x82\xAC");
         },
         {"open UTF-32LE to UTF-8", "convert 12 into 10240", "close"}},
        {"from UTF-8",
         [](const CCpTransform &t) {
             EXPECT_EQ(t.ConvertUTF8StringToUnicode("a\xC3\xA4\xE2\x82\xAC"), L"a\u00E4\u20AC");
         },
         {"open UTF-8 to UTF-32LE", "convert 6 into 40960", "close"}},
        {"from UTF-8 by the other name",
         [](const CCpTransform &t) { EXPECT_EQ(t.ConvertStringToWString("abc"), L"abc"); },
         {"open UTF-8 to UTF-32LE", "convert 3 into 40960", "close"}},
        {"nothing",
         [](const CCpTransform &t) { EXPECT_EQ(t.ConvertUnicodeStringToUTF8(L""), ""); },
         {"open UTF-32LE to UTF-8", "convert 0 into 10240", "close"}},
        {"after a NUL",
         [](const CCpTransform &t) {
             EXPECT_EQ(t.ConvertUTF8StringToUnicode(std::string("a\0b", 3)), L"a");
         },
         {"open UTF-8 to UTF-32LE", "convert 3 into 40960", "close"}},
        {"what is no UTF-8",
         [](const CCpTransform &t) { EXPECT_EQ(t.ConvertUTF8StringToUnicode("a\xFF"), L""); },
         {"open UTF-8 to UTF-32LE", "convert 2 into 40960", "close"}},
        {"too much",
         [](const CCpTransform &t) {
             EXPECT_EQ(t.ConvertUnicodeStringToUTF8(std::wstring(10241, L'a')), "");
         },
         {"open UTF-32LE to UTF-8", "convert 40964 into 10240", "close"}},
    };
    for (const auto &row : rows) {
        for (int time = 0; time < 2; ++time) { // nothing is kept for a second time
            IconvWatch watch;
            row.convert(transform);
            EXPECT_EQ(watch.calls, row.calls) << row.what;
        }
    }
}

TEST(TransformCalls, Locale_conversions_do_not_call_iconv) {
    const CCpTransform transform;
    IconvWatch watch;
    EXPECT_EQ(transform.ConvertUnicodeStringToANSI(L"abc"), "abc");
    EXPECT_EQ(transform.ConvertWCHARToCHAR(L"abc"), "abc");
    EXPECT_EQ(transform.ConvertWCHARToANSIString(L"abc"), "abc");
    EXPECT_EQ(transform.ConvertANSIStringToUnicode("abc"), L"abc");
    EXPECT_EQ(transform.ConvertCHARToUnicodeString("abc"), L"abc");
    EXPECT_EQ(watch.calls, Calls{});
}

TEST(TransformCalls, Conversions_return_empty_string_if_iconv_open_fails) {
    const CCpTransform transform;
    IconvWatch watch;
    watch.missing = {"UTF-8"};
    EXPECT_EQ(transform.ConvertUnicodeStringToUTF8(L"abc"), "");
    EXPECT_EQ(transform.ConvertUTF8StringToUnicode("abc"), L"");
    for (const std::string &call : watch.calls) {
        EXPECT_EQ(call.substr(0, 5), "open ") << "nothing is converted or closed";
    }
}

#ifdef __linux__

// Small containers lack the module.
TEST(TransformCalls, WCHAR_T_is_used_if_UTF_32LE_is_missing) {
    const CCpTransform transform;
    const std::wstring text = L"a\u00E4\u20AC\U0010FFFF";
    const std::string utf8 = "a\xC3\xA4\xE2\x82\xAC\xF4\x8F\xBF\xBF";
    IconvWatch watch;
    watch.missing = {"UTF-32LE"};
    EXPECT_EQ(transform.ConvertUnicodeStringToUTF8(text), utf8);
    EXPECT_EQ(transform.ConvertUTF8StringToUnicode(utf8), text);
    EXPECT_EQ(watch.calls, (Calls{"open UTF-32LE to UTF-8", "open WCHAR_T to UTF-8",
                                  "convert 16 into 10240", "close", "open UTF-8 to UTF-32LE",
                                  "open UTF-8 to WCHAR_T", "convert 10 into 40960", "close"}));
    for (const unsigned long value : {0xD800UL, 0x110000UL, 0x80000000UL, 0xFFFFFFFFUL}) {
        const std::wstring outside{L'a', static_cast<wchar_t>(value)};
        EXPECT_EQ(transform.ConvertUnicodeStringToUTF8(outside), "") << std::hex << value;
    }
    for (const char *outside : {"a\xFF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        EXPECT_EQ(transform.ConvertUTF8StringToUnicode(outside), L"") << outside;
    }
}

#endif

} // namespace
