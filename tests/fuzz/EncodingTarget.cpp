// The encodings: against a conversion descriptor of its own for each input, and there and back.

#include <cstdlib>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "scaler_isp/common/CCpTransform.h"
#include "unit/common/BareIconv.h"

namespace {

constexpr std::size_t kUtf8Capacity = 10240;

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
