#include <random>

#include "ParserFixture.h"

class VersionFilter : public ParserTest {
  protected:
    Answer Find(int mode, const std::vector<std::string> &candidates, const std::string &version,
                const std::string &capability = "") {
        matches.clear();
        auto how = static_cast<ENUM_FIND_BIN_MODE_USE_VER_MODE>(mode);
        return Ask([&] {
            return parser->FindBinUseVersionInfo(matches, candidates, how, version, capability);
        });
    }
    std::vector<std::string> matches;
};

TEST_F(VersionFilter, Mode_0_matches_name_that_contains_version) {
    EXPECT_ACCEPTED(Find(0, {"FW1.2.bin", "1.20.bin", "FW12.bin", "1.3.bin"}, "1.2"));
    EXPECT_THAT(matches, testing::ElementsAre("FW1.2.bin", "1.20.bin"));
    EXPECT_ACCEPTED(Find(0, {"FW1.2.bin", "cap1.2.bin"}, "1.2", "cap"));
    EXPECT_THAT(matches, testing::ElementsAre("cap1.2.bin"));
}

TEST_F(VersionFilter, FindBinUseVersionInfo_appends_matches) {
    auto mode = ENUM_FIND_BIN_WHOLE_VERSION;
    matches = {"old"};
    EXPECT_EQ(parser->FindBinUseVersionInfo(matches, {"a1"}, mode, "1", ""), 1);
    EXPECT_THAT(matches, testing::ElementsAre("old", "a1"));
}

TEST_F(VersionFilter, Major_version_never_matches_its_bare_name) {
    EXPECT_ACCEPTED(Find(1, {"FW2.13.bin", "FW2.bin", "FW3.bin", "FW12.4.bin"}, "2 13"));
    EXPECT_THAT(matches, testing::ElementsAre("FW2.13.bin", "FW12.4.bin"));
}

TEST_F(VersionFilter, Bare_name_after_earlier_match_is_accepted) {
    EXPECT_ACCEPTED(Find(1, {"2.5_2.bin", "2.bin_2.5"}, "2.x"));
    EXPECT_THAT(matches, testing::ElementsAre("2.5_2.bin"));
}

TEST_F(VersionFilter, Version_is_trimmed_before_spaces_become_dots) {
    EXPECT_ACCEPTED(Find(1, {"2.1.bin"}, "  2 13  "));
    EXPECT_THAT(matches, testing::ElementsAre("2.1.bin"));
    EXPECT_REFUSED(Find(1, {"2.1.bin"}, " 2 "), "");
    EXPECT_REFUSED(Find(1, {"2.1.bin"}, ""), "");
    EXPECT_ACCEPTED(Find(1, {"a2.1.bin", "2.1.bin"}, "2.", "a"));
    EXPECT_THAT(matches, testing::ElementsAre("a2.1.bin"));
}

TEST_F(VersionFilter, Mode_other_than_0_and_1_matches_nothing) {
    for (const int mode : {-1, 2, 100}) {
        EXPECT_ACCEPTED(Find(mode, {"FW1.2.bin"}, "1"));
        EXPECT_THAT(matches, testing::IsEmpty());
    }
}

namespace {

/// First place of `part` in `text` by comparing at every place; -1 for none.
int PlaceOf(const std::string &text, const std::string &part) {
    for (int i = 0; i + static_cast<int>(part.size()) <= static_cast<int>(text.size()); ++i) {
        bool same = true;
        for (std::size_t k = 0; k < part.size(); ++k) {
            same = same && text[static_cast<std::size_t>(i) + k] == part[k];
        }
        if (same) {
            return i;
        }
    }
    return -1;
}

/// 1 and the matches, or 0, straight from the rules.
int Expected(int mode, const std::vector<std::string> &candidates, std::string version,
             const std::string &capability, std::vector<std::string> &matches) {
    if (mode == 0) {
        for (const std::string &name : candidates) {
            if (PlaceOf(name, capability + version) >= 0) {
                matches.push_back(name);
            }
        }
        return 1;
    }
    while (!version.empty() && version.front() == ' ') {
        version.erase(version.begin());
    }
    while (!version.empty() && version.back() == ' ') {
        version.pop_back();
    }
    std::string major;
    bool dot = false;
    for (const char c : version) {
        if (!dot) {
            major.push_back(c == ' ' ? '.' : c);
            dot = major.back() == '.';
        }
    }
    if (!dot) {
        return 0;
    }
    const std::string pattern = capability + major;
    for (const std::string &name : candidates) {
        const int place = PlaceOf(name, pattern);
        const int longPlace = PlaceOf(name, pattern + "bin");
        if (place >= 0 && (longPlace < 0 || longPlace != place)) {
            matches.push_back(name);
        }
    }
    return 1;
}

} // namespace

TEST_F(VersionFilter, Random_names_agree_with_documented_rules) {
    std::mt19937 random(77);
    const auto text = [&](const std::string &alphabet, unsigned longest) {
        std::string result;
        for (auto count = random() % (longest + 1); count > 0; --count) {
            result.push_back(alphabet[random() % alphabet.size()]);
        }
        return result;
    };
    int found = 0;
    for (int round = 0; round < 5000; ++round) {
        std::vector<std::string> candidates;
        for (int i = 0; i < 6; ++i) {
            candidates.push_back(text("12.", 3) + (random() % 2 == 0 ? "bin" : "") +
                                 text("12.c", 4) + ".bin");
        }
        const int mode = static_cast<int>(random() % 2);
        const std::string version = text("12. ", 4);
        const std::string capability = text("c1", 1);
        std::vector<std::string> expected;
        const int result = Expected(mode, candidates, version, capability, expected);
        const Answer answer = Find(mode, candidates, version, capability);
        ASSERT_EQ(answer.result, result) << "'" << version << "'";
        ASSERT_EQ(matches, expected) << "'" << version << "' '" << capability << "'";
        found += static_cast<int>(matches.size());
    }
    EXPECT_GT(found, 2000);
}
