// Settings files: what the reader finds and the bytes that the writer leaves, against a slow second
// version. Line 1 a digit, lines 2 to 4 section, key and value, then the file.

#include <cstdlib>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "scaler_isp/settings/IniEdit.h"
#include "support/TempFolder.h"
#include "unit/settings/LibraryRead.h"
#include "unit/settings/ProfileFamilies.h"
#include "unit/settings/ReferenceProfile.h"

namespace {

using Charset = TextFileEncoding::Charset;
using reference::Encoding;

struct Names {
    std::wstring section;
    std::wstring key;
    std::wstring value;
};

void CompareInMemory(const std::string &bytes, Charset charset, Encoding encoding,
                     const Names &names) {
    FUZZ_CHECK(ReadByLibrary(bytes, charset, names.section, names.key) ==
                   reference::GetString(bytes, encoding, names.section, names.key, L"dflt"),
               bytes);
    const auto expected = reference::Write(bytes, encoding, names.section, names.key, names.value);
    TextFileEncoding native(charset);
    const IniWrite request{names.key, names.value};
    std::string after;
    const std::size_t written = EditIniBytes(native, bytes, names.section, {&request, 1}, after);
    FUZZ_CHECK(written == (expected ? 1U : 0U), bytes);
    FUZZ_CHECK(after == expected.value_or(bytes), bytes + "\n--- after\n" + after);
}

/// The same through the functions that hosts call, on a file of the disk.
void CompareFile(const std::string &bytes, Encoding encoding, const Names &names) {
    static const TempFolder folder;
    const std::string path = folder.Write("s.ini", bytes);
    const auto expected = reference::Write(bytes, encoding, names.section, names.key, names.value);
    const int written = CpNxWritePrivateProfileStringW(names.section.c_str(), names.key.c_str(),
                                                       names.value.c_str(), Wide(path).c_str());
    FUZZ_CHECK(written == (expected ? 1 : 0), bytes);
    FUZZ_CHECK(folder.Read("s.ini") == expected.value_or(bytes), bytes);
}

std::wstring WideOf(const std::string &text, Encoding encoding) {
    const auto decoded = reference::DecodeUtf8(text);
    std::wstring wide = encoding == Encoding::Utf8 && decoded ? *decoded : Wide(text);
    return wide.substr(0, wide.find(L'\0'));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr std::size_t kLongest = 6000; // several lines longer than a reader accepts
    if (size > kLongest) {
        return -1;
    }
    FuzzInput input(data, size);
    const unsigned int mode = input.Below(4);
    input.Line();
    const Encoding encoding = mode % 2 == 0 ? Encoding::Utf8 : Encoding::Bytes;
    setenv("LC_ALL", encoding == Encoding::Utf8 ? "C.UTF-8" : "C", 1);
    Names names;
    names.section = WideOf(input.Line(), encoding);
    names.key = WideOf(input.Line(), encoding);
    names.value = WideOf(input.Line(), encoding);
    const std::string bytes = input.Rest();
    CompareInMemory(bytes, Charset::Environment, encoding, names);
    CompareInMemory(
        bytes, Charset::Bytes, Encoding::Bytes,
        {Wide(Narrow(names.section)), Wide(Narrow(names.key)), Wide(Narrow(names.value))});
    if (mode >= 2) {
        CompareFile(bytes, encoding, names);
    }
    return 0;
}
