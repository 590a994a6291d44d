#include "line/GivenArguments.h"

#include <string_view>

namespace ispctl {
namespace {

using ScalerIspFacts::OptionFacts;

/// What a name on the command line may mean.
struct NameMatch {
    const OptionFacts *option = nullptr; ///< the exact match, or the first candidate
    bool isExact = false;
    bool isAmbiguous = false;
};

/// Whether the engine tells the two apart. It compares what it stores for an option, not the name.
bool Differ(const OptionFacts &first, const OptionFacts &later) {
    return first.takesValue != later.takesValue || first.effect.group != later.effect.group ||
           first.effect.number != later.effect.number;
}

NameMatch FindByPrefix(std::string_view name) {
    NameMatch match;
    for (const OptionFacts &option : ScalerIspFacts::kOptions) {
        if (!option.name.starts_with(name)) {
            continue;
        }
        if (option.name.size() == name.size()) {
            return {&option, true, false};
        }
        if (match.option == nullptr) {
            match.option = &option;
        } else if (Differ(*match.option, option)) {
            match.isAmbiguous = true;
        }
    }
    return match;
}

/// Walks through ARGS once, as the engine does.
class Reader {
  public:
    explicit Reader(const std::vector<std::string> &arguments) : m_arguments(arguments) {}

    std::vector<GivenArgument> Read() {
        bool optionsEnded = false;
        while (m_next < m_arguments.size()) {
            const std::string &argument = m_arguments[m_next];
            if (!optionsEnded && argument == "--") {
                optionsEnded = true;
                ++m_next;
            } else if (!optionsEnded && argument.size() > 1 && argument.starts_with('-')) {
                ReadOption(argument);
            } else {
                Append(GivenArgument::Kind::NonOption, argument);
            }
        }
        return std::move(m_given);
    }

  private:
    GivenArgument &Append(GivenArgument::Kind kind, std::string_view typed) {
        GivenArgument &given = m_given.emplace_back();
        given.kind = kind;
        given.typed = typed;
        given.position = m_next;
        given.valuePosition = m_next;
        ++m_next;
        return given;
    }

    void ReadOption(std::string_view argument) {
        const std::size_t end = argument.find('=');
        const std::string_view typed = argument.substr(0, end);
        // The table has no short options, so one dash is never one of its options.
        if (!argument.starts_with("--")) {
            Append(GivenArgument::Kind::Unknown, typed);
            return;
        }
        const std::string_view name = typed.substr(2);
        const NameMatch match = FindByPrefix(name);
        if (match.isAmbiguous || match.option == nullptr) {
            Append(match.isAmbiguous ? GivenArgument::Kind::Ambiguous
                                     : GivenArgument::Kind::Unknown,
                   typed);
            return;
        }
        GivenArgument &given = Append(GivenArgument::Kind::Option, typed);
        given.option = match.option;
        given.abbreviated = !match.isExact;
        if (end != std::string_view::npos) {
            given.value = argument.substr(end + 1);
        }
        ReadValue(given);
    }

    void ReadValue(GivenArgument &given) {
        if (!given.option->takesValue) {
            if (given.value) {
                given.kind = GivenArgument::Kind::UnwantedValue;
            }
            return;
        }
        if (given.value) {
            return;
        }
        if (m_next == m_arguments.size()) {
            given.kind = GivenArgument::Kind::MissingValue;
            return;
        }
        given.valuePosition = m_next;
        given.value = m_arguments[m_next];
        ++m_next;
    }

    const std::vector<std::string> &m_arguments;
    std::vector<GivenArgument> m_given;
    std::size_t m_next = 0;
};

} // namespace

std::vector<GivenArgument> ReadGivenArguments(const std::vector<std::string> &arguments) {
    return Reader(arguments).Read();
}

} // namespace ispctl
