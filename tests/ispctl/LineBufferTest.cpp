#include <gmock/gmock.h>

#include "LineBuffer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TextPiecesOfConsole : public testing::Test {
  protected:
    std::vector<std::string> m_seen;
    ispctl::LineBuffer m_pieces{[this](std::string_view text) { m_seen.emplace_back(text); }};
};

TEST_F(TextPiecesOfConsole, Lines_come_one_by_one_with_their_ends) {
    m_pieces.Add("a\nb\n\nc");
    EXPECT_THAT(m_seen, ElementsAre("a\n", "b\n", "\n"));
}

TEST_F(TextPiecesOfConsole, Line_may_arrive_in_parts) {
    m_pieces.Add("a");
    m_pieces.Add("b");
    EXPECT_THAT(m_seen, IsEmpty());
    m_pieces.Add("\n");
    EXPECT_THAT(m_seen, ElementsAre("ab\n"));
}

TEST_F(TextPiecesOfConsole, Text_without_line_end_is_a_piece) {
    m_pieces.Add("wrong");
    m_pieces.EmitAll();
    m_pieces.EmitAll();
    EXPECT_THAT(m_seen, ElementsAre("wrong"));
}

TEST_F(TextPiecesOfConsole, Pause_does_not_cut_a_character) {
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

TEST_F(TextPiecesOfConsole, Endless_line_does_not_grow_without_bound) {
    for (int i = 0; i < 100; ++i) {
        m_pieces.Add(std::string(1000, 'x'));
    }
    ASSERT_EQ(m_seen.size(), 1U);
    EXPECT_EQ(m_seen.front().size(), 66000U);
}

} // namespace
