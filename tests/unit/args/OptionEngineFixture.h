#ifndef SCALER_ISP_TESTS_UNIT_ARGS_OPTION_ENGINE_FIXTURE_H
#define SCALER_ISP_TESTS_UNIT_ARGS_OPTION_ENGINE_FIXTURE_H

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "scaler_isp/args/CpNxCmdLindParse.h"
#include "support/CapturedOutput.h"

/// What all tests of the option engine use.
namespace option_engine {

using Words = std::vector<std::string>;

/// The words after a program called "prog", as an argument vector.
class Arguments {
  public:
    // NOLINTNEXTLINE(*-explicit-*): reads as a command line
    Arguments(const Words &words) : m_words(words) {
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

inline Step StepOf(CpNxCmdLindParse &engine, Arguments &arguments, int *longIndex = nullptr,
                   bool longOnly = false) {
    Step step;
    step.printed = ErrorOutputOf([&] {
        step.result = longOnly
                          ? engine.ParseCmdLineLong(arguments.Count(), arguments.Get(), longIndex)
                          : engine.ParseCmdLineEx(arguments.Count(), arguments.Get(), longIndex);
    });
    return step;
}

inline std::string ArgumentOf(CpNxCmdLindParse &engine) {
    return engine.GetCmdArg() != nullptr ? engine.GetCmdArg() : "(none)";
}

inline constexpr STRUCT_CP_LONG_CMD_UNIT kTable[] = {
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

/// A member of the engine, by its place in the object.
template <class Value> Value At(const void *object, std::size_t offset) {
    Value value;
    std::memcpy(&value, static_cast<const char *>(object) + offset, sizeof value);
    return value;
}

} // namespace option_engine

#endif
