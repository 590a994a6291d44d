#include "OptionEngineFixture.h"

namespace {

using namespace option_engine; // NOLINT(google-build-using-namespace): one subject

TEST_F(OptionEngine, Abbreviation_is_accepted) {
    Arguments arguments({"--verif", "--o", "--signf=x"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, 104);
    EXPECT_EQ(StepOf(engine, arguments).result, 106);
    EXPECT_EQ(ArgumentOf(engine), "x");
}

TEST_F(OptionEngine, Exact_name_wins_over_abbreviation_in_any_table_order) {
    engine.AddLongCmd("ver", 0, nullptr, 300);
    Arguments arguments({"--sign", "--ver"});
    EXPECT_EQ(StepOf(engine, arguments).result, 105);
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 300);
    EXPECT_EQ(step.printed, "");
}

TEST_F(OptionEngine, Missing_arguments_and_program_name_are_tolerated) {
    char unknown[] = "-z";
    char *noArgument[] = {nullptr, nullptr};
    char *noProgram[] = {nullptr, unknown, nullptr};
    int result = 0;
    EXPECT_EQ(ErrorOutputOf([&] { result = engine.ParseCmdLineEx(2, noArgument, nullptr); }), "");
    EXPECT_EQ(result, -1);
    engine.Reset();
    EXPECT_EQ(ErrorOutputOf([&] { result = engine.ParseCmdLineEx(2, noProgram, nullptr); }),
              ": invalid option -- 'z'\n");
    EXPECT_EQ(result, 63);
}

TEST_F(OptionEngine, ParseLongCmd_fails_without_text_to_parse) {
    Arguments arguments({"--sign"});
    int index = 7;
    EXPECT_EQ(engine.ParseLongCmd(arguments.Count(), arguments.Get(), &index, 0, "--"), 63);
    EXPECT_EQ(index, 7);
}

TEST_F(OptionEngine, First_of_two_exact_names_wins) {
    engine.AddLongCmd("sign", 1, nullptr, 301);
    Arguments arguments({"--sign"});
    int longIndex = -1;
    EXPECT_EQ(StepOf(engine, arguments, &longIndex).result, 105);
    EXPECT_EQ(longIndex, 5);
}

TEST_F(OptionEngine, Ambiguous_name_lists_its_candidates) {
    Arguments arguments({"--ver", "--sign"});
    int longIndex = -7;
    const Step step = StepOf(engine, arguments, &longIndex);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed,
              "prog: command '--ver' is ambiguous; possibilities: '--verify' '--veraddr'\n");
    EXPECT_EQ(engine.GetUnknownChar(), 0);
    EXPECT_EQ(engine.GetCmdIndex(), 2);
    EXPECT_EQ(engine.GetCmdArg(), nullptr);
    EXPECT_EQ(StepOf(engine, arguments).result, 105);
}

TEST_F(OptionEngine, Ambiguity_error_shows_complete_argument) {
    Arguments arguments({"--ver=value=x"});
    EXPECT_EQ(
        StepOf(engine, arguments).printed,
        "prog: command '--ver=value=x' is ambiguous; possibilities: '--verify' '--veraddr'\n");
}

TEST_F(OptionEngine, Equivalent_candidates_are_not_ambiguous) {
    // "verify" and "verdict" agree in everything but the name; the first one wins.
    CpNxCmdLindParse own;
    own.AddLongCmd("verify", 0, nullptr, 101);
    own.AddLongCmd("verdict", 0, nullptr, 101);
    Arguments arguments({"--ver"});
    int longIndex = -1;
    const Step step = StepOf(own, arguments, &longIndex);
    EXPECT_EQ(step.result, 101);
    EXPECT_EQ(step.printed, "");
    EXPECT_EQ(longIndex, 0);
}

TEST_F(OptionEngine, Equivalent_candidates_are_ambiguous_with_single_dash) {
    CpNxCmdLindParse own;
    own.AddLongCmd("verify", 0, nullptr, 101);
    own.AddLongCmd("verdict", 0, nullptr, 101);
    Arguments arguments({"-ver", "--ver"});
    EXPECT_EQ(StepOf(own, arguments, nullptr, true).printed,
              "prog: command '-ver' is ambiguous; possibilities: '-verify' '-verdict'\n");
    EXPECT_EQ(StepOf(own, arguments, nullptr, true).printed,
              "prog: command '--ver' is ambiguous; possibilities: '--verify' '--verdict'\n");
}

