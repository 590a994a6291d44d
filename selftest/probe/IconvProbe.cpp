#include <cerrno>
#include <cstring>
#include <iconv.h>

#include "probe/Groups.h"
#include "probe/Platform.h"
#include "probe/Scratch.h"

namespace {

constexpr const char *kUtf8 = "UTF-8";
constexpr const char *kWide = "UTF-32LE";
/// From this version of macOS on, iconv is not GNU's.
constexpr int kFirstVersionOfNewIconv = 14;

/// "success" or the reason; for the latter nothing of the output matters.
std::string Convert(const char *to, const char *from, const std::string &input) {
    const iconv_t descriptor = ::iconv_open(to, from);
    if (descriptor == reinterpret_cast<iconv_t>(-1)) {
        return "not opened: " + ErrorName(errno);
    }
    std::string bytes = input;
    char output[64];
    char *in = bytes.data();
    char *out = output;
    std::size_t left = bytes.size();
    std::size_t capacity = sizeof output;
    errno = 0;
    const std::size_t converted = ::iconv(descriptor, &in, &left, &out, &capacity);
    const int error = converted == static_cast<std::size_t>(-1) ? errno : 0;
    ::iconv_close(descriptor);
    return error == 0 ? "success " + std::string(output, sizeof output - capacity)
                      : ErrorName(error);
}

std::string Wide(char32_t character) {
    return {reinterpret_cast<const char *>(&character), sizeof character};
}

/// What our pages say of values above U+10FFFF.
void ProbeValueAboveUnicode(Results &results, const std::string &check, const std::string &found) {
    results.Note(check, found);
    results.Assume(check + "_is",
                   PlatformAssumptionSince(kFirstVersionOfNewIconv, "rejected", "accepted"),
                   found.starts_with("success") ? "accepted" : "rejected");
}

} // namespace

void ProbeIconv(const Surroundings &surroundings) {
    Results &results = surroundings.results;
    results.Assume("wide_to_UTF-8", "success \xC3\xA9", Convert(kUtf8, kWide, Wide(U'\u00E9')));
    results.Assume("UTF-8_to_wide", "success " + Wide(U'\u00E9'),
                   Convert(kWide, kUtf8, "\xC3\xA9"));
    results.Assume("invalid_UTF-8", "EILSEQ", Convert(kWide, kUtf8, "\xC3("));
    results.Assume("incomplete_UTF-8", "EINVAL", Convert(kWide, kUtf8, "a\xC3"));
    results.Assume("overlong_UTF-8", "EILSEQ", Convert(kWide, kUtf8, "\xC0\x80"));
    ProbeValueAboveUnicode(results, "wide_110000", Convert(kUtf8, kWide, Wide(0x110000)));
    ProbeValueAboveUnicode(results, "UTF-8_of_110000", Convert(kWide, kUtf8, "\xF4\x90\x80\x80"));
    results.Note("UTF-8_of_five_bytes", Convert(kWide, kUtf8, "\xF8\x88\x80\x80\x80"));
    results.Note("wide_surrogate", Convert(kUtf8, kWide, Wide(0xD800)));
    results.Note("UTF-8_of_surrogate", Convert(kWide, kUtf8, "\xED\xA0\x80"));
}
