#include "OptionEngineFixture.h"

#include <new>
#include <type_traits>

namespace {

using namespace option_engine; // NOLINT(google-build-using-namespace): one subject

TEST_F(OptionEngine, Long_option_record_has_layout_of_getopt) {
    EXPECT_EQ(sizeof(STRUCT_CP_LONG_CMD_UNIT), 32U);
    EXPECT_EQ(offsetof(STRUCT_CP_LONG_CMD_UNIT, pszName), 0U);
    EXPECT_EQ(offsetof(STRUCT_CP_LONG_CMD_UNIT, nHasArg), 8U);
    EXPECT_EQ(offsetof(STRUCT_CP_LONG_CMD_UNIT, pnFlag), 16U);
    EXPECT_EQ(offsetof(STRUCT_CP_LONG_CMD_UNIT, nVal), 24U);
    static_assert(std::is_same_v<decltype(STRUCT_CP_LONG_CMD_UNIT::pszName), const char *>);
    static_assert(std::has_virtual_destructor_v<CpNxCmdLindParse>);
    EXPECT_EQ(sizeof(CpNxCmdLindParse), 88U);
}

/// The members in their order after the table of virtual functions and the array of long options.
void ExpectFresh(const CpNxCmdLindParse &engine) {
    EXPECT_STREQ(At<const char *>(&engine, 32), "") << "short options";
    EXPECT_EQ(At<int>(&engine, 40), 0) << "initialised";
    EXPECT_EQ(At<char *>(&engine, 48), nullptr) << "next character";
    EXPECT_EQ(At<int>(&engine, 56), 1) << "first other argument";
    EXPECT_EQ(At<int>(&engine, 60), 1) << "last other argument";
    EXPECT_EQ(At<char *>(&engine, 64), nullptr) << "argument";
    EXPECT_EQ(At<int>(&engine, 72), 1) << "index";
    EXPECT_EQ(At<int>(&engine, 76), 1) << "print errors";
    EXPECT_EQ(At<int>(&engine, 80), 63) << "unknown character";
}

TEST_F(OptionEngine, New_engine_has_documented_start_values) {
    alignas(CpNxCmdLindParse) unsigned char memory[sizeof(CpNxCmdLindParse)];
    std::memset(memory, 0xCC, sizeof memory);
    auto *fresh = ::new (memory) CpNxCmdLindParse;
    ExpectFresh(*fresh);
    EXPECT_EQ(fresh->GetCmdArg(), nullptr);
    EXPECT_EQ(fresh->GetCmdIndex(), 1);
    EXPECT_EQ(fresh->GetUnknownChar(), 63);
    fresh->~CpNxCmdLindParse();
}

TEST_F(OptionEngine, Reset_restores_start_values) {
    engine.AddShortCmds(":ab:c");
    Arguments arguments({"f", "-ca", "--fw", "x", "-b"});
    while (StepOf(engine, arguments).result != -1) {
    }
    engine.Reset();
    ExpectFresh(engine);

    // The options are forgotten, and diagnostics are printed again.
    Arguments more({"--fw", "x"});
    const Step step = StepOf(engine, more);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed, "prog: invalid option -- '-'\n");
}

TEST_F(OptionEngine, Reset_inside_cluster_starts_next_line_from_beginning) {
    engine.AddShortCmds("abc");
    Arguments first({"-abc"});
    EXPECT_EQ(StepOf(engine, first).result, 'a');
    engine.Reset();
    engine.AddShortCmds("xyz");
    Arguments second({"-xy"});
    EXPECT_EQ(StepOf(engine, second).result, 'x');
    EXPECT_EQ(StepOf(engine, second).result, 'y');
    EXPECT_EQ(StepOf(engine, second).result, -1);
}

TEST_F(OptionEngine, Registration_functions_return_0) {
    EXPECT_EQ(engine.AddShortCmds("a"), 0);
    EXPECT_EQ(engine.AddLongCmd("more", 0, nullptr, 1), 0);
    EXPECT_EQ(engine.AddLongCmds(kTable), 0);
}

TEST_F(OptionEngine, AddLongCmds_stops_at_null_name) {
    Arguments arguments({"--behind"});
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: unrecognized command '--behind'\n");
}

