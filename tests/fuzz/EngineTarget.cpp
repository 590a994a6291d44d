// The option engine against its model, and against getopt_long where both must agree. Line 1 a
// digit (table) and a digit (mode), line 2 the short options, then one argument per line.

#include <algorithm>
#include <cstdlib>
#include <getopt.h>
#include <sstream>
#include <utility>
#include <vector>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "scaler_isp/args/CpNxCmdLindParse.h"
#include "unit/args/OptionEngineModel.h"

namespace {

using Words = std::vector<std::string>;
using Table = std::vector<ModelOption>;

int g_flag = 0;

const Table kTables[] = {
    {},
    {{"ab", 0, nullptr, 11},
     {"abc", 1, nullptr, 12},
     {"abx", 1, nullptr, 12},
     {"ac", 2, nullptr, 13},
     {"x", 0, &g_flag, 14}},
    {{"aba", 0, nullptr, 21},
     {"abb", 0, nullptr, 21},
     {"abc", 1, nullptr, 21},
     {"a", 2, nullptr, 23},
     {"xa", 1, &g_flag, 24}},
};

/// The words as an argument vector, and where a pointer into it belongs.
class Vector {
  public:
    explicit Vector(const Words &words) : m_words(words) {
        for (std::string &word : m_words) {
            m_pointers.push_back(word.data());
        }
        m_pointers.push_back(nullptr);
    }
    char **Get() {
        return m_pointers.data();
    }
    int Count() const {
        return static_cast<int>(m_words.size());
    }
    std::string Argument(const char *argument) const {
        for (std::size_t word = 0; argument != nullptr && word < m_words.size(); ++word) {
            const char *start = m_words[word].data();
            if (argument >= start && argument <= start + m_words[word].size()) {
                return std::to_string(word) + "+" + std::to_string(argument - start);
            }
        }
        return argument == nullptr ? "-" : "a pointer to somewhere else";
    }
    std::string Order() const {
        std::string order;
        for (const char *pointer : m_pointers) {
            order += " " + Argument(pointer);
        }
        return order;
    }

  private:
    Words m_words;
    std::vector<char *> m_pointers;
};

/// All steps up to the end and two more.
template <class Step> std::string Scan(Step step) {
    std::string lines;
    int ends = 0;
    for (int count = 0; ends < 3 && count < 80; ++count) {
        std::ostringstream line;
        ends += step(line) == -1 ? 1 : 0;
        lines += line.str() + "\n";
    }
    return lines + "flag " + std::to_string(std::exchange(g_flag, 0)) + "\n";
}

void Prepare(CpNxCmdLindParse &engine, const Table &table, const std::string &shorts) {
    engine.AddShortCmds(shorts.c_str());
    for (const ModelOption &option : table) {
        engine.AddLongCmd(option.name.c_str(), option.hasArg, option.flag, option.val);
    }
}

void CompareWithModel(const Words &words, const Table &table, const std::string &shorts,
                      bool longOnly, const std::string &shown) {
    Vector arguments(words);
    CpNxCmdLindParse engine;
    Prepare(engine, table, shorts);
    int longIndex = -7;
    const std::string actual = Scan([&](std::ostream &line) {
        const int result =
            longOnly ? engine.ParseCmdLineLong(arguments.Count(), arguments.Get(), &longIndex)
                     : engine.ParseCmdLineEx(arguments.Count(), arguments.Get(), &longIndex);
        line << result << " index " << engine.GetCmdIndex() << " unknown "
             << engine.GetUnknownChar() << " long " << longIndex << " argument "
             << arguments.Argument(engine.GetCmdArg());
        return result;
    });
    OptionEngineModel model(table, shorts, words);
    const std::string expected = Scan([&](std::ostream &line) {
        const int result = model.Step(longOnly);
        const std::string argument = model.Argument();
        line << result << " index " << model.Index() << " unknown " << model.UnknownChar()
             << " long " << model.LongIndex() << " argument "
             << argument.substr(0, argument.find(' '));
        return result;
    });
    FUZZ_CHECK(actual == expected, shown + "engine:\n" + actual + "model:\n" + expected);
}

/// getopt_long understands some short-option strings otherwise: "+" and "-" at the start, "W;".
bool IsSharedSyntax(const std::string &shorts) {
    return shorts.find_first_not_of("abcdefgx:") == std::string::npos;
}

std::string ScanWithEngine(const Words &words, const Table &table, const std::string &shorts) {
    Vector arguments(words);
    CpNxCmdLindParse engine;
    Prepare(engine, table, shorts);
    int longIndex = -7;
    const std::string lines = Scan([&](std::ostream &line) {
        const int result = engine.ParseCmdLineEx(arguments.Count(), arguments.Get(), &longIndex);
        line << result << " " << engine.GetCmdIndex();
        if (result != '?' && result != ':') { // after an error both leave the rest open
            line << " long " << longIndex << " " << arguments.Argument(engine.GetCmdArg());
        }
        return result;
    });
    return lines + arguments.Order();
}

std::string ScanWithGetopt(const Words &words, const Table &table, const std::string &shorts) {
    Vector arguments(words);
    std::vector<option> options;
    for (const ModelOption &row : table) {
        options.push_back({row.name.c_str(), row.hasArg, row.flag, row.val});
    }
    options.push_back({nullptr, 0, nullptr, 0});
    optind = 0; // starts anew; without any long option "--" is one of the short ones
    opterr = 0;
    int longIndex = -7;
    const std::string lines = Scan([&](std::ostream &line) {
        const int result = getopt_long(arguments.Count(), arguments.Get(), shorts.c_str(),
                                       table.empty() ? nullptr : options.data(), &longIndex);
        line << result << " " << optind;
        if (result != '?' && result != ':') {
            line << " long " << longIndex << " " << arguments.Argument(optarg);
        }
        return result;
    });
    return lines + arguments.Order();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr std::size_t kMostWords = 12;
    FuzzInput input(data, size);
    const Table &table = kTables[input.Below(std::size(kTables))];
    const bool longOnly = input.Below(2) != 0;
    input.Line();
    const std::string shorts = std::string(input.Line().c_str());
    Words words{"prog"};
    while (!input.IsEmpty() && words.size() < kMostWords) {
        words.emplace_back(input.Line().c_str());
    }
    std::string shown = "short options \"" + shorts + "\":";
    for (const std::string &word : words) {
        shown += " [" + word + "]";
    }
    CompareWithModel(words, table, shorts, longOnly, shown + "\n");
#ifdef __GLIBC__ // other systems order and abbreviate in their own ways
    if (IsSharedSyntax(shorts)) {
        const std::string engine = ScanWithEngine(words, table, shorts);
        const std::string system = ScanWithGetopt(words, table, shorts);
        FUZZ_CHECK(engine == system, shown + "\nengine:\n" + engine + "\ngetopt_long:\n" + system);
    }
#endif
    return 0;
}