TEST_F(OptionEngine, Difference_in_any_column_makes_candidates_ambiguous) {
    int flag = 0;
    const STRUCT_CP_LONG_CMD_UNIT others[] = {{"abz", 1, nullptr, 1},
                                              {"abz", 2, nullptr, 1},
                                              {"abz", 0, &flag, 1},
                                              {"abz", 0, nullptr, 2}};
    for (const auto &other : others) {
        CpNxCmdLindParse own;
        own.AddLongCmd("aby", 0, nullptr, 1);
        own.AddLongCmd(other.pszName, other.nHasArg, other.pnFlag, other.nVal);
        Arguments arguments({"--ab"});
        EXPECT_EQ(StepOf(own, arguments).printed,
                  "prog: command '--ab' is ambiguous; possibilities: '--aby' '--abz'\n");
    }
}

TEST_F(OptionEngine, Ambiguity_lists_later_candidates_line_by_line) {
    CpNxCmdLindParse own;
    own.AddLongCmd("aba", 0, nullptr, 1);
    own.AddLongCmd("abb", 0, nullptr, 2);
    own.AddLongCmd("abc", 0, nullptr, 1);
    own.AddLongCmd("abd", 0, nullptr, 3);
    Arguments arguments({"--ab"});
    EXPECT_EQ(StepOf(own, arguments).printed,
              "prog: command '--ab' is ambiguous; possibilities: '--aba' '--abb'\n"
              " '--abd'\n");

    own.Reset();
    own.AddShortCmds(":");
    own.AddLongCmd("aba", 0, nullptr, 1);
    own.AddLongCmd("abb", 0, nullptr, 2);
    own.AddLongCmd("abd", 0, nullptr, 3);
    const Step silenced = StepOf(own, arguments);
    EXPECT_EQ(silenced.printed, " '--abb'\n '--abd'\n");
    EXPECT_EQ(silenced.result, 63);
    EXPECT_EQ(own.GetUnknownChar(), 0);
}

TEST_F(OptionEngine, Empty_name_makes_every_option_candidate) {
    Arguments arguments({"--=x"});
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed,
              "prog: command '--=x' is ambiguous; possibilities: '--verify' '--veraddr'\n"
              " '--fw'\n '--opt'\n '--sign'\n '--signfile'\n");
    EXPECT_EQ(engine.GetUnknownChar(), 0);
}

TEST_F(OptionEngine, Single_dash_matches_long_options_if_requested) {
    engine.AddShortCmds("vs:");
    const struct {
        const char *word;
        int result;
        const char *argument;
        const char *printed;
    } rows[] = {
        {"-verify", 101, "(none)", ""},
        {"-fw=x", 103, "x", ""},
        {"-v", 'v', "(none)", ""},
        {"-o", 104, "(none)", ""},
        {"-sx", 's', "x", ""},
        {"-x", 63, "(none)", "prog: unrecognized command '-x'\n"},
        {"-xy=z", 63, "(none)", "prog: unrecognized command '-xy=z'\n"},
        {"-verify=x", 63, "(none)", "prog: option '-verify' doesn't allow an argument\n"},
        {"-fw", 63, "(none)", "prog: option '-fw' requires an argument\n"},
        {"--vx", 63, "(none)", "prog: unrecognized command '--vx'\n"},
    };
    for (const auto &row : rows) {
        CpNxCmdLindParse copy(engine);
        Arguments arguments({row.word});
        const Step step = StepOf(copy, arguments, nullptr, true);
        EXPECT_EQ(step.result, row.result) << row.word;
        EXPECT_EQ(ArgumentOf(copy), row.argument) << row.word;
        EXPECT_EQ(step.printed, row.printed) << row.word;
    }
}

TEST_F(OptionEngine, Single_dash_falls_back_to_short_options) {
    engine.AddShortCmds("xy");
    Arguments arguments({"-xy"});
    EXPECT_EQ(StepOf(engine, arguments, nullptr, true).result, 'x');
    EXPECT_EQ(StepOf(engine, arguments, nullptr, true).result, 'y');
    EXPECT_EQ(engine.GetCmdIndex(), 2);
}

/// The element decides whether an unknown name may be a cluster, and not the prefix.
TEST_F(OptionEngine, Unknown_name_falls_back_to_matching_short_option) {
    const struct {
        int longOnly;
        const char *shorts;
        const char *prefix;
        int result;
        const char *printed;
    } rows[] = {
        {1, "xy", "-", -1, ""},
        {1, "xy", "--", -1, ""},
        {1, "x", "-", 63, "prog: unrecognized command '-y'\n"},
        {0, "xy", "-", 63, "prog: unrecognized command '-y'\n"},
    };
    for (const auto &row : rows) {
        CpNxCmdLindParse copy(engine);
        copy.AddShortCmds(row.shorts);
        Arguments arguments({"-xy"});
        EXPECT_EQ(StepOf(copy, arguments).result, 'x');
        EXPECT_EQ(ErrorOutputOf([&] {
                      EXPECT_EQ(
                          copy.ParseLongCmd(2, arguments.Get(), nullptr, row.longOnly, row.prefix),
                          row.result);
                  }),
                  row.printed);
    }
}

} // namespace
