#include <gmock/gmock.h>

#include "LineBuffer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LineBuffer : public testing::Test {
  protected:
    std::vector<std::string> m_seen;
    ispctl::LineBuffer m_pieces{[this](std::string_view text) { m_seen.emplace_back(text); }};
};

TEST_F(LineBuffer, Lines_are_emitted_one_by_one_with_newlines) {
    m_pieces.Add("a\nb\n\nc");
    EXPECT_THAT(m_seen, ElementsAre("a\n", "b\n", "\n"));
}

TEST_F(LineBuffer, Line_arriving_in_parts_is_emitted_once) {
    m_pieces.Add("a");
    m_pieces.Add("b");
    EXPECT_THAT(m_seen, IsEmpty());
    m_pieces.Add("\n");
    EXPECT_THAT(m_seen, ElementsAre("ab\n"));
}

TEST_F(LineBuffer, EmitAll_emits_text_without_newline) {
    m_pieces.Add("wrong");
    m_pieces.EmitAll();
    m_pieces.EmitAll();
    EXPECT_THAT(m_seen, ElementsAre("wrong"));
}

TEST_F(LineBuffer, FlushCompleteCharacters_keeps_incomplete_character) {
    m_pieces.Add("\xE2\x82");
    m_pieces.FlushCompleteCharacters();
    EXPECT_THAT(m_seen, IsEmpty());
    m_pieces.Add("\xAC"
                 "b\xC3");
    m_pieces.FlushCompleteCharacters();
    EXPECT_THAT(m_seen, ElementsAre("\xE2\x82\xAC"
                                    "b"));
    m_pieces.EmitAll();
    EXPECT_THAT(m_seen, ElementsAre("\xE2\x82\xAC"
                                    "b",
                                    "\xC3"));
}

TEST_F(LineBuffer, Line_without_end_is_emitted_at_size_limit) {
    for (int i = 0; i < 100; ++i) {
        m_pieces.Add(std::string(1000, 'x'));
    }
    ASSERT_EQ(m_seen.size(), 1U);
    EXPECT_EQ(m_seen.front().size(), 66000U);
}

} // namespace
