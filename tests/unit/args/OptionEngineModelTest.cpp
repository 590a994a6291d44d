#include <algorithm>
#include <cstdio>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OptionEngineModel.h"
#include "scaler_isp/args/CpNxCmdLindParse.h"
#include "support/CapturedOutput.h"

namespace {

using Words = std::vector<std::string>;

int g_flag = 0;
int g_otherFlag = 0;

const std::vector<std::vector<ModelOption>> kTables = {
    {},
    {{"ab", 0, nullptr, 11},
     {"abc", 1, nullptr, 12},
     {"abx", 1, nullptr, 12},
     {"ac", 2, nullptr, 13},
     {"x", 0, &g_flag, 14},
     {"b", 1, &g_otherFlag, 15}},
    // Many that begin alike: equal in everything but one column.
    {{"aba", 0, nullptr, 21},
     {"abb", 0, nullptr, 21},
     {"abc", 1, nullptr, 21},
     {"abd", 0, &g_flag, 21},
     {"abe", 0, nullptr, 22},
     {"a", 2, nullptr, 23},
     {"xa", 1, &g_flag, 24},
     {"xb", 1, &g_flag, 24}},
};

/// One line a step: everything a caller can see.
struct Record {
    std::string lines;
    int flags[2] = {};
};

std::string Line(int result, int index, int unknown, int longIndex, const std::string &argument,
                 const std::vector<int> &order) {
    std::ostringstream line;
    line << result << " index " << index << " unknown " << unknown << " long " << longIndex
         << " argument " << argument << " order";
    for (const int place : order) {
        line << ' ' << place;
    }
    line << '\n';
    return line.str();
}

/// Steps until the end and two more, or until so many that something runs in circles.
template <class Step> void Scan(Step step) {
    int ends = 0;
    for (int count = 0; ends < 3 && count < 60; ++count) {
        ends += step() == -1 ? 1 : 0;
    }
}

Record RunModel(const Words &words, const std::vector<ModelOption> &table,
                const std::string &shorts, bool longOnly, std::string &diagnostics) {
    Record record;
    g_flag = 0;
    g_otherFlag = 0;
    OptionEngineModel model(table, shorts, words);
    Scan([&] {
        const int result = model.Step(longOnly);
        record.lines += Line(result, model.Index(), model.UnknownChar(), model.LongIndex(),
                             model.Argument(), model.Order());
        return result;
    });
    diagnostics += model.Diagnostics();
    record.flags[0] = g_flag;
    record.flags[1] = g_otherFlag;
    return record;
}

/// The words as an argument vector, and where a pointer into it belongs.
class ArgumentVector {
  public:
    explicit ArgumentVector(const Words &words) : m_words(words) {
        for (std::string &word : m_words) {
            m_pointers.push_back(word.data());
        }
        m_pointers.push_back(nullptr);
    }
    ArgumentVector(const ArgumentVector &) = delete;
    ArgumentVector &operator=(const ArgumentVector &) = delete;

    char **Get() {
        return m_pointers.data();
    }
    std::vector<int> Order() const {
        std::vector<int> order;
        for (std::size_t i = 0; i + 1 < m_pointers.size(); ++i) {
            for (std::size_t word = 0; word < m_words.size(); ++word) {
                if (m_pointers[i] == m_words[word].data()) {
                    order.push_back(static_cast<int>(word));
                }
            }
        }
        return order;
    }
    std::string Describe(const char *argument) const {
        if (argument == nullptr) {
            return "-";
        }
        for (std::size_t word = 0; word < m_words.size(); ++word) {
            const char *start = m_words[word].data();
            if (argument >= start && argument <= start + m_words[word].size()) {
                return std::to_string(word) + "+" + std::to_string(argument - start) + " \"" +
                       argument + "\"";
            }
        }
        return "a pointer to somewhere else";
    }

  private:
    Words m_words;
    std::vector<char *> m_pointers;
};

Record RunEngine(const Words &words, const std::vector<ModelOption> &table,
                 const std::string &shorts, bool longOnly) {
    Record record;
    g_flag = 0;
    g_otherFlag = 0;
    ArgumentVector arguments(words);
    CpNxCmdLindParse engine;
    engine.AddShortCmds(shorts.c_str());
    for (const ModelOption &option : table) {
        engine.AddLongCmd(option.name.c_str(), option.hasArg, option.flag, option.val);
    }
    int longIndex = -7;
    Scan([&] {
        const int argc = static_cast<int>(words.size());
        const int result = longOnly ? engine.ParseCmdLineLong(argc, arguments.Get(), &longIndex)
                                    : engine.ParseCmdLineEx(argc, arguments.Get(), &longIndex);
        record.lines += Line(result, engine.GetCmdIndex(), engine.GetUnknownChar(), longIndex,
                             arguments.Describe(engine.GetCmdArg()), arguments.Order());
        return result;
    });
    record.flags[0] = g_flag;
    record.flags[1] = g_otherFlag;
    return record;
}

std::string Shown(const Words &words) {
    std::string text;
    for (const std::string &word : words) {
        text += " [" + word + "]";
    }
    return text;
}

/// Compares engine and model for many argument vectors; their diagnostics together, for speed.
class Comparison {
  public:
    void Add(const Words &words, const std::vector<ModelOption> &table, const std::string &shorts,
             bool longOnly) {
        const std::string title =
            "# short options \"" + shorts + "\"" + (longOnly ? " long only" : "") + " " +
            std::to_string(table.size()) + " long ones:" + Shown(words) + "\n";
        std::fputs(title.c_str(), stderr);
        const Record engine = RunEngine(words, table, shorts, longOnly);
        m_expected += title;
        const Record model = RunModel(words, table, shorts, longOnly, m_expected);
        if (m_failures < 3 && (engine.lines != model.lines || engine.flags[0] != model.flags[0] ||
                               engine.flags[1] != model.flags[1])) {
            ++m_failures;
            ADD_FAILURE() << title << "engine:\n" << engine.lines << "model:\n" << model.lines;
        }
    }

