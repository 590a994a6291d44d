#include "scaler_isp/args/CpNxCmdLindParse.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "support/CapturedOutput.h"

namespace {

using Words = std::vector<std::string>;

/// The words behind a program called "prog", as an argument vector.
class Arguments {
  public:
    Arguments(const Words &words)
        : m_words(words) { // NOLINT(*-explicit-*): reads as a command line
        m_words.insert(m_words.begin(), "prog");
        for (std::string &word : m_words) {
            m_pointers.push_back(word.data());
        }
        m_pointers.push_back(nullptr);
    }
    Arguments(const Arguments &) = delete;
    Arguments &operator=(const Arguments &) = delete;

    int Count() const {
        return static_cast<int>(m_words.size());
    }
    char **Get() {
        return m_pointers.data();
    }
    /// The words as they are ordered now, without the program.
    Words Now() const {
        return {m_pointers.begin() + 1, m_pointers.end() - 1};
    }
    /// The word that stood there in the beginning.
    char *Original(std::size_t place) {
        return m_words[place].data();
    }

  private:
    Words m_words;
    std::vector<char *> m_pointers;
};

/// One step and what it printed.
struct Step {
    int result = 0;
    std::string printed;
};

Step StepOf(CpNxCmdLindParse &engine, Arguments &arguments, int *longIndex = nullptr,
            bool longOnly = false) {
    Step step;
    step.printed = ErrorOutputOf([&] {
        step.result = longOnly
                          ? engine.ParseCmdLineLong(arguments.Count(), arguments.Get(), longIndex)
                          : engine.ParseCmdLineEx(arguments.Count(), arguments.Get(), longIndex);
    });
    return step;
}

std::string ArgumentOf(CpNxCmdLindParse &engine) {
    return engine.GetCmdArg() != nullptr ? engine.GetCmdArg() : "(none)";
}

constexpr STRUCT_CP_LONG_CMD_UNIT kTable[] = {
    {"verify", 0, nullptr, 101},   {"veraddr", 1, nullptr, 102}, {"fw", 1, nullptr, 103},
    {"opt", 2, nullptr, 104},      {"verdict", 0, nullptr, 101}, {"sign", 0, nullptr, 105},
    {"signfile", 1, nullptr, 106}, {nullptr, 0, nullptr, 0},     {"behind", 0, nullptr, 107},
};

class OptionEngine : public testing::Test {
  protected:
    OptionEngine() {
        engine.AddLongCmds(kTable);
    }
    CpNxCmdLindParse engine;
};

TEST_F(OptionEngine, Long_option_record_has_the_classic_shape) {
    EXPECT_EQ(sizeof(STRUCT_CP_LONG_CMD_UNIT), 32U);
    EXPECT_EQ(offsetof(STRUCT_CP_LONG_CMD_UNIT, pszName), 0U);
    EXPECT_EQ(offsetof(STRUCT_CP_LONG_CMD_UNIT, nHasArg), 8U);
    EXPECT_EQ(offsetof(STRUCT_CP_LONG_CMD_UNIT, pnFlag), 16U);
    EXPECT_EQ(offsetof(STRUCT_CP_LONG_CMD_UNIT, nVal), 24U);
    static_assert(std::is_same_v<decltype(STRUCT_CP_LONG_CMD_UNIT::pszName), const char *>);
    static_assert(std::has_virtual_destructor_v<CpNxCmdLindParse>);
    EXPECT_EQ(sizeof(CpNxCmdLindParse), 88U);
}

template <class Value> Value At(const void *object, std::size_t offset) {
    Value value;
    std::memcpy(&value, static_cast<const char *>(object) + offset, sizeof value);
    return value;
}

/// The members in their order behind the table of virtual functions and the array of long options.
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

TEST_F(OptionEngine, Every_member_has_its_start_value) {
    alignas(CpNxCmdLindParse) unsigned char memory[sizeof(CpNxCmdLindParse)];
    std::memset(memory, 0xCC, sizeof memory);
    auto *fresh = ::new (memory) CpNxCmdLindParse;
    ExpectFresh(*fresh);
    EXPECT_EQ(fresh->GetCmdArg(), nullptr);
    EXPECT_EQ(fresh->GetCmdIndex(), 1);
    EXPECT_EQ(fresh->GetUnknownChar(), 63);
    fresh->~CpNxCmdLindParse();
}

TEST_F(OptionEngine, Reset_brings_the_start_values_back) {
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

TEST_F(OptionEngine, Reset_in_the_middle_of_a_cluster_starts_with_the_next_line) {
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

TEST_F(OptionEngine, Registering_returns_0) {
    EXPECT_EQ(engine.AddShortCmds("a"), 0);
    EXPECT_EQ(engine.AddLongCmd("more", 0, nullptr, 1), 0);
    EXPECT_EQ(engine.AddLongCmds(kTable), 0);
}

TEST_F(OptionEngine, Table_ends_at_its_null_name) {
    Arguments arguments({"--behind"});
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: unrecognized command '--behind'\n");
}

TEST_F(OptionEngine, Table_is_copied_and_its_names_are_not) {
    std::string name = "first";
    STRUCT_CP_LONG_CMD_UNIT table[] = {{name.c_str(), 0, nullptr, 5}, {nullptr, 0, nullptr, 0}};
    CpNxCmdLindParse own;
    own.AddLongCmds(table);
    table[0] = {"gone", 1, nullptr, 6};
    name[0] = 'F';
    Arguments arguments({"--First"});
    EXPECT_EQ(StepOf(own, arguments).result, 5);
}

TEST_F(OptionEngine, Short_options_are_borrowed) {
    std::string shorts = "a";
    CpNxCmdLindParse own;
    own.AddShortCmds(shorts.c_str());
    shorts[0] = 'b';
    Arguments arguments({"-b"});
    EXPECT_EQ(StepOf(own, arguments).result, 'b');
}

TEST_F(OptionEngine, Options_are_numbered_in_the_order_of_registration) {
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

TEST_F(OptionEngine, Index_of_the_option_is_stored_for_a_match_only) {
    int longIndex = -7;
    for (const char *word : {"--ver", "--verify=x", "--fw", "--nothing", "-v", "f"}) {
        Arguments arguments({word});
        CpNxCmdLindParse copy(engine);
        StepOf(copy, arguments, &longIndex);
        EXPECT_EQ(longIndex, -7) << word;
    }
}

TEST_F(OptionEngine, Flag_receives_the_value_and_the_result_is_0) {
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

TEST_F(OptionEngine, Three_entrances_to_the_same_step) {
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

TEST_F(OptionEngine, Abbreviation_is_accepted) {
    Arguments arguments({"--verif", "--o", "--signf=x"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, 104);
    EXPECT_EQ(StepOf(engine, arguments).result, 106);
    EXPECT_EQ(ArgumentOf(engine), "x");
}

TEST_F(OptionEngine, Exact_name_wins_over_abbreviation_wherever_it_stands) {
    engine.AddLongCmd("ver", 0, nullptr, 300);
    Arguments arguments({"--sign", "--ver"});
    EXPECT_EQ(StepOf(engine, arguments).result, 105);
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 300);
    EXPECT_EQ(step.printed, "");
}

TEST_F(OptionEngine, Of_two_exact_names_the_first_wins) {
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

TEST_F(OptionEngine, Ambiguity_shows_the_whole_text) {
    Arguments arguments({"--ver=value=x"});
    EXPECT_EQ(
        StepOf(engine, arguments).printed,
        "prog: command '--ver=value=x' is ambiguous; possibilities: '--verify' '--veraddr'\n");
}

TEST_F(OptionEngine, Candidates_that_mean_the_same_are_not_ambiguous) {
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

TEST_F(OptionEngine, Candidates_that_mean_the_same_are_ambiguous_with_a_single_dash) {
    CpNxCmdLindParse own;
    own.AddLongCmd("verify", 0, nullptr, 101);
    own.AddLongCmd("verdict", 0, nullptr, 101);
    Arguments arguments({"-ver", "--ver"});
    EXPECT_EQ(StepOf(own, arguments, nullptr, true).printed,
              "prog: command '-ver' is ambiguous; possibilities: '-verify' '-verdict'\n");
    EXPECT_EQ(StepOf(own, arguments, nullptr, true).printed,
              "prog: command '--ver' is ambiguous; possibilities: '--verify' '--verdict'\n");
}

TEST_F(OptionEngine, Each_column_alone_makes_candidates_differ) {
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

TEST_F(OptionEngine, Empty_name_makes_every_option_a_candidate) {
    Arguments arguments({"--=x"});
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed,
              "prog: command '--=x' is ambiguous; possibilities: '--verify' '--veraddr'\n"
              " '--fw'\n '--opt'\n '--sign'\n '--signfile'\n");
    EXPECT_EQ(engine.GetUnknownChar(), 0);
}

TEST_F(OptionEngine, Argument_behind_an_equals_sign) {
    Arguments arguments({"--fw=a.bin", "--fw=", "--fw=a=b"});
    EXPECT_EQ(StepOf(engine, arguments).result, 103);
    EXPECT_EQ(ArgumentOf(engine), "a.bin");
    EXPECT_EQ(engine.GetCmdArg(), arguments.Original(1) + 5);
    EXPECT_EQ(StepOf(engine, arguments).result, 103);
    EXPECT_EQ(ArgumentOf(engine), "");
    EXPECT_EQ(StepOf(engine, arguments).result, 103);
    EXPECT_EQ(ArgumentOf(engine), "a=b");
}

TEST_F(OptionEngine, Next_element_is_the_argument_whatever_it_is) {
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

TEST_F(OptionEngine, Unwanted_argument_is_refused) {
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

TEST_F(OptionEngine, Unwanted_argument_of_an_abbreviation_names_the_option_in_full) {
    Arguments arguments({"--verif=x"});
    EXPECT_EQ(StepOf(engine, arguments).printed,
              "prog: option '--verify' doesn't allow an argument\n");
}

TEST_F(OptionEngine, Missing_argument_is_refused) {
    Arguments arguments({"--fw"});
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed, "prog: option '--fw' requires an argument\n");
    EXPECT_EQ(engine.GetUnknownChar(), 103);
    EXPECT_EQ(engine.GetCmdIndex(), 2);
    Arguments shortened({"--vera"});
    EXPECT_EQ(StepOf(engine = CpNxCmdLindParse(), shortened).result, 63);
}

TEST_F(OptionEngine, Missing_argument_of_an_abbreviation_names_the_option_in_full) {
    Arguments arguments({"--vera"});
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: option '--veraddr' requires an argument\n");
}

TEST_F(OptionEngine, Leading_colon_silences_and_tells_a_missing_argument_apart) {
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

TEST_F(OptionEngine, Silence_stays_when_the_colon_goes) {
    engine.AddShortCmds(":a");
    Arguments arguments({"-a", "-x", "--fw"});
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    engine.AddShortCmds("a");
    EXPECT_EQ(StepOf(engine, arguments).printed, "");
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.printed, "");
    EXPECT_EQ(step.result, 63);
}

TEST_F(OptionEngine, Optional_argument_is_only_taken_after_an_equals_sign) {
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

TEST_F(OptionEngine, Other_arguments_move_behind_the_options) {
    Arguments arguments({"a", "b", "--verify", "c"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(arguments.Now(), (Words{"--verify", "a", "b", "c"}));
    EXPECT_EQ(engine.GetCmdIndex(), 2);
    // The pointers move, the strings stay.
    EXPECT_EQ(arguments.Get()[1], arguments.Original(3));
    EXPECT_EQ(arguments.Get()[2], arguments.Original(1));
}

TEST_F(OptionEngine, Both_kinds_keep_their_order) {
    Arguments arguments({"1", "--fw", "x", "2", "3", "--sign", "-", "--fw=y", "--opt", "4"});
    while (StepOf(engine, arguments).result != -1) {
    }
    EXPECT_EQ(arguments.Now(),
              (Words{"--fw", "x", "--sign", "--fw=y", "--opt", "1", "2", "3", "-", "4"}));
    EXPECT_EQ(engine.GetCmdIndex(), 6);
}

TEST_F(OptionEngine, Without_other_arguments_the_index_ends_at_the_count) {
    Arguments arguments({"--verify", "--sign"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, 105);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(engine.GetCmdIndex(), 3);
}

TEST_F(OptionEngine, Program_is_never_scanned) {
    char program[] = "--verify";
    char *argv[] = {program, nullptr};
    EXPECT_EQ(engine.ParseCmdLine(1, argv), -1);
    EXPECT_EQ(engine.GetCmdIndex(), 1);
}

TEST_F(OptionEngine, Without_arguments_nothing_happens) {
    Arguments arguments({"--fw", "x"});
    EXPECT_EQ(StepOf(engine, arguments).result, 103);
    EXPECT_EQ(engine.ParseCmdLine(0, arguments.Get()), -1);
    EXPECT_EQ(engine.ParseCmdLine(-1, arguments.Get()), -1);
    EXPECT_EQ(ArgumentOf(engine), "x");
    EXPECT_EQ(engine.GetCmdIndex(), 3);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(engine.GetCmdArg(), nullptr);
}

TEST_F(OptionEngine, Double_dash_ends_the_options) {
    Arguments arguments({"a", "--verify", "--", "--sign", "b"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(arguments.Now(), (Words{"--verify", "--", "a", "--sign", "b"}));
    EXPECT_EQ(engine.GetCmdIndex(), 3);
}

TEST_F(OptionEngine, Double_dash_without_anything_behind) {
    Arguments arguments({"--verify", "--"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(engine.GetCmdIndex(), 3);
}

TEST_F(OptionEngine, Without_long_options_a_double_dash_word_is_a_cluster) {
    CpNxCmdLindParse own;
    own.AddShortCmds("a");
    Arguments arguments({"--a"});
    EXPECT_EQ(StepOf(own, arguments).printed, "prog: invalid option -- '-'\n");
    EXPECT_EQ(StepOf(own, arguments).result, 'a');
}

TEST_F(OptionEngine, Unknown_short_option) {
    Arguments arguments({"-v"});
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed, "prog: invalid option -- 'v'\n");
    EXPECT_EQ(engine.GetUnknownChar(), 'v');
    EXPECT_EQ(engine.GetCmdIndex(), 2);
}

TEST_F(OptionEngine, Colon_and_semicolon_are_no_short_options) {
    engine.AddShortCmds("a:;b");
    Arguments arguments({"-:", "-;"});
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: invalid option -- ':'\n");
    EXPECT_EQ(engine.GetUnknownChar(), ':');
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: invalid option -- ';'\n");
    EXPECT_EQ(engine.GetUnknownChar(), ';');
}

TEST_F(OptionEngine, Cluster_of_short_options) {
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

TEST_F(OptionEngine, Unknown_letter_inside_a_cluster_does_not_end_it) {
    engine.AddShortCmds("ab");
    Arguments arguments({"-axb"});
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    EXPECT_EQ(StepOf(engine, arguments).printed, "prog: invalid option -- 'x'\n");
    EXPECT_EQ(StepOf(engine, arguments).result, 'b');
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
}

TEST_F(OptionEngine, Missing_argument_of_a_short_option) {
    engine.AddShortCmds("ab:");
    Arguments arguments({"-ab"});
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    const Step step = StepOf(engine, arguments);
    EXPECT_EQ(step.result, 63);
    EXPECT_EQ(step.printed, "prog: option requires an argument -- 'b'\n");
    EXPECT_EQ(engine.GetUnknownChar(), 'b');
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
}

TEST_F(OptionEngine, Letters_beyond_ascii) {
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

TEST_F(OptionEngine, Leading_sign_of_the_short_options_is_dropped_once_a_call) {
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

TEST_F(OptionEngine, Single_dash_finds_long_options_where_asked) {
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

TEST_F(OptionEngine, Single_dash_falls_back_to_a_cluster) {
    engine.AddShortCmds("xy");
    Arguments arguments({"-xy"});
    EXPECT_EQ(StepOf(engine, arguments, nullptr, true).result, 'x');
    EXPECT_EQ(StepOf(engine, arguments, nullptr, true).result, 'y');
    EXPECT_EQ(engine.GetCmdIndex(), 2);
}

TEST_F(OptionEngine, A_further_step_scans_what_stands_behind_the_double_dash) {
    Arguments arguments({"--", "--fw", "b"});
    EXPECT_EQ(StepOf(engine, arguments).result, -1);
    EXPECT_EQ(engine.GetCmdIndex(), 2);
    EXPECT_EQ(StepOf(engine, arguments).result, 103);
    EXPECT_EQ(ArgumentOf(engine), "b");
}

TEST_F(OptionEngine, First_set_up_returns_the_short_options_unchanged) {
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

TEST_F(OptionEngine, Set_up_keeps_the_index_and_forgets_the_skipped_block) {
    Arguments arguments({"a", "--verify", "b", "--sign"});
    EXPECT_EQ(StepOf(engine, arguments).result, 101);
    EXPECT_EQ(StepOf(engine, arguments).result, 105);
    engine.ParseCmdLineInital();
    EXPECT_EQ(engine.GetCmdIndex(), 5);
    EXPECT_EQ(At<int>(&engine, 56), 1);
    EXPECT_EQ(At<int>(&engine, 60), 1);
}

TEST_F(OptionEngine, Set_up_ends_a_cluster) {
    engine.AddShortCmds("abc");
    Arguments arguments({"-abc"});
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    EXPECT_NE(At<char *>(&engine, 48), nullptr);
    engine.ParseCmdLineInital();
    EXPECT_EQ(At<char *>(&engine, 48), nullptr);
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
}

TEST_F(OptionEngine, Index_0_starts_afresh_at_1) {
    engine.AddShortCmds("abc");
    Arguments arguments({"f", "-abc"});
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    const int index = 0;
    std::memcpy(reinterpret_cast<char *>(&engine) + 72, &index, sizeof index);
    EXPECT_EQ(StepOf(engine, arguments).result, 'a');
    EXPECT_EQ(engine.GetCmdIndex(), 2);
    EXPECT_EQ(StepOf(engine, arguments).result, 'b');
}

TEST_F(OptionEngine, Exchange_moves_the_bounds_of_the_skipped_block) {
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

/// The element decides whether an unknown name may be a cluster, and not the prefix.
TEST_F(OptionEngine, Unknown_name_asks_for_short_options_by_its_element) {
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

TEST_F(OptionEngine, Nothing_to_exchange_keeps_the_order) {
    Arguments arguments({"a", "b"});
    engine.ExchangeAdjacentSubsequence(arguments.Get());
    EXPECT_EQ(arguments.Now(), (Words{"a", "b"}));
    EXPECT_EQ(engine.GetCmdIndex(), 1);
}

TEST_F(OptionEngine, Diagnostics_go_to_standard_error_only) {
    Arguments arguments({"--nothing", "-v", "--ver"});
    EXPECT_EQ(OutputOf([&] {
                  while (StepOf(engine, arguments).result != -1) {
                  }
              }),
              "");
}

TEST_F(OptionEngine, Null_pointers_are_survived) {
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

TEST_F(OptionEngine, Smaller_count_than_before_ends_the_scan) {
    Arguments arguments({"--sign", "--sign", "--sign"});
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(StepOf(engine, arguments).result, 105);
    }
    EXPECT_EQ(engine.ParseCmdLine(2, arguments.Get()), -1);
}

} // namespace