TEST_F(OptionEngine, AddLongCmds_appends_to_registered_options) {
    const STRUCT_CP_LONG_CMD_UNIT more[] = {
        {"third", 0, nullptr, 3}, {"fourth", 0, nullptr, 4}, {nullptr, 0, nullptr, 0}};
    const STRUCT_CP_LONG_CMD_UNIT empty[] = {{nullptr, 0, nullptr, 0}};
    CpNxCmdLindParse own;
    own.AddLongCmd("first", 0, nullptr, 1);
    own.AddLongCmd("second", 0, nullptr, 2);
    own.AddLongCmds(more);
    own.AddLongCmds(empty);
    own.AddLongCmd("fifth", 0, nullptr, 5);
    Arguments arguments({"--first", "--second", "--third", "--fourth", "--fifth"});
    for (int place = 0; place < 5; ++place) {
        int longIndex = -1;
        EXPECT_EQ(StepOf(own, arguments, &longIndex).result, place + 1);
        EXPECT_EQ(longIndex, place);
    }
}

TEST_F(OptionEngine, AddLongCmds_copies_table_but_not_names) {
    std::string name = "first";
    STRUCT_CP_LONG_CMD_UNIT table[] = {{name.c_str(), 0, nullptr, 5}, {nullptr, 0, nullptr, 0}};
    CpNxCmdLindParse own;
    own.AddLongCmds(table);
    table[0] = {"gone", 1, nullptr, 6};
    name[0] = 'F';
    Arguments arguments({"--First"});
    EXPECT_EQ(StepOf(own, arguments).result, 5);
}

TEST_F(OptionEngine, AddShortCmds_stores_pointer_only) {
    std::string shorts = "a";
    CpNxCmdLindParse own;
    own.AddShortCmds(shorts.c_str());
    shorts[0] = 'b';
    Arguments arguments({"-b"});
    EXPECT_EQ(StepOf(own, arguments).result, 'b');
}

TEST_F(OptionEngine, Options_are_numbered_in_order_of_registration) {
    engine.AddLongCmd("single", 0, nullptr, 200);
    const struct {
        const char *word;
        int result;
        int index;
    } rows[] = {{"--verify", 101, 0},     {"--veraddr=1", 102, 1}, {"--fw=x", 103, 2},
                {"--opt", 104, 3},        {"--verdict", 101, 4},   {"--sign", 105, 5},
                {"--signfile=x", 106, 6}, {"--single", 200, 7}};
    for (const auto &row : rows) {
        Arguments arguments({row.word});
        CpNxCmdLindParse copy(engine);
        int longIndex = -1;
        const Step step = StepOf(copy, arguments, &longIndex);
        EXPECT_EQ(step.result, row.result) << row.word;
        EXPECT_EQ(longIndex, row.index) << row.word;
        EXPECT_EQ(step.printed, "") << row.word;
    }
}

TEST_F(OptionEngine, Long_index_is_stored_only_for_match) {
    int longIndex = -7;
    for (const char *word : {"--ver", "--verify=x", "--fw", "--nothing", "-v", "f"}) {
        Arguments arguments({word});
        CpNxCmdLindParse copy(engine);
        StepOf(copy, arguments, &longIndex);
        EXPECT_EQ(longIndex, -7) << word;
    }
}

TEST_F(OptionEngine, Flag_option_stores_value_and_returns_0) {
    int flag = 0;
    engine.AddLongCmd("flag", 0, &flag, 77);
    engine.AddLongCmd("flagarg", 1, &flag, 78);
    Arguments arguments({"--flag", "--flagarg", "x"});
    int longIndex = -1;
    EXPECT_EQ(StepOf(engine, arguments, &longIndex).result, 0);
    EXPECT_EQ(flag, 77);
    EXPECT_EQ(longIndex, 7);
    EXPECT_EQ(engine.GetCmdArg(), nullptr);
    EXPECT_EQ(StepOf(engine, arguments).result, 0);
    EXPECT_EQ(flag, 78);
    EXPECT_EQ(ArgumentOf(engine), "x");
}

TEST_F(OptionEngine, Three_parse_functions_run_same_step) {
    Arguments plain({"--fw", "x"});
    EXPECT_EQ(CpNxCmdLindParse(engine).ParseCmdLine(plain.Count(), plain.Get()), 103);
    int longIndex = -1;
    EXPECT_EQ(
        CpNxCmdLindParse(engine).ParseCmdLineHandler(plain.Count(), plain.Get(), &longIndex, 0),
        103);
    EXPECT_EQ(longIndex, 2);
    Arguments single({"-fw", "x"});
    EXPECT_EQ(ErrorOutputOf([&] {
                  EXPECT_EQ(CpNxCmdLindParse(engine).ParseCmdLine(single.Count(), single.Get()),
                            63);
              }),
              "prog: invalid option -- 'f'\n");
    EXPECT_EQ(CpNxCmdLindParse(engine).ParseCmdLineLong(single.Count(), single.Get(), nullptr),
              103);
    EXPECT_EQ(
        CpNxCmdLindParse(engine).ParseCmdLineHandler(single.Count(), single.Get(), nullptr, 1),
        103);
}

