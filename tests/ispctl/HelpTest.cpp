// The help of every command, found by asking each for its subcommands.

#include <gmock/gmock.h>
#include <sstream>

#include "ConsoleProcess.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using Words = std::vector<std::string>;

std::vector<std::string> LinesOf(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool IsEntry(const std::string &line) {
    return line.size() > 2 && line.starts_with("  ") && line[2] != ' ';
}

/// The entries below a heading: each first line, with the lines of its description.
std::vector<std::vector<std::string>> EntriesOf(const std::string &help,
                                                const std::string &heading) {
    std::vector<std::vector<std::string>> entries;
    bool inside = false;
    for (const std::string &line : LinesOf(help)) {
        if (!line.starts_with(" ")) {
            inside = !line.empty() && line.starts_with(heading);
        } else if (inside && IsEntry(line)) {
            entries.push_back({line});
        } else if (inside && !entries.empty()) {
            entries.back().push_back(line);
        }
    }
    return entries;
}

std::string HelpOf(Words command) {
    command.emplace_back("--help");
    const ConsoleResult result = RunConsole(command);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

/// This command and all below it.
std::vector<Words> CommandsFrom(const Words &command) {
    std::vector<Words> all{command};
    for (const auto &entry : EntriesOf(HelpOf(command), "Subcommands")) {
        Words sub = command;
        std::istringstream(entry.front()) >> sub.emplace_back();
        const auto below = CommandsFrom(sub);
        all.insert(all.end(), below.begin(), below.end());
    }
    return all;
}

class Help : public testing::Test {
  protected:
    const std::vector<Words> m_commands = CommandsFrom({});
};

TEST_F(Help, Commands_are_found) {
    EXPECT_GE(m_commands.size(), 11U);
    EXPECT_THAT(m_commands, Contains(Words{"run"}));
    EXPECT_THAT(m_commands, Contains(Words{"script", "check"}));
}

TEST_F(Help, Lines_have_at_most_80_columns) {
    for (const Words &command : m_commands) {
        for (const std::string &line : LinesOf(HelpOf(command))) {
            EXPECT_LE(line.size(), 80U) << testing::PrintToString(command) << line;
        }
    }
}

TEST_F(Help, Examples_precede_options) {
    for (const Words &command : m_commands) {
        SCOPED_TRACE(testing::PrintToString(command));
        const std::string help = HelpOf(command);
        const std::size_t examples = help.find("\nExamples:\n  ispctl ");
        const std::size_t options = help.find("\nOptions:\n");
        ASSERT_NE(examples, std::string::npos);
        ASSERT_NE(options, std::string::npos);
        EXPECT_LT(help.find("Usage: ispctl"), examples);
        EXPECT_LT(examples, options);
        EXPECT_LT(examples, help.find("\nPositionals:\n"));
        EXPECT_LT(options, help.find("Exit status"));
    }
}

TEST_F(Help, Each_option_and_argument_is_described) {
    for (const Words &command : m_commands) {
        SCOPED_TRACE(testing::PrintToString(command));
        const std::string help = HelpOf(command);
        std::size_t count = 0;
        for (const char *heading : {"Options", "Positionals", "Subcommands"}) {
            for (const auto &entry : EntriesOf(help, heading)) {
                constexpr std::size_t kTextColumn = 24;
                const bool isBeside =
                    entry.front().size() > kTextColumn && entry.front()[kTextColumn - 1] == ' ';
                EXPECT_TRUE(isBeside || entry.size() > 1) << entry.front();
                ++count;
            }
        }
        EXPECT_GE(count, 1U);
    }
}

TEST_F(Help, Help_command_shows_help_of_command) {
    for (const Words &command : m_commands) {
        Words asked{"help"};
        asked.insert(asked.end(), command.begin(), command.end());
        const ConsoleResult result = RunConsole(asked);
        EXPECT_EQ(result.out, HelpOf(command));
        EXPECT_EQ(result.status, 0);
    }
}

TEST_F(Help, Help_command_executes_nothing_that_follows) {
    const ConsoleResult result =
        RunConsole({"help", "script", "run", "--virtual", "/no/such.script"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, RunConsole({"script", "run", "--help"}).out);
}

TEST_F(Help, Help_of_unknown_command_is_a_usage_error_with_nearest_name) {
    const ConsoleResult result = RunConsole({"help", "docter"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("did you mean doctor?"));
}

} // namespace
