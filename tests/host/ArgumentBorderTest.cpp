#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include "ArgumentBorder.h"

namespace {

using Words = std::vector<std::string>;

struct Row {
    Words typed;
    Words own;
    Words foreign;
};

class ArgumentBorder : public testing::TestWithParam<Row> {};

TEST_P(ArgumentBorder, Own_options_end_at_the_first_foreign_argument) {
    CLI::App command;
    std::string file;
    bool flag = false;
    command.add_option("--lib", file);
    command.add_flag("--virtual", flag);
    Words own = GetParam().typed;

    const Words foreign = ispctl::TakeForeign(command, own);

    EXPECT_EQ(own, GetParam().own);
    EXPECT_EQ(foreign, GetParam().foreign);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ArgumentBorder,
    testing::Values(Row{{}, {}, {}}, Row{{"--virtual"}, {"--virtual"}, {}},
                    Row{{"--virtual", "--isp", "--fw", "x"}, {"--virtual"}, {"--isp", "--fw", "x"}},
                    Row{{"--virtual", "--", "--isp"}, {"--virtual"}, {"--isp"}},
                    Row{{"--isp", "--virtual"}, {}, {"--isp", "--virtual"}},
                    Row{{"--", "--virtual"}, {}, {"--virtual"}},
                    Row{{"--", "--", "x"}, {}, {"--", "x"}},
                    Row{{"--isp", "--", "x"}, {}, {"--isp", "--", "x"}},
                    Row{{"--lib", "--isp", "--fw"}, {"--lib", "--isp"}, {"--fw"}},
                    Row{{"--lib=a", "--fw"}, {"--lib=a"}, {"--fw"}}, Row{{"--lib"}, {"--lib"}, {}},
                    Row{{"--virt", "--virtual"}, {}, {"--virt", "--virtual"}},
                    Row{{"virtual", "--virtual"}, {}, {"virtual", "--virtual"}},
                    Row{{""}, {}, {""}}, Row{{"-", "--virtual"}, {}, {"-", "--virtual"}},
                    Row{{"--help", "x"}, {"--help"}, {"x"}},
                    Row{{"--libs", "x"}, {}, {"--libs", "x"}}));

} // namespace
