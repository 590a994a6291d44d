#include "scaler_isp/common/CCpNxString.h"

#include <sstream>

#include <gtest/gtest.h>

namespace {

TEST(StringStream, Input_reads_one_word_up_to_white_space) {
    std::istringstream stream("  first\tsecond\n third");
    CCpNxString text(L"before");
    EXPECT_EQ(&(stream >> text), &stream);
    EXPECT_EQ(std::wstring(text), L"first");
    stream >> text;
    EXPECT_EQ(std::wstring(text), L"second");
    stream >> text;
    EXPECT_EQ(std::wstring(text), L"third");
}

TEST(StringStream, Input_is_decoded_as_UTF8) {
    std::istringstream stream("\xC3\xA4\xE2\x82\xAC bad\xFFword next");
    CCpNxString text;
    stream >> text;
    EXPECT_EQ(std::wstring(text), L"\u00E4\u20AC");
    stream >> text;
    EXPECT_EQ(std::wstring(text), L"");
    stream >> text;
    EXPECT_EQ(std::wstring(text), L"next");
}

TEST(StringStream, Input_of_long_word_is_read_in_parts_of_1023_bytes) {
    std::istringstream stream(std::string(1500, 'w') + " next");
    CCpNxString text;
    stream >> text;
    EXPECT_EQ(std::wstring(text), std::wstring(1023, L'w'));
    stream >> text;
    EXPECT_EQ(std::wstring(text), std::wstring(477, L'w'));
    stream >> text;
    EXPECT_EQ(std::wstring(text), L"next");
}

TEST(StringStream, Input_without_word_clears_text) {
    for (const char *input : {"", "   \t\n"}) {
        std::istringstream stream(input);
        CCpNxString text(L"before");
        stream >> text;
        EXPECT_EQ(std::wstring(text), L"");
        EXPECT_TRUE(stream.fail());
    }
}

TEST(StringStream, Stream_output_writes_the_address) {
    const CCpNxString text(L"text");
    std::ostringstream expected;
    expected << static_cast<const void *>(text.c_str());
    std::ostringstream stream;
    EXPECT_EQ(&(stream << text), &stream);
    EXPECT_EQ(stream.str(), expected.str());
    EXPECT_EQ(stream.str().substr(0, 2), "0x");
    EXPECT_EQ(stream.str().find("text"), std::string::npos);
}

} // namespace
