// Byte lists written as text against a slow second reader.

#include <algorithm>
#include <vector>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "scaler_isp/common/CommandText.h"
#include "unit/common/CommandTextReference.h"

namespace {

using Converter = int (*)(wchar_t *, unsigned int, unsigned char *, unsigned int);
using Reference = reference::Bytes (*)(const std::wstring &, std::size_t);

constexpr unsigned int kWordChars = 256;

/// One character per byte; the last values stand for characters far outside ASCII.
std::wstring Widened(const std::string &bytes) {
    std::wstring text;
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        text += static_cast<wchar_t>(value < 0xF8 ? value : 0x4E00 + value);
    }
    return text;
}

/// A copy of exactly the text, so that a read after its end is seen.
std::vector<wchar_t> Exact(const std::wstring &text) {
    return {text.begin(), text.end()};
}

void CompareTokens(const std::wstring &text, const std::string &shown) {
    std::vector<wchar_t> buffer = Exact(text);
    for (std::size_t start = 0; start <= text.size(); ++start) {
        const reference::Token expected = reference::NextToken(text, start);
        auto pos = static_cast<unsigned int>(start);
        wchar_t word[kWordChars + 1] = {};
        const int result = GetNextWord(buffer.data(), pos, static_cast<unsigned int>(text.size()),
                                       word, kWordChars);
        FUZZ_CHECK(result == expected.result && pos == expected.next &&
                       expected.word.substr(0, kWordChars) == word,
                   shown + "\ntoken at " + std::to_string(start));
    }
}

void CompareValues(const std::wstring &text, const std::wstring *defines,
                   const std::string &shown) {
    std::vector<wchar_t> buffer = Exact(text);
    std::wstring names = defines != nullptr ? *defines : L"";
    for (std::size_t start = 0; start <= text.size();) {
        const reference::Value expected = reference::NextValue(text, start, defines);
        auto pos = static_cast<unsigned int>(start);
        unsigned int number = 4711;
        const unsigned int result =
            FindNextBytes(buffer.data(), pos, static_cast<unsigned int>(text.size()),
                          defines != nullptr ? names.data() : nullptr, &number);
        FUZZ_CHECK(result == static_cast<unsigned int>(expected.result) && pos == expected.next &&
                       number == expected.number.value_or(4711),
                   shown + "\nvalue at " + std::to_string(start));
        if (expected.next == start) {
            break;
        }
        start = expected.next;
    }
}

void CompareBytes(const std::wstring &text, Converter convert, Reference slow,
                  const std::string &shown) {
    std::vector<wchar_t> buffer = Exact(text);
    for (const unsigned int capacity : {1U, 2U, 8U, 200U}) {
        const reference::Bytes expected = slow(text, capacity);
        std::vector<unsigned char> bytes(capacity, 0xEE);
        const int result =
            convert(buffer.data(), static_cast<unsigned int>(text.size()), bytes.data(), capacity);
        FUZZ_CHECK(result == expected.result &&
                       std::equal(expected.stored.begin(), expected.stored.end(), bytes.begin()),
                   shown + "\ncapacity " + std::to_string(capacity));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr std::size_t kLongest = 600; // every position is a start
    if (size > kLongest) {
        return -1;
    }
    FuzzInput input(data, size);
    const std::string definitions = input.Line();
    const std::wstring defines = Widened(definitions.substr(0, definitions.find('\0')));
    const std::string bytes = input.Rest();
    const std::wstring text = Widened(bytes);
    CompareTokens(text, bytes);
    CompareValues(text, nullptr, bytes);
    CompareValues(text, &defines, bytes);
    CompareBytes(text, CmdToBin, reference::Commands, bytes);
    CompareBytes(text, EDIDToBin, reference::Edid, bytes);
    return 0;
}
