#include "OptionEngineFixture.h"

namespace {

using namespace option_engine; // NOLINT(google-build-using-namespace): one subject

TEST_F(OptionEngine, Leading_colon_disables_messages_and_returns_colon) {
    engine.AddShortCmds(":ab:");
    const struct {
        const char *word;
        int result;
        int unknown;
    } rows[] = {{"--fw", 58, 103},
                {"-b", 58, 'b'},
                {"-x", 63, 'x'},
                {"--nothing", 63, 0},
                {"--verify=x", 63, 101}};
    for (const auto &row : rows) {
        CpNxCmdLindParse copy(engine);
        Arguments arguments({row.word});
        const Step step = StepOf(copy, arguments);
        EXPECT_EQ(step.result, row.result) << row.word;
        EXPECT_EQ(step.printed, "") << row.word;
        EXPECT_EQ(copy.GetUnknownChar(), row.unknown) << row.word;
    }
}

TEST_F(OptionEngine, Diagnostics_stay_off_after_leading_colon_is_removed) {
    engine.AddShortCmds(":a");
    Arguments arguments({"-a", "-x", "--fw"});
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    engine.AddShortCmds("a");
    EXPECT_EQ(StepOf(engine, arguments).printed, "");
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.printed, "");
    EXPECT_EQ(step.result, 63);
}

TEST_F(OptionEngine, Double_dash_word_is_cluster_without_long_options) {
    CpNxCmdLindParse own;
    own.AddShortCmds("a");
    Arguments arguments({"--a"});
    EXPECT_EQ(StepOf(own, arguments).printed, "prog: invalid option -- '-'\n");
    EXPECT_EQ(StepOf(own, arguments).result, 'a');
}

TEST_F(OptionEngine, Unknown_short_option_is_reported_as_error) {
    Arguments arguments({"-v"});
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed, "prog: invalid option -- 'v'\n");
    EXPECT_EQ(engine.GetUnknownChar(), 'v');
    EXPECT_EQ(engine.GetCmdIndex(), 2);
}

TEST_F(OptionEngine, Colon_and_semicolon_are_rejected_as_short_options) {
    engine.AddShortCmds("a:;b");
    Arguments arguments({"-:", "-;"});
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: invalid option -- ':'\n");
    EXPECT_EQ(engine.GetUnknownChar(), ':');
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: invalid option -- ';'\n");
    EXPECT_EQ(engine.GetUnknownChar(), ';');
}

TEST_F(OptionEngine, Cluster_returns_each_short_option) {
    engine.AddShortCmds("abc:d::");
    Arguments arguments({"-abcvalue", "-c", "next", "-abd", "-dtight"});
    const struct {
        int result;
        const char *argument;
        int index;
    } rows[] = {{'a', "(none)", 1}, {'b', "(none)", 1}, {'c', "value", 2},
                {'c', "next", 4},   {'a', "(none)", 4}, {'b', "(none)", 4},
                {'d', "(none)", 5}, {'d', "tight", 6},  {-1, "(none)", 6}};
    for (const auto &row : rows) {
        const Step step = StepOf(engine, arguments);
        EXPECT_EQ(step.result, row.result);
        EXPECT_EQ(ArgumentOf(engine), row.argument);
        EXPECT_EQ(engine.GetCmdIndex(), row.index);
        EXPECT_EQ(step.printed, "");
    }
}

TEST_F(OptionEngine, Unknown_letter_does_not_end_cluster) {
    engine.AddShortCmds("ab");
    Arguments arguments({"-axb"});
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: invalid option -- 'x'\n");
    EXPECT_EQ(StepOf(engine, arguments).result, 'b');
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
}

TEST_F(OptionEngine, Missing_argument_of_short_option_is_reported_as_error) {
    engine.AddShortCmds("ab:");
    Arguments arguments({"-ab"});
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed, "prog: option requires an argument -- 'b'\n");
    EXPECT_EQ(engine.GetUnknownChar(), 'b');
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
}

TEST_F(OptionEngine, Byte_outside_ASCII_is_reported_as_negative_character) {
    Arguments arguments({"-\xC3\xA9"});
    Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.printed, "prog: invalid option -- '\xC3'\n");
    EXPECT_EQ(engine.GetUnknownChar(), -61);
    step = StepOf(engine, arguments);
    EXPECT_EQ(step.printed, "prog: invalid option -- '\xA9'\n");
    EXPECT_EQ(engine.GetUnknownChar(), -87);

    CpNxCmdLindParse own;
    own.AddShortCmds("\xC3");
    Arguments known({"-\xC3"});
    EXPECT_EQ(StepOf(own, known).result, 0xC3);
}

TEST_F(OptionEngine, Leading_sign_of_short_options_is_dropped_once_per_call) {
    // The string is "-+ab:": the first call sees all of it, the second "+ab:", the third "ab:".
    engine.AddShortCmds("-+ab:");
    Arguments arguments({"-+", "-+", "-+", "-a"});
    EXPECT_EQ(StepOf(engine, arguments).result, '+');
    EXPECT_EQ(StepOf(engine, arguments).result, '+');
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: invalid option -- '+'\n");
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');

    // Dropped in the middle of a cluster too; a colon that comes to the front silences from then
    // on.
    CpNxCmdLindParse own;
    own.AddShortCmds("-:ab:");
    Arguments cluster({"-xxx"});
    EXPECT_EQ(StepOf(own, cluster).printed, "prog: invalid option -- 'x'\n");
    EXPECT_EQ(StepOf(own, cluster).printed, "");
    EXPECT_EQ(StepOf(own, cluster).printed, "");
}

} // namespace
