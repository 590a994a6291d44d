#include "OptionEngineFixture.h"

namespace {

using namespace option_engine; // NOLINT(google-build-using-namespace): one subject

TEST_F(OptionEngine, Non_options_move_after_options) {
    Arguments arguments({"a", "b", "--verify", "c"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(arguments.Now(), (Words{"--verify", "a", "b", "c"}));
    EXPECT_EQ(engine.GetCmdIndex(), 2);
    // The pointers move, the strings stay.
    EXPECT_EQ(arguments.Get()[1], arguments.Original(3));
    EXPECT_EQ(arguments.Get()[2], arguments.Original(1));
}

TEST_F(OptionEngine, Options_and_non_options_keep_their_order) {
    Arguments arguments({"1", "--fw", "x", "2", "3", "--sign", "-", "--fw=y", "--opt", "4"});
    while (StepOf(engine, arguments).result != -1) {
    }
    EXPECT_EQ(arguments.Now(),
              (Words{"--fw", "x", "--sign", "--fw=y", "--opt", "1", "2", "3", "-", "4"}));
    EXPECT_EQ(engine.GetCmdIndex(), 6);
}

TEST_F(OptionEngine, Index_ends_at_count_if_all_arguments_are_options) {
    Arguments arguments({"--verify", "--sign"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, 105);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(engine.GetCmdIndex(), 3);
}

TEST_F(OptionEngine, Program_name_is_never_scanned) {
    char program[] = "--verify";
    char *argv[] = {program, nullptr};
    EXPECT_EQ(engine.ParseCmdLine(1, argv), -1);
    EXPECT_EQ(engine.GetCmdIndex(), 1);
}

TEST_F(OptionEngine, Scan_without_arguments_changes_nothing) {
    Arguments arguments({"--fw", "x"});
    EXPECT_EQ(StepOf(engine, arguments).result, 103);
    EXPECT_EQ(engine.ParseCmdLine(0, arguments.Get()), -1);
    EXPECT_EQ(engine.ParseCmdLine(-1, arguments.Get()), -1);
    EXPECT_EQ(ArgumentOf(engine), "x");
    EXPECT_EQ(engine.GetCmdIndex(), 3);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(engine.GetCmdArg(), nullptr);
}

TEST_F(OptionEngine, Double_dash_ends_options) {
    Arguments arguments({"a", "--verify", "--", "--sign", "b"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(arguments.Now(), (Words{"--verify", "--", "a", "--sign", "b"}));
    EXPECT_EQ(engine.GetCmdIndex(), 3);
}

TEST_F(OptionEngine, Double_dash_as_last_argument_ends_scan) {
    Arguments arguments({"--verify", "--"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(engine.GetCmdIndex(), 3);
}

TEST_F(OptionEngine, Step_after_end_scans_arguments_after_double_dash) {
    Arguments arguments({"--", "--fw", "b"});
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(engine.GetCmdIndex(), 2);
    EXPECT_EQ(StepOf(engine, arguments).result, 103);
    EXPECT_EQ(ArgumentOf(engine), "b");
}

TEST_F(OptionEngine, Exchange_moves_bounds_of_skipped_block) {
    Arguments arguments({"a", "b", "--verify"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    engine.ExchangeAdjacentSubsequence(arguments.Get());
    EXPECT_EQ(arguments.Now(), (Words{"--verify", "a", "b"}));
    EXPECT_EQ(At<int>(&engine, 56), 2);
    EXPECT_EQ(At<int>(&engine, 60), 4);
    EXPECT_EQ(engine.GetCmdIndex(), 4);
    engine.ExchangeAdjacentSubsequence(arguments.Get());
    EXPECT_EQ(arguments.Now(), (Words{"--verify", "a", "b"}));
}

TEST_F(OptionEngine, Exchange_of_empty_block_keeps_order) {
    Arguments arguments({"a", "b"});
    engine.ExchangeAdjacentSubsequence(arguments.Get());
    EXPECT_EQ(arguments.Now(), (Words{"a", "b"}));
    EXPECT_EQ(engine.GetCmdIndex(), 1);
}

} // namespace
