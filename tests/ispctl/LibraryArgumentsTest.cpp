#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

#include "LibraryArguments.h"

namespace {

using Words = std::vector<std::string>;

struct Row {
    Words typed;
    Words own;
    Words libraryArguments;
};

const Row kRows[] = {{{}, {}, {}},
                     {{"--virtual"}, {"--virtual"}, {}},
                     {{"--virtual", "--isp", "--fw", "x"}, {"--virtual"}, {"--isp", "--fw", "x"}},
                     {{"--virtual", "--", "--isp"}, {"--virtual"}, {"--isp"}},
                     {{"--isp", "--virtual"}, {}, {"--isp", "--virtual"}},
                     {{"--", "--virtual"}, {}, {"--virtual"}},
                     {{"--", "--", "x"}, {}, {"--", "x"}},
                     {{"--isp", "--", "x"}, {}, {"--isp", "--", "x"}},
                     {{"--lib", "--isp", "--fw"}, {"--lib", "--isp"}, {"--fw"}},
                     {{"--lib=a", "--fw"}, {"--lib=a"}, {"--fw"}},
                     {{"--lib"}, {"--lib"}, {}},
                     {{"--virt", "--virtual"}, {}, {"--virt", "--virtual"}},
                     {{"virtual", "--virtual"}, {}, {"virtual", "--virtual"}},
                     {{""}, {}, {""}},
                     {{"-", "--virtual"}, {}, {"-", "--virtual"}},
                     {{"--help", "x"}, {"--help"}, {"x"}},
                     {{"--libs", "x"}, {}, {"--libs", "x"}}};

TEST(LibraryArguments, Options_of_ispctl_end_at_first_argument_of_library) {
    CLI::App command;
    std::string file;
    bool flag = false;
    command.add_option("--lib", file);
    command.add_flag("--virtual", flag);
    for (const Row &row : kRows) {
        SCOPED_TRACE(testing::PrintToString(row.typed));
        Words own = row.typed;
        EXPECT_EQ(ispctl::SplitOffLibraryArguments(command, own), row.libraryArguments);
        EXPECT_EQ(own, row.own);
    }
}

} // namespace
