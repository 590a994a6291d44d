#include <random>

#include <gtest/gtest.h>

#include "scaler_isp/common/CommandText.h"
#include "unit/common/CommandTextReference.h"

namespace {

constexpr unsigned int kBufferChars = 8;

/// A copy of exactly the text, so that a sanitizer sees reads after it.
std::vector<wchar_t> Exact(const std::wstring &text) {
    return {text.begin(), text.end()};
}

::testing::AssertionResult Differ(const std::wstring &text, const std::string &what) {
    return ::testing::AssertionFailure()
           << what << " on \"" << ::testing::PrintToString(text) << '"';
}

::testing::AssertionResult SameTokens(const std::wstring &text) {
    std::vector<wchar_t> buffer = Exact(text);
    const auto length = static_cast<unsigned int>(text.size());
    for (std::size_t start = 0; start <= text.size(); ++start) {
        const reference::Token expected = reference::NextToken(text, start);
        auto pos = static_cast<unsigned int>(start);
        wchar_t word[257] = {};
        const int result = GetNextWord(buffer.data(), pos, length, word, 256);
        if (result != expected.result || pos != expected.next || expected.word != word) {
            return Differ(text, "token at " + std::to_string(start));
        }
    }
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult SameValues(const std::wstring &text, const std::wstring *defines) {
    std::vector<wchar_t> buffer = Exact(text);
    std::wstring names = defines != nullptr ? *defines : L"";
    const auto length = static_cast<unsigned int>(text.size());
    unsigned int pos = 0;
    for (std::size_t place = 0; place <= text.size();) {
        const reference::Value expected = reference::NextValue(text, place, defines);
        unsigned int number = 4711;
        const unsigned int result = FindNextBytes(
            buffer.data(), pos, length, defines != nullptr ? names.data() : nullptr, &number);
        if (result != static_cast<unsigned int>(expected.result) || pos != expected.next ||
            number != expected.number.value_or(4711)) {
            return Differ(text, "value at " + std::to_string(place));
        }
        if (place == text.size()) {
            break;
        }
        place = expected.next;
    }
    return ::testing::AssertionSuccess();
}

using Converter = int (*)(wchar_t *, unsigned int, unsigned char *, unsigned int);
using Reference = reference::Bytes (*)(const std::wstring &, std::size_t);

::testing::AssertionResult SameBytes(const std::wstring &text, Converter convert, Reference slow) {
    std::vector<wchar_t> buffer = Exact(text);
    for (const unsigned int capacity : {1U, 2U, kBufferChars}) {
        const reference::Bytes expected = slow(text, capacity);
        std::vector<unsigned char> bytes(capacity, 0xEE);
        const int result =
            convert(buffer.data(), static_cast<unsigned int>(text.size()), bytes.data(), capacity);
        if (result != expected.result ||
            !std::equal(expected.stored.begin(), expected.stored.end(), bytes.begin())) {
            return Differ(text, "bytes with capacity " + std::to_string(capacity));
        }
    }
    return ::testing::AssertionSuccess();
}

void CompareAll(const std::wstring &text) {
    static const std::wstring defines = L"#define A 0x1F\nB 7 C=1 D 0x D1 09 A1 010\nx 256";
    ASSERT_TRUE(SameTokens(text));
    ASSERT_TRUE(SameValues(text, nullptr));
    ASSERT_TRUE(SameValues(text, &defines));
    ASSERT_TRUE(SameBytes(text, CmdToBin, reference::Commands));
    ASSERT_TRUE(SameBytes(text, EDIDToBin, reference::Edid));
}

void CompareTextsOf(const std::wstring &alphabet, std::size_t length, std::wstring &text) {
    CompareAll(text);
    if (testing::Test::HasFatalFailure() || length == 0) {
        return;
    }
    for (const wchar_t c : alphabet) {
        text.push_back(c);
        CompareTextsOf(alphabet, length - 1, text);
        text.pop_back();
        if (testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

TEST(CommandTextReference, All_short_commands_are_read_as_by_reference) {
    std::wstring text;
    CompareTextsOf(L"019xA ,\n/*{}#", 4, text);
}

TEST(CommandTextReference, All_short_lists_are_read_as_by_reference) {
    std::wstring text;
    CompareTextsOf(L"0xA, ", 7, text);
}

TEST(CommandTextReference, All_short_comments_are_read_as_by_reference) {
    std::wstring text;
    CompareTextsOf(L"/*1\n,", 7, text);
}

TEST(CommandTextReference, Random_commands_are_read_as_by_reference) {
    const std::vector<std::wstring> pieces = {
        L"0x12",  L"0X0f", L"255", L"256", L"010", L"09", L"0x", L"0xG", L"A",          L"A1",
        L",",     L"\n",   L"\r",  L" ",   L"\t",  L"//", L"/*", L"*/",  L"/*/",        L"{",
        L"}",     L"#",    L"=",   L"-",   L"D",   L"D1", L"0",  L"1",   L"4294967297", L"\x4E2D",
        L"0x100", L"x",    L"_",   L"B",   L"C",   L"/",  L"*",  L"Z",   L"0x123456789"};
    std::mt19937 random(20);
    for (int round = 0; round < 30000; ++round) {
        std::wstring text;
        for (auto count = random() % 14; count > 0; --count) {
            text += pieces[random() % pieces.size()];
        }
        CompareAll(text);
        if (HasFatalFailure()) {
            return;
        }
    }
}

} // namespace
