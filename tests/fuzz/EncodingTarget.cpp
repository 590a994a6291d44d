// The encodings: against a conversion descriptor opened afresh for each input, and there and back.

#include <cstdlib>
#include <iconv.h>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "scaler_isp/common/CCpTransform.h"

namespace {

constexpr std::size_t kUtf8Capacity = 10240;

/// RETURNS the converted bytes; nothing if the input is invalid or fills the capacity.
std::string BareIconv(const char *to, const char *from, std::string input, std::size_t capacity) {
    iconv_t descriptor = iconv_open(to, from);
    std::string output(capacity, '\0');
    char *in = input.data();
    char *out = output.data();
    std::size_t inLeft = input.size();
    std::size_t outLeft = capacity;
    const std::size_t result = iconv(descriptor, &in, &inLeft, &out, &outLeft);
    iconv_close(descriptor);
    output.resize(capacity - outLeft);
    return result == static_cast<std::size_t>(-1) || output.size() == capacity ? "" : output;
}

std::wstring FromLittleEndian(const std::string &bytes) {
    std::wstring text;
    for (std::size_t at = 0; at + 4 <= bytes.size(); at += 4) {
        unsigned long value = 0;
        for (std::size_t i = 4; i-- > 0;) {
            value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
        }
        text += static_cast<wchar_t>(value);
    }
    return text;
}

std::string ToLittleEndian(const std::wstring &text) {
    std::string bytes;
    for (const wchar_t character : text) {
        for (int shift = 0; shift < 32; shift += 8) {
            bytes += static_cast<char>(static_cast<unsigned long>(character) >> shift & 0xFFU);
        }
    }
    return bytes;
}

void CheckUtf8(const CCpTransform &transform, const std::string &bytes) {
    const std::wstring wide = transform.ConvertUTF8StringToUnicode(bytes);
    const std::wstring expected =
        FromLittleEndian(BareIconv("UTF-32LE", "UTF-8", bytes, 4 * kUtf8Capacity));
    FUZZ_CHECK(wide == expected.c_str(), bytes);
    FUZZ_CHECK(transform.ConvertStringToWString(bytes) == wide, bytes);
    if (!wide.empty() && bytes.size() < kUtf8Capacity) {
        FUZZ_CHECK(transform.ConvertUnicodeStringToUTF8(wide) == bytes.c_str(), bytes);
    }
}

void CheckWide(const CCpTransform &transform, const std::wstring &wide) {
    const std::string bytes = transform.ConvertUnicodeStringToUTF8(wide);
    const std::string expected =
        BareIconv("UTF-8", "UTF-32LE", ToLittleEndian(wide), kUtf8Capacity);
    FUZZ_CHECK(bytes == expected.c_str(), expected);
    if (!bytes.empty()) {
        FUZZ_CHECK(transform.ConvertUTF8StringToUnicode(bytes) == wide.c_str(), bytes);
    }
}

void CheckLocale(const CCpTransform &transform, const std::string &bytes) {
    const std::wstring wide = transform.ConvertCHARToUnicodeString(bytes.c_str());
    if (!wide.empty()) {
        FUZZ_CHECK(transform.ConvertUnicodeStringToANSI(wide) == bytes.c_str(), bytes);
        FUZZ_CHECK(transform.ConvertWCHARToCHAR(wide.c_str()) == bytes.c_str(), bytes);
        FUZZ_CHECK(transform.ConvertWCHARToANSIString(wide.c_str()) == bytes.c_str(), bytes);
    }
    const std::wstring measured = transform.ConvertANSIStringToUnicode(bytes);
    FUZZ_CHECK(wide.empty() || measured == wide, bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    FuzzInput input(data, size);
    setenv("LC_ALL", input.Below(2) == 0 ? "C.UTF-8" : "C", 1);
    const std::string bytes = input.Rest();
    const CCpTransform transform;
    CheckUtf8(transform, bytes);
    CheckWide(transform, FromLittleEndian(bytes));
    CheckLocale(transform, bytes);
    return 0;
}
