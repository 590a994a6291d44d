// The iconv pair of CCpTransform, against the plain calls: open, convert, close, one string built.

#include <array>
#include <cstddef>
#include <iconv.h>
#include <string>

#include <benchmark/benchmark.h>

#include "FaultCounter.h"
#include "scaler_isp/common/CCpTransform.h"

namespace {

/// 60 characters, wide and as UTF-8.
struct Text {
    explicit Text(const wchar_t *wide)
        : strWide(wide), strUtf8(CCpTransform().ConvertUnicodeStringToUTF8(strWide)) {}
    std::wstring strWide;
    std::string strUtf8;
};

const Text kPlain(L"/Volumes/Factory/Display-Line-04/firmware/panel-FHD-v2.1.bin");
const Text kMixed(L"/Volumes/Werk/Anzeige-Größe/显示器固件/panel-FHD-v2.13_abcdef.bin");

template <class Char, class From>
std::basic_string<Char> BareIconv(const char *to, const char *from, const From &text) {
    std::array<Char, 10240>
        buffer; // uninitialised, because the plain call does not need it cleared
    iconv_t descriptor = iconv_open(to, from);
    auto *in = reinterpret_cast<char *>(const_cast<typename From::value_type *>(text.data()));
    std::size_t inLeft = text.size() * sizeof(typename From::value_type);
    auto *out = reinterpret_cast<char *>(buffer.data());
    std::size_t outLeft = sizeof buffer;
    const bool converted = iconv(descriptor, &in, &inLeft, &out, &outLeft) != std::size_t(-1);
    iconv_close(descriptor);
    const std::size_t count = (sizeof buffer - outLeft) / sizeof(Char);
    return converted ? std::basic_string<Char>(buffer.data(), count) : std::basic_string<Char>();
}

std::string BareToUtf8(const Text &text) {
    return BareIconv<char>("UTF-8", "UTF-32LE", text.strWide);
}

std::wstring BareToWide(const Text &text) {
    return BareIconv<wchar_t>("UTF-32LE", "UTF-8", text.strUtf8);
}

std::string ToUtf8(const Text &text) {
    return CCpTransform().ConvertUnicodeStringToUTF8(text.strWide);
}

std::wstring ToWide(const Text &text) {
    return CCpTransform().ConvertUTF8StringToUnicode(text.strUtf8);
}

std::wstring StringToWString(const Text &text) {
    return CCpTransform().ConvertStringToWString(text.strUtf8);
}

template <class Convert, class Expected>
void Run(benchmark::State &state, Convert convert, const Text &text, const Expected &expected) {
    if (text.strWide.size() != 60 || convert(text) != expected) {
        state.SkipWithError("wrong text");
        return;
    }
    const FaultCounter faults(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(convert(text));
    }
}

#define PAIR(ROW, SUBJECT, PEER, TEXT, EXPECTED)                                                   \
    BENCHMARK_CAPTURE(Run, , SUBJECT, TEXT, TEXT.EXPECTED)->Name(ROW ":subject");                  \
    BENCHMARK_CAPTURE(Run, , PEER, TEXT, TEXT.EXPECTED)->Name(ROW ":peer")

PAIR("to_utf8_plain", ToUtf8, BareToUtf8, kPlain, strUtf8);
PAIR("to_utf8_mixed", ToUtf8, BareToUtf8, kMixed, strUtf8);
PAIR("to_wide_plain", ToWide, BareToWide, kPlain, strWide);
PAIR("to_wide_mixed", ToWide, BareToWide, kMixed, strWide);
PAIR("string_to_wstring_mixed", StringToWString, BareToWide, kMixed, strWide);

} // namespace
