// Prints what tools/doc_tables.py puts into docs/options.md: a table for each section of
// options.def, and two lists that other checks read. Each part begins with a line "== NAME".
//
//     == options dump           the rows of one table
//     == option names           one name per line
//     == documentation strings  what must not be in the library

#include <cctype>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "scaler_isp/abi/ResultCodes.h"
#include "scaler_isp/args/OptionNeeds.h"

using namespace ScalerIspFacts;

namespace {

bool IsNameCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

/// A text with the options in it set as code.
std::string Coded(std::string_view text) {
    std::string coded;
    while (!text.empty()) {
        std::size_t length = 0;
        if (text.starts_with("--")) {
            length = 2;
            while (length < text.size() && (IsNameCharacter(text[length]) || text[length] == '=')) {
                ++length;
            }
        }
        if (length > 2) {
            coded += "`" + std::string(text.substr(0, length)) + "`";
        } else {
            length = 1;
            coded += text.front();
        }
        text.remove_prefix(length);
    }
    return coded;
}

/// The keywords set as code, or the form of the value.
std::string ValueOf(const OptionFacts &option) {
    std::string value;
    for (std::string_view rest = option.effect.keywords; !rest.empty();) {
        const std::size_t end = rest.find(' ');
        value += (value.empty() ? "`" : ", `") + std::string(rest.substr(0, end)) + "`";
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    return value.empty() ? std::string(option.form) : value;
}

/// What goes into the last column. Of an action the page says once what it excludes.
std::string ConditionsOf(const OptionFacts &option) {
    std::string text;
    const auto add = [&](const char *lead, std::string_view expression) {
        if (!expression.empty() && expression != "NEVER") {
            text += (text.empty() ? "" : "; ") + std::string(lead) +
                    Coded(Describe(option, expression));
        }
    };
    add("needs ", option.needs);
    if (option.effect.group != Group::Action) {
        add("not ", option.excludes);
    }
    add("goes with ", option.goesWith);
    return text;
}

/// What runs an action: the column CALL.
std::string CallOf(const ActionFacts &action) {
    const std::string_view call = action.call;
    const std::size_t open = call.find('(');
    const std::string_view kind = call.substr(0, open);
    const std::string function = open == std::string_view::npos
                                     ? std::string()
                                     : std::string(call.substr(open + 1, call.size() - open - 2));
    return kind == "CALL" ? "`" + function + "`"
           // The row names the member of CCpSignVerify; what a plug-in exports is called so.
           : kind == "SIGN_VERIFY" ? "`" + function + "Export` of the sign/verify plug-in"
           : kind == "NO_CALL"     ? "none, ends with success"
                                   : "none, ends with 0x6";
}

/// The options that share the texts of this one, itself first.
std::string NamesOf(const OptionFacts &option) {
    std::string names = "`--" + std::string(option.name) + "`";
    for (const OptionFacts &other : kOptions) {
        if (other.like == option.name) {
            names += ", `--" + std::string(other.name) + "`";
        }
    }
    return names;
}

void PrintTable(std::string_view section) {
    const bool areActions = section == "actions";
    std::printf("== options %.*s\n", static_cast<int>(section.size()), section.data());
    std::puts(areActions ? "| option | meaning | calls | conditions |\n|---|---|---|---|"
                         : "| option | value | meaning | conditions |\n|---|---|---|---|");
    for (const OptionFacts &option : kOptions) {
        if (option.section != section || !option.like.empty()) {
            continue;
        }
        const ActionFacts *action = FindAction(option.name);
        const std::string meaning = Coded(option.meaning);
        const std::string second = action != nullptr ? meaning : ValueOf(option);
        const std::string third = action != nullptr ? CallOf(*action) : meaning;
        std::printf("| %s | %s | %s | %s |\n", NamesOf(option).c_str(), second.c_str(),
                    third.c_str(), ConditionsOf(option).c_str());
    }
}

std::vector<std::string_view> Sections() {
    std::vector<std::string_view> sections;
    for (const OptionFacts &option : kOptions) {
        bool known = false;
        for (const std::string_view section : sections) {
            known = known || section == option.section;
        }
        if (!known) {
            sections.push_back(option.section);
        }
    }
    return sections;
}

void PrintStrings() {
    std::puts("== documentation strings");
    const auto print = [](std::string_view text) {
        // Shorter ones may be part of other strings.
        constexpr std::size_t kShortest = 20;
        if (text.size() >= kShortest) {
            std::printf("%.*s\n", static_cast<int>(text.size()), text.data());
        }
    };
    for (const OptionFacts &option : kOptions) {
        for (const std::string_view text : {option.section, option.form, option.meaning,
                                            option.needs, option.excludes, option.goesWith}) {
            print(text);
        }
    }
    for (const ConditionFacts &condition : kConditions) {
        print(condition.expression);
        print(condition.words);
    }
#define PRINT_RESULT(NAME, VALUE, MEANING, CAUSE, REMEDY)                                          \
    print(MEANING);                                                                                \
    print(CAUSE);                                                                                  \
    print(REMEDY);
    SCALER_ISP_RESULT_CODES(PRINT_RESULT)
#undef PRINT_RESULT
}

} // namespace

int main() {
    for (const std::string_view section : Sections()) {
        PrintTable(section);
    }
    std::puts("== option names");
    for (const OptionFacts &option : kOptions) {
        std::printf("%.*s\n", static_cast<int>(option.name.size()), option.name.data());
    }
    PrintStrings();
    return 0;
}
