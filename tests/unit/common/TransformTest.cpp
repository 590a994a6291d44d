#include "scaler_isp/common/CCpTransform.h"

#include <clocale>
#include <iomanip>
#include <random>
#include <sstream>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "support/CapturedOutput.h"
#include "unit/common/BareIconv.h"

namespace {

const CCpTransform kTransform;

std::string Hex(const std::string &bytes) {
    std::ostringstream text;
    for (const char byte : bytes) {
        text << std::hex << std::setw(2) << std::setfill('0')
             << static_cast<unsigned>(static_cast<unsigned char>(byte)) << ' ';
    }
    return text.str();
}

/// UTF-8 by the table of Unicode, one character after the other; false where a character may not
/// be.
bool EncodeSlowly(const std::wstring &text, std::string &out) {
    const auto put = [&](unsigned value) { out += static_cast<char>(value); };
    for (const wchar_t character : text) {
        const auto c = static_cast<unsigned long>(character) & 0xFFFFFFFFUL;
        const auto low = [&](int shift) {
            return 0x80U | (static_cast<unsigned>(c >> shift) & 0x3FU);
        };
        if (c < 0x80) {
            put(static_cast<unsigned>(c));
        } else if (c < 0x800) {
            put(0xC0U | static_cast<unsigned>(c >> 6));
            put(low(0));
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            return false;
        } else if (c < 0x10000) {
            put(0xE0U | static_cast<unsigned>(c >> 12));
            put(low(6));
            put(low(0));
        } else if (c <= 0x10FFFF) {
            put(0xF0U | static_cast<unsigned>(c >> 18));
            put(low(12));
            put(low(6));
            put(low(0));
        } else {
            return false;
        }
    }
    return true;
}

/// The inverse, by trying: the one character whose encoding the bytes begin with.
bool DecodeSlowly(const std::string &bytes, std::wstring &out) {
    std::size_t at = 0;
    while (at < bytes.size()) {
        const auto lead = static_cast<unsigned char>(bytes[at]);
        const std::size_t size = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        if (at + size > bytes.size()) {
            return false;
        }
        unsigned long value = size == 1 ? lead : lead & (0xFFU >> (size + 1));
        for (std::size_t i = 1; i < size; ++i) {
            value = value << 6 | (static_cast<unsigned char>(bytes[at + i]) & 0x3FU);
        }
        const std::wstring one(1, static_cast<wchar_t>(value));
        std::string back;
        if (!EncodeSlowly(one, back) || back != bytes.substr(at, size)) {
            return false;
        }
        out += one;
        at += size;
    }
    return true;
}

std::string SlowToUtf8(const std::wstring &text) {
    std::string out;
    if (!EncodeSlowly(text, out) || out.size() > 10239) {
        return "";
    }
    return out.c_str();
}

std::wstring SlowToWide(const std::string &bytes) {
    std::wstring out;
    if (!DecodeSlowly(bytes, out) || out.size() > 10239) {
        return L"";
    }
    return out.c_str();
}

TEST(Transform, Object_has_vtable_and_no_data) {
    static_assert(std::has_virtual_destructor_v<CCpTransform>);
    static_assert(sizeof(CCpTransform) == sizeof(void *));
}

TEST(Transform, Wide_characters_convert_to_UTF8) {
    const struct {
        const wchar_t *wide;
        const char *utf8;
    } rows[] = {
        {L"", ""},
        {L"plain", "plain"},
        {L"\u007F", "\x7F"},
        {L"\u0080", "\xC2\x80"},
        {L"\u07FF", "\xDF\xBF"},
        {L"\u0800", "\xE0\xA0\x80"},
        {L"\uD7FF", "\xED\x9F\xBF"},
        {L"\uE000", "\xEE\x80\x80"},
        {L"\uFEFF"
         L"bom",
         "\xEF\xBB\xBF"
         "bom"},
        {L"\uFFFF", "\xEF\xBF\xBF"},
        {L"\U00010000", "\xF0\x90\x80\x80"},
        {L"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
        {L"a\u00E9\u20AC\U0001F4BEz", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x92\xBEz"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(row.wide), row.utf8) << Hex(row.utf8);
        EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(row.utf8), row.wide) << Hex(row.utf8);
        EXPECT_EQ(kTransform.ConvertStringToWString(row.utf8), row.wide) << Hex(row.utf8);
    }
}

TEST(Transform, Wide_characters_outside_Unicode_return_empty_string) {
    for (const unsigned long value : {0xD800UL, 0xDBFFUL, 0xDC00UL, 0xDFFFUL, 0x110000UL,
                                      0x7FFFFFFFUL, 0x80000000UL, 0xFFFFFFFFUL}) {
        const std::wstring wide =
            L"before" + std::wstring(1, static_cast<wchar_t>(value)) + L"after";
        EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(wide), "") << std::hex << value;
    }
}

TEST(Transform, Invalid_UTF8_returns_empty_string) {
    for (const std::string bytes :
         {"a\x80", "a\xBFz", "\xC0\x80", "\xC1\xBF", "\xC3", "\xC3z", "\xE2\x82", "\xE0\x9F\xBF",
          "\xED\xA0\x80", "\xED\xBF\xBF", "\xED\xA0\xBD\xED\xB2\xBE", "\xF0\x8F\xBF\xBF",
          "\xF0\x9F\x92", "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\xFE", "good then \xFF"}) {
        EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(bytes), L"") << Hex(bytes);
        EXPECT_EQ(kTransform.ConvertStringToWString(bytes), L"") << Hex(bytes);
    }
}

