#ifndef SCALER_ISP_TESTS_UNIT_ARGS_PARSER_FIXTURE_H
#define SCALER_ISP_TESTS_UNIT_ARGS_PARSER_FIXTURE_H

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "scaler_isp/ScalerIsp.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"

/// What one ParseArgs (or one converter) answered and printed.
struct Answer {
    int result = -1;
    std::string out;
    std::string err;
};

/// The text of a field that may lack a terminator.
template <class Char, std::size_t N> std::basic_string<Char> TextOf(const Char (&field)[N]) {
    std::basic_string<Char> text;
    for (std::size_t i = 0; i < N && field[i] != 0; ++i) {
        text.push_back(field[i]);
    }
    return text;
}

/// A wide text of ASCII characters.
inline std::wstring Wide(const std::string &text) {
    return {text.begin(), text.end()};
}

/// A parser on the heap whose current folder is a fresh one.
class ParserTest : public testing::Test {
  protected:
    ParserTest() {
        parser->SetCurrentDir(folder.Path());
    }

    /// A parser as at the beginning of a call.
    void Renew() {
        parser = std::make_unique<CCpIspArgsParse>();
        parser->SetCurrentDir(folder.Path());
    }

    /// Parses the words behind the program's name.
    Answer Parse(const std::vector<std::string> &words) {
        std::vector<const char *> argv{"tool"};
        for (const std::string &word : words) {
            argv.push_back(word.c_str());
        }
        Answer answer;
        answer.err = ErrorOutputOf([&] {
            answer.out = OutputOf([&] {
                answer.result = parser->ParseArgs(static_cast<int>(argv.size()), argv.data());
            });
        });
        return answer;
    }

    /// The same on a fresh parser.
    Answer ParseFresh(const std::vector<std::string> &words) {
        Renew();
        return Parse(words);
    }

    template <class Function> static Answer Ask(Function &&function) {
        Answer answer;
        answer.out = OutputOf([&] { answer.result = function(); });
        return answer;
    }

    std::unique_ptr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> Setting() const {
        return std::unique_ptr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>(
            new STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING(parser->GetISPCmdSetting()));
    }

    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS Sign() const {
        return parser->GetDigitalSignArgs();
    }

    /// Changes the parser's command record through a function.
    template <class Function> void Change(Function &&function) {
        auto setting = Setting();
        function(*setting);
        parser->SetISPCmdSetting(*setting);
    }

    TempFolder folder;
    std::unique_ptr<CCpIspArgsParse> parser = std::make_unique<CCpIspArgsParse>();
};

#define EXPECT_ACCEPTED(EXPRESSION)                                                                \
    do {                                                                                           \
        const Answer accepted_ = (EXPRESSION);                                                     \
        EXPECT_EQ(accepted_.result, 1);                                                            \
        EXPECT_EQ(accepted_.out, "");                                                              \
        EXPECT_EQ(accepted_.err, "");                                                              \
    } while (false)

#define EXPECT_REFUSED(EXPRESSION, MESSAGE)                                                        \
    do {                                                                                           \
        const Answer refused_ = (EXPRESSION);                                                      \
        EXPECT_EQ(refused_.result, 0);                                                             \
        EXPECT_EQ(refused_.out, MESSAGE);                                                          \
        EXPECT_EQ(refused_.err, "");                                                               \
    } while (false)

#endif