    void End() {
        const std::string printed = m_captured.Take();
        if (printed == m_expected) {
            return;
        }
        const auto differs =
            std::mismatch(printed.begin(), printed.end(), m_expected.begin(), m_expected.end());
        const auto at = static_cast<std::size_t>(differs.first - printed.begin());
        const std::size_t from = printed.rfind('#', at == 0 ? 0 : at - 1);
        const std::size_t start = from == std::string::npos ? 0 : from;
        ADD_FAILURE() << "printed:\n"
                      << printed.substr(start, 400) << "\nexpected:\n"
                      << m_expected.substr(start, 400);
    }

  private:
    CapturedOutput m_captured{CapturedOutput::Stream::Error};
    std::string m_expected;
    int m_failures = 0;
};

const Words kShortStrings = {"",
                             "a",
                             "ab:",
                             "ab:c::x",
                             ":ab:",
                             "-ab:",
                             "+:b:",
                             "--+ab",
                             "a;b:x",
                             "\xC3"
                             "a::"};

const Words kElements = {"-",    "--",     "f",     "-a",      "-b",  "-bx",       "-c",
                         "-cx",  "-ab",    "-axb",  "-x",      "-:",  "-;",        "--a",
                         "--ab", "--ab=v", "--abc", "--abc=v", "--b", "--ac",      "--ac=v",
                         "--x",  "--xb=",  "--=v",  "-=",      "--q", "-\xC3\xA9", ""};

/// The kinds that take part in moving: other arguments, both ends, options with and without
/// arguments.
const Words kFewElements = {"-",    "--",   "f",     "-a",     "-b",  "-cx", "-axb", "-x",
                            "--ab", "--ac", "--abc", "--xb=v", "--b", "--=", "--q"};

void ForAllVectors(const Words &elements, const Words &begin, std::size_t longest,
                   const std::function<void(const Words &)> &use) {
    use(begin);
    if (begin.size() <= longest) {
        for (const std::string &element : elements) {
            Words words = begin;
            words.push_back(element);
            ForAllVectors(elements, words, longest, use);
        }
    }
}

class OptionEngineAgainstModel : public testing::TestWithParam<std::size_t> {};

TEST_P(OptionEngineAgainstModel, Engine_agrees_with_model_over_all_small_argument_vectors) {
    Comparison comparison;
    for (const std::string &shorts : kShortStrings) {
        for (const bool longOnly : {false, true}) {
            ForAllVectors(kElements, {"prog"}, 2, [&](const Words &words) {
                comparison.Add(words, kTables[GetParam()], shorts, longOnly);
            });
        }
    }
    comparison.End();
}

TEST_P(OptionEngineAgainstModel, Engine_agrees_with_model_over_all_vectors_of_three) {
    Comparison comparison;
    for (const char *shorts : {"", "ab:c::"}) {
        ForAllVectors(kFewElements, {"prog"}, 3, [&](const Words &words) {
            comparison.Add(words, kTables[GetParam()], shorts, shorts[0] != '\0');
        });
    }
    comparison.End();
}

INSTANTIATE_TEST_SUITE_P(Tables, OptionEngineAgainstModel, testing::Values(0U, 1U, 2U));

TEST(OptionEngineModel, Engine_agrees_with_model_over_large_random_vectors) {
    Comparison comparison;
    std::mt19937 random(21);
    const auto pick = [&](const std::string &letters, unsigned longest) {
        std::string text;
        for (std::size_t length = random() % (longest + 1); length > 0; --length) {
            text += letters[random() % letters.size()];
        }
        return text;
    };
    for (int round = 0; round < 20000; ++round) {
        Words words{"prog"};
        for (std::size_t count = random() % 12; count > 0; --count) {
            if (random() % 3 == 0) {
                words.push_back(kElements[random() % kElements.size()]);
            } else {
                words.push_back((random() % 2 == 0 ? "--" : "") + pick("-abcx=:;", 5));
            }
        }
        comparison.Add(words, kTables[random() % kTables.size()], pick("-+:abcx;", 6),
                       random() % 2 == 0);
    }
    comparison.End();
}

TEST(OptionEngineModel, Engine_agrees_with_model_over_random_tables) {
    Comparison comparison;
    std::mt19937 random(22);
    for (int round = 0; round < 10000; ++round) {
        std::vector<ModelOption> table;
        for (std::size_t count = random() % 7; count > 0; --count) {
            std::string name;
            for (std::size_t length = random() % 4; length > 0; --length) {
                name += "ab"[random() % 2];
            }
            table.push_back({name, static_cast<int>(random() % 3),
                             random() % 4 == 0 ? &g_flag : nullptr,
                             static_cast<int>(random() % 2) + 30});
        }
        Words words{"prog"};
        for (std::size_t count = random() % 5; count > 0; --count) {
            std::string word = random() % 5 == 0 ? "f" : random() % 2 == 0 ? "--" : "-";
            for (std::size_t length = random() % 4; length > 0; --length) {
                word += "aab="[random() % 4];
            }
            words.push_back(word);
        }
        comparison.Add(words, table, random() % 2 == 0 ? "" : "ab:", random() % 2 == 0);
    }
    comparison.End();
}

} // namespace
