// Texts of others on their way to the user, in every command.

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include "ConsoleProcess.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

using testing::HasSubstr;
using testing::Not;

// An escape sequence, a C1 control, a direction mark, a tag.
const std::string kEvil = "\033[2J\xC2\x9B\xE2\x80\xAE\xF3\xA0\x81\x81";
constexpr const char *kShown = "\\x1B[2J\\u{9B}\\u{202E}\\u{E0041}";

class ShownText : public testing::Test {
  protected:
    TempFolder m_folder;
};

TEST_F(ShownText, Control_characters_of_names_and_arguments_are_escaped) {
    const std::string file = m_folder.Path(kEvil);
    const std::string script = m_folder.Write(kEvil + ".script", "WriteReg 1\n");
    const std::vector<std::vector<std::string>> commands{
        {"run", "--lib", file, "--isp"},
        {"run", "--verbatim", "--log", "/no/" + kEvil, "--lib", SCRIPTED_LIBRARY, "x"},
        {"run", "--lib", SCRIPTED_LIBRARY, "\"" + kEvil},
        {"script", "list", file},
        {"script", "assemble", script},
        {"script", "assemble", m_folder.Write("empty", "\n"), "-o", "/no/" + kEvil},
        {"script", "run", "--lib", REAL_LIBRARY, "--comm", file, m_folder.Write("s", "\x01")},
        {"script", "list", file, kEvil},
        {"edid", file},
        {"edid", "--form", kEvil, file},
        {"edid", "x", "--" + kEvil},
        {"edid", "x", kEvil},
    };
    for (const auto &command : commands) {
        SCOPED_TRACE(testing::PrintToString(command));
        const ConsoleResult result = RunConsole(command);
        EXPECT_THAT(result.out + result.err, HasSubstr(kShown));
        EXPECT_THAT(result.out + result.err, Not(HasSubstr("\033")));
        EXPECT_NE(result.status, 0);
    }
}

TEST_F(ShownText, Hint_escapes_control_characters_of_file_name) {
    m_folder.Write(kEvil, "x");
    const ConsoleResult result =
        RunConsole({"run", "--lib", SCRIPTED_LIBRARY, "--isp", "--fw", kEvil},
                   ConsoleProcess::Output::Pipes, m_folder.Path());
    EXPECT_THAT(result.err, HasSubstr(std::string("--fw ") + kShown + ":"));
    EXPECT_THAT(result.err, HasSubstr("[relative-path-elsewhere]"));
    EXPECT_THAT(result.err, Not(HasSubstr("\033")));
}

TEST_F(ShownText, Captured_output_is_escaped_except_colours_of_library) {
    const ConsoleResult result =
        RunScripted({}, {"out:\\e[31mFail\\n\\e[m\\e[5m\\x07\\xC2\\x9B\\xE2\\x80\\xAE\\xFF\\n",
                         "err:\\e]0;x\\x07\\n", "message:\\e[31m"});
    EXPECT_EQ(result.out, "\033[31mFail\n\033[m\\x1B[5m\\x07\\u{9B}\\u{202E}\\xFF\n\\x1B[31m\n");
    EXPECT_EQ(result.err, "\\x1B]0;x\\x07\nispctl: success\n");
}

TEST_F(ShownText, Json_escapes_terminal_control_characters) {
    const ConsoleResult result =
        RunScripted({"--json"}, {"out:\\e\\x7F\\xC2\\x9B\\xE2\\x80\\xAE\\xF3\\xA0\\x81\\x81\\n"});
    EXPECT_THAT(result.out, HasSubstr("\"\\u001b\\u007f\\u009b\\u202e\\udb40\\udc41\\n\""));
    const auto event = nlohmann::json::parse(result.out.substr(0, result.out.find('\n')));
    EXPECT_EQ(event["text"], "\033\x7F\xC2\x9B\xE2\x80\xAE\xF3\xA0\x81\x81\n");
}

TEST_F(ShownText, Environment_without_UTF8_gets_ASCII_only) {
    for (const char *locale : {"C", "POSIX", "xx_XX.nonsense"}) {
        SCOPED_TRACE(locale);
        const EnvGuard guard("LC_ALL", locale);
        const ConsoleResult result = RunScripted({}, {"out:\\xC3\\xBC\\n", "result:0"});
        EXPECT_EQ(result.out, "\\u{FC}\n");
        EXPECT_EQ(result.status, 0);
        const ConsoleResult missing = RunConsole({"edid", "/no/\xC3\xBC"});
        EXPECT_THAT(missing.err, HasSubstr("cannot read /no/\\u{FC}: "));
        const ConsoleResult json = RunScripted({"--json"}, {"out:\\xC3\\xBC\\n"});
        EXPECT_THAT(json.out, HasSubstr("\"text\":\"\\u00fc\\n\""));
    }
}

// On Linux the library reads a name that the encoding cannot express as UTF-8.
TEST_F(ShownText, Unencodable_directory_name_is_reported_unless_it_is_UTF_8) {
    const EnvGuard guard("LC_ALL", "C");
    for (const std::string folder : {"f\xC3\xBC", "f\xFC"}) {
        m_folder.MakeFolder(folder);
        const std::string library = m_folder.Path(folder + "/lib.so");
        ASSERT_EQ(::symlink(SCRIPTED_LIBRARY, library.c_str()), 0);
        const ConsoleResult result =
            RunConsole({"run", "--verbatim", "--lib", library, "message:m"});
        EXPECT_EQ(result.status, 0);
        EXPECT_EQ(result.err.find("cannot be expressed in the encoding of the environment, "
                                  "ANSI_X3.4-1968: plug-ins get an empty directory") ==
                      std::string::npos,
                  folder != "f\xFC")
            << result.err;
    }
}

TEST_F(ShownText, Long_message_is_truncated_before_it_is_stored) {
    const ConsoleResult result = RunScripted({}, {"long:65536", "long:65537", "long:20000000"});
    const std::string longest(65536, 'x');
    const std::string cut = longest + " [truncated: a message has at most 65536 characters]\n";
    EXPECT_TRUE(result.out == longest + "\n" + cut + cut) << result.out.size();
}

} // namespace