TEST(Transform, Result_ends_at_first_NUL) {
    EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(std::wstring(L"ab\0cd", 5)), "ab");
    EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(std::string("ab\0cd", 5)), L"ab");
    EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(std::wstring(1, L'\0')), "");
    EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(std::string(1, '\0')), L"");
}

TEST(Transform, Invalid_input_after_NUL_returns_empty_string) {
    EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(std::string("ab\0\xFF", 4)), L"");
    const std::wstring wide{L'a', L'\0', static_cast<wchar_t>(0xD800)};
    EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(wide), "");
}

TEST(Transform, UTF8_result_is_limited_to_10239_bytes) {
    for (const std::size_t size : {10238U, 10239U}) {
        EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(std::wstring(size, L'a')),
                  std::string(size, 'a'));
    }
    for (const std::size_t size : {10240U, 10241U, 20000U, 100000U}) {
        EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(std::wstring(size, L'a')), "") << size;
    }
}

TEST(Transform, UTF8_limit_counts_bytes_and_not_characters) {
    // 3,413 characters of three bytes are 10,239 bytes; one more letter is too much.
    std::string expected;
    for (int i = 0; i < 3413; ++i) {
        expected += "\xE2\x82\xAC";
    }
    const std::wstring wide(3413, L'\u20AC');
    EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(wide), expected);
    EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(wide + L"a"), "");
    EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(wide + L"\u20AC"), "");
}

TEST(Transform, Wide_result_is_limited_to_10239_characters) {
    for (const std::size_t size : {10238U, 10239U}) {
        EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(std::string(size, 'a')),
                  std::wstring(size, L'a'));
    }
    for (const std::size_t size : {10240U, 10241U, 20000U, 100000U}) {
        EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(std::string(size, 'a')), L"") << size;
    }
}

TEST(Transform, Wide_limit_counts_characters_and_not_bytes) {
    std::string utf8;
    for (int i = 0; i < 10239; ++i) {
        utf8 += "\xF0\x9F\x92\xBE";
    }
    EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(utf8), std::wstring(10239, L'\U0001F4BE'));
    EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(utf8 + "a"), L"");
}

TEST(Transform, Every_short_byte_sequence_converts_as_by_table) {
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            const std::string two{static_cast<char>(first), static_cast<char>(second)};
            ASSERT_EQ(kTransform.ConvertUTF8StringToUnicode(two), SlowToWide(two)) << Hex(two);
        }
    }
}

TEST(Transform, Random_texts_convert_as_by_table) {
    std::mt19937 random(61);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    const unsigned long limits[] = {0x80, 0x800, 0x10000, 0x10FFFF, 0x120000};
    for (int round = 0; round < 20000; ++round) {
        std::wstring wide;
        for (std::size_t length = below(8); length > 0; --length) {
            wide += static_cast<wchar_t>(random() % limits[below(5)]);
        }
        ASSERT_EQ(kTransform.ConvertUnicodeStringToUTF8(wide), SlowToUtf8(wide)) << round;
        std::string utf8;
        EncodeSlowly(wide, utf8);
        if (!utf8.empty() && below(2) == 0) {
            utf8[below(utf8.size())] = static_cast<char>(random());
        }
        ASSERT_EQ(kTransform.ConvertUTF8StringToUnicode(utf8), SlowToWide(utf8)) << Hex(utf8);
    }
}

TEST(Transform, Conversions_agree_with_iconv_of_system) {
    std::mt19937 random(62);
    for (int round = 0; round < 5000; ++round) {
        std::string bytes;
        for (std::size_t length = random() % 12; length > 0; --length) {
            const char byte = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F"[random() % 8];
            bytes += random() % 5 == 0 ? static_cast<char>(random()) : byte;
        }
        const std::wstring expected =
            FromLittleEndian(BareIconv("UTF-32LE", "UTF-8", bytes, 40960));
        ASSERT_EQ(kTransform.ConvertUTF8StringToUnicode(bytes), expected.c_str()) << Hex(bytes);
        ASSERT_EQ(kTransform.ConvertUnicodeStringToUTF8(expected),
                  BareIconv("UTF-8", "UTF-32LE", ToLittleEndian(expected), 10240).c_str());
    }
}

TEST(Transform, Failures_print_nothing_and_keep_locale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    EXPECT_EQ(OutputOf([] {
                  EXPECT_EQ(ErrorOutputOf([] {
                                kTransform.ConvertUTF8StringToUnicode("\xFF");
                                kTransform.ConvertUnicodeStringToUTF8(std::wstring(20000, L'a'));
                            }),
                            "");
              }),
              "");
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), before);
}

TEST(Transform, Conversions_do_not_depend_on_locale) {
    // The process is in the "C" locale here, which knows no character above 0x7F.
    EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
    EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode("\xC3\xA9"), L"\u00E9");
    EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(L"\u00E9"), "\xC3\xA9");
}

TEST(Transform, Ten_thousand_conversions_leak_no_descriptor) {
    // Each open conversion descriptor costs memory; a leak shows under the leak checker.
    for (int i = 0; i < 10000; ++i) {
        ASSERT_EQ(kTransform.ConvertUTF8StringToUnicode("a"), L"a");
    }
}

} // namespace