TEST_F(OptionEngine, First_ParseCmdLineInital_returns_short_options_unchanged) {
    const char *shorts = "-a";
    engine.AddShortCmds(shorts);
    EXPECT_EQ(engine.ParseCmdLineInital(), shorts);
    EXPECT_EQ(At<int>(&engine, 40), 1);
    EXPECT_EQ(At<int>(&engine, 56), 1);
    EXPECT_EQ(At<int>(&engine, 60), 1);
    EXPECT_EQ(At<char *>(&engine, 48), nullptr);
    EXPECT_EQ(At<int>(&engine, 72), 1);
    EXPECT_EQ(engine.ParseCmdLineInital(), shorts);
}

TEST_F(OptionEngine, ParseCmdLineInital_keeps_index_and_resets_skipped_block) {
    Arguments arguments({"a", "--verify", "b", "--sign"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, 105);
    engine.ParseCmdLineInital();
    EXPECT_EQ(engine.GetCmdIndex(), 5);
    EXPECT_EQ(At<int>(&engine, 56), 1);
    EXPECT_EQ(At<int>(&engine, 60), 1);
}

TEST_F(OptionEngine, ParseCmdLineInital_ends_cluster) {
    engine.AddShortCmds("abc");
    Arguments arguments({"-abc"});
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    EXPECT_NE(At<char *>(&engine, 48), nullptr);
    engine.ParseCmdLineInital();
    EXPECT_EQ(At<char *>(&engine, 48), nullptr);
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
}

TEST_F(OptionEngine, ParseCmdLineInital_resets_index_0_to_1) {
    const int index = 0;
    std::memcpy(reinterpret_cast<char *>(&engine) + 72, &index, sizeof index);
    engine.ParseCmdLineInital();
    EXPECT_EQ(engine.GetCmdIndex(), 1);

    // Also within a step, in the middle of a cluster.
    engine.AddShortCmds("abc");
    Arguments arguments({"-abc"});
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    std::memcpy(reinterpret_cast<char *>(&engine) + 72, &index, sizeof index);
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    EXPECT_EQ(StepOf(engine, arguments).result, 'b');
}

TEST_F(OptionEngine, Bounds_past_index_are_reset_to_index) {
    Arguments arguments({"--sign", "a", "--sign"});
    EXPECT_EQ(StepOf(engine, arguments).result, 105);
    const int beyond[] = {3, 4};
    std::memcpy(reinterpret_cast<char *>(&engine) + 56, beyond, sizeof beyond);
    EXPECT_EQ(StepOf(engine, arguments).result, 105);
    EXPECT_EQ(At<int>(&engine, 56), 2);
    EXPECT_EQ(At<int>(&engine, 60), 3);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(arguments.Now(), (Words{"--sign", "--sign", "a"}));
    EXPECT_EQ(engine.GetCmdIndex(), 3);
}

TEST_F(OptionEngine, Null_pointers_are_ignored) {
    engine.AddLongCmd(nullptr, 0, nullptr, 1);
    EXPECT_EQ(engine.AddLongCmds(nullptr), 0);
    EXPECT_EQ(engine.AddShortCmds(nullptr), 0);
    char word[] = "--sign";
    char *argv[] = {nullptr, nullptr, word, nullptr};
    EXPECT_EQ(engine.ParseCmdLine(3, argv), 105);
    EXPECT_EQ(engine.ParseCmdLine(3, argv), -1);
    EXPECT_EQ(argv[1], word);
    EXPECT_EQ(engine.GetCmdIndex(), 2);
    EXPECT_EQ(engine.ParseCmdLine(3, nullptr), -1);
}

TEST_F(OptionEngine, Count_below_index_ends_scan) {
    Arguments arguments({"--sign", "--sign", "--sign"});
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(StepOf(engine, arguments).result, 105);
    }
    EXPECT_EQ(engine.ParseCmdLine(2, arguments.Get()), -1);
}

} // namespace
