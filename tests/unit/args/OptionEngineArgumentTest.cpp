#include "OptionEngineFixture.h"

namespace {

using namespace option_engine; // NOLINT(google-build-using-namespace): one subject

TEST_F(OptionEngine, Argument_after_equals_sign_is_returned) {
    Arguments arguments({"--fw=a.bin", "--fw=", "--fw=a=b"});
    EXPECT_EQ(StepOf(engine, arguments).result, 103);
    EXPECT_EQ(ArgumentOf(engine), "a.bin");
    EXPECT_EQ(engine.GetCmdArg(), arguments.Original(1) + 5);
    EXPECT_EQ(StepOf(engine, arguments).result, 103);
    EXPECT_EQ(ArgumentOf(engine), "");
    EXPECT_EQ(StepOf(engine, arguments).result, 103);
    EXPECT_EQ(ArgumentOf(engine), "a=b");
}

TEST_F(OptionEngine, Next_element_is_argument_even_if_it_looks_like_option) {
    for (const char *value : {"a.bin", "--sign", "--", "-", ""}) {
        CpNxCmdLindParse copy(engine);
        Arguments arguments({"--fw", value});
        EXPECT_EQ(StepOf(copy, arguments).result, 103);
        EXPECT_EQ(copy.GetCmdArg(), arguments.Original(2));
        EXPECT_EQ(copy.GetCmdIndex(), 3);
        EXPECT_EQ(StepOf(copy, arguments).result, -1);
        EXPECT_EQ(copy.GetCmdArg(), nullptr);
    }
}

TEST_F(OptionEngine, Unwanted_argument_is_reported_as_error) {
    Arguments arguments({"--verify=x", "--sign="});
    Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed, "prog: option '--verify' doesn't allow an argument\n");
    EXPECT_EQ(engine.GetUnknownChar(), 101);
    EXPECT_EQ(engine.GetCmdArg(), nullptr);
    EXPECT_EQ(engine.GetCmdIndex(), 2);
    step = StepOf(engine, arguments);
    EXPECT_EQ(step.printed, "prog: option '--sign' doesn't allow an argument\n");
    EXPECT_EQ(engine.GetUnknownChar(), 105);
}

TEST_F(OptionEngine, Unwanted_argument_error_shows_full_name_of_abbreviation) {
    Arguments arguments({"--verif=x"});
    EXPECT_EQ(StepOf(engine, arguments).printed,
              "prog: option '--verify' doesn't allow an argument\n");
}

TEST_F(OptionEngine, Missing_argument_is_reported_as_error) {
    Arguments arguments({"--fw"});
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed, "prog: option '--fw' requires an argument\n");
    EXPECT_EQ(engine.GetUnknownChar(), 103);
    EXPECT_EQ(engine.GetCmdIndex(), 2);
}

TEST_F(OptionEngine, Missing_argument_error_shows_full_name_of_abbreviation) {
    Arguments arguments({"--vera"});
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: option '--veraddr' requires an argument\n");
}

TEST_F(OptionEngine, Optional_argument_is_read_only_after_equals_sign) {
    Arguments arguments({"--opt", "value", "--opt=value"});
    EXPECT_EQ(StepOf(engine, arguments).result, 104);
    EXPECT_EQ(engine.GetCmdArg(), nullptr);
    EXPECT_EQ(StepOf(engine, arguments).result, 104);
    EXPECT_EQ(ArgumentOf(engine), "value");
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(engine.GetCmdIndex(), 3);
}

TEST_F(OptionEngine, Unknown_name_is_shown_with_its_value) {
    Arguments arguments({"--nothing=x=y"});
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed, "prog: unrecognized command '--nothing=x=y'\n");
    EXPECT_EQ(engine.GetUnknownChar(), 0);
    EXPECT_EQ(engine.GetCmdIndex(), 2);
}

TEST_F(OptionEngine, Names_are_compared_exactly) {
    for (const char *word : {"--Verify", "--verifyx", "--erify", "--fw x"}) {
        CpNxCmdLindParse copy(engine);
        Arguments arguments({word});
        EXPECT_EQ(StepOf(copy, arguments).printed,
                  "prog: unrecognized command '" + std::string(word) + "'\n");
    }
}

TEST_F(OptionEngine, Diagnostics_go_to_standard_error_only) {
    Arguments arguments({"--nothing", "-v", "--ver"});
    EXPECT_EQ(OutputOf([&] {
                  while (StepOf(engine, arguments).result != -1) {
                  }
              }),
              "");
}

} // namespace
