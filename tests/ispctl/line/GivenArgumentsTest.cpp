#include "line/GivenArguments.h"

#include <array>
#include <random>

#include <gmock/gmock.h>

#include "scaler_isp/args/CpNxCmdLindParse.h"
#include "support/CapturedOutput.h"

// The reader against the library's own engine, which gets the same options: for random lines both
// must see the same options, values, mistakes and left-over arguments.

namespace {

using ispctl::GivenArgument;
using ispctl::ReadGivenArguments;
using Kind = GivenArgument::Kind;
using Words = std::vector<std::string>;

/// What a line consists of, in words that both readers can produce.
using Events = std::vector<std::string>;

class Engine {
  public:
    Events Read(const Words &arguments) {
        CpNxCmdLindParse engine;
        Register(engine);
        std::vector<std::string> copies(arguments);
        char program[] = "tool";
        std::vector<char *> argv{program};
        for (std::string &copy : copies) {
            argv.push_back(copy.data());
        }
        const int argc = static_cast<int>(argv.size());
        argv.push_back(nullptr);
        Events events;
        int index = 0;
        for (int result = 0; (result = engine.ParseCmdLineEx(argc, argv.data(), &index)) != -1;) {
            const std::string end = " until " + std::to_string(engine.GetCmdIndex() - 1);
            if (result == '?') {
                events.push_back("mistake " + std::to_string(engine.GetUnknownChar()) + end);
                continue;
            }
            const char *value = engine.GetCmdArg();
            events.push_back(
                std::string(ScalerIspFacts::kOptions[static_cast<std::size_t>(index)].name) + " " +
                (value != nullptr ? value : "(none)") + end);
        }
        for (int i = engine.GetCmdIndex(); i < argc; ++i) {
            events.push_back("left over " + std::string(argv[static_cast<std::size_t>(i)]));
        }
        return events;
    }

  private:
    void Register(CpNxCmdLindParse &engine) {
        for (const auto &option : ScalerIspFacts::kOptions) {
            const auto group = static_cast<std::size_t>(option.effect.group);
            engine.AddLongCmd(option.name.data(), option.takesValue ? 1 : 0,
                              group == 0 ? nullptr : &m_flags[group], option.effect.number);
        }
    }

    std::array<int, 8> m_flags{};
};

Events EventsOf(const Words &arguments) {
    Events events;
    Events leftOver;
    for (const GivenArgument &given : ReadGivenArguments(arguments)) {
        const std::string end = " until " + std::to_string(given.valuePosition + 1);
        switch (given.kind) {
        case Kind::Option:
            events.push_back(std::string(given.option->name) + " " +
                             given.value.value_or("(none)") + end);
            break;
        case Kind::MissingValue:
        case Kind::UnwantedValue:
            events.push_back("mistake " + std::to_string(given.option->effect.number) + end);
            break;
        case Kind::NonOption:
            leftOver.push_back("left over " + given.typed);
            break;
        case Kind::Unknown:
        case Kind::Ambiguous: {
            const std::string &argument = arguments[given.position];
            if (argument.starts_with("--")) {
                events.push_back("mistake 0" + end);
                break;
            }
            // One dash: the engine reports every letter, and moves on with the last one.
            for (std::size_t i = 1; i < argument.size(); ++i) {
                const std::size_t until = given.position + (i + 1 == argument.size() ? 1 : 0);
                events.push_back("mistake " + std::to_string(int{argument[i]}) + " until " +
                                 std::to_string(until));
            }
            break;
        }
        }
    }
    events.insert(events.end(), leftOver.begin(), leftOver.end());
    return events;
}

/// Arguments that a line could have, and many that it should not.
class RandomLine {
  public:
    explicit RandomLine(unsigned seed) : m_random(seed) {}

    Words Make() {
        Words words(Below(9));
        for (std::string &word : words) {
            word = Argument();
        }
        return words;
    }

  private:
    std::size_t Below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(m_random);
    }

    std::string Argument() {
        const auto &option = ScalerIspFacts::kOptions[Below(ScalerIspFacts::kOptions.size())];
        const std::string name(option.name);
        switch (Below(12)) {
        case 0:
            return "-" + name;
        case 1:
            return "--" + name.substr(0, Below(name.size() + 1));
        case 2:
            return "--" + name + "=" + Value();
        case 3:
            return "--" + name.substr(0, 1 + Below(name.size())) + "=" + Value();
        case 4:
            return "--" + name + "x";
        case 5:
        case 6:
            return Value();
        case 7:
            return Below(6) == 0 ? "--" : "--" + name;
        default:
            return "--" + name;
        }
    }

    std::string Value() {
        const std::array<const char *, 8> values{"", "3", "a b", "-", "-3", "x=y", "=", "\xC3\xA4"};
        return values[Below(values.size())];
    }

    std::mt19937 m_random;
};

TEST(GivenArguments, Random_lines_are_read_as_by_the_engine) {
    RandomLine lines(20260111);
    Engine engine;
    std::size_t options = 0;
    std::size_t mistakes = 0;
    std::size_t leftOver = 0;
    for (int i = 0; i < 20000; ++i) {
        const Words line = lines.Make();
        Events expected;
        {
            const CapturedOutput silence(CapturedOutput::Stream::Error);
            expected = engine.Read(line);
        }
        ASSERT_EQ(EventsOf(line), expected) << testing::PrintToString(line);
        for (const std::string &event : expected) {
            mistakes += event.starts_with("mistake") ? 1U : 0U;
            leftOver += event.starts_with("left over") ? 1U : 0U;
            options += event.starts_with("mistake") || event.starts_with("left over") ? 0U : 1U;
        }
    }
    EXPECT_GT(options, 10000U);
    EXPECT_GT(mistakes, 10000U);
    EXPECT_GT(leftOver, 1000U);
}

TEST(GivenArguments, Value_position_is_that_of_the_argument_with_it) {
    const auto given = ReadGivenArguments({"--comm=3", "--bank", "5", "--isp"});
    ASSERT_EQ(given.size(), 3U);
    EXPECT_EQ(given[0].typed, "--comm");
    EXPECT_EQ(given[0].valuePosition, 0U);
    EXPECT_EQ(given[1].position, 1U);
    EXPECT_EQ(given[1].valuePosition, 2U);
    EXPECT_EQ(given[1].value, "5");
    EXPECT_EQ(given[2].value, std::nullopt);
}

TEST(GivenArguments, Abbreviation_is_marked_and_whole_name_is_not) {
    const auto given = ReadGivenArguments({"--dumpn", "a.bin", "--sign"});
    EXPECT_TRUE(given[0].abbreviated);
    EXPECT_EQ(given[0].option->name, "dumpname");
    EXPECT_FALSE(given[1].abbreviated);
}

} // namespace
