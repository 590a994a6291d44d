#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "scaler_isp/ScalerIsp.h"
#include "scaler_isp/args/OptionNeeds.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"

// The columns NEEDS and EXCLUDES of options.def against what the library does: every option is
// added to many lines, and the result and both whole records are compared with those of the line
// without it. The expected outcome comes from the table alone; if the two disagree, the table is
// wrong.

using namespace ScalerIspFacts;

namespace {

using Line = std::vector<GivenOption>;

/// What one line gave: nothing, or both records.
struct Outcome {
    bool accepted = false;
    std::unique_ptr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> setting;
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS sign;
};

/// Whether two accepted lines gave the same records, byte for byte.
bool AreEqual(const Outcome &a, const Outcome &b) {
    return std::memcmp(a.setting.get(), b.setting.get(), sizeof *a.setting) == 0 &&
           std::memcmp(&a.sign, &b.sign, sizeof a.sign) == 0;
}

/// Files that the example values name, and the parsing of one line on a fresh parser.
class Workbench {
  public:
    Workbench() {
        folder.Write("f.bin", "firmware");
        for (const char *name : {"p.img", "boot.img", "f.sig", "key.pem"}) {
            folder.Write(name, "x");
        }
        folder.Write("settings.ini", "[ISP_Fw]\nstrFwPrefix=f\n");
        settingFile = folder.Path() + "settings.ini";
    }

    Outcome Parse(const Line &line) const {
        std::vector<std::string> words{"tool"};
        for (const GivenOption &option : line) {
            words.push_back("--" + std::string(option.name));
            if (FindOption(option.name)->takesValue) {
                words.emplace_back(option.value);
            }
        }
        std::vector<const char *> argv;
        for (const std::string &word : words) {
            argv.push_back(word.c_str());
        }
        return Parse(argv);
    }

    /// An accepted value that is not the default.
    std::string_view Example(const OptionFacts &option) const {
        static const std::map<std::string_view, std::string_view> kExamples = {
            {"dsmode", "2"},
            {"keypair", "3"},
            {"fw", "f.bin"},
            {"signfile", "f.sig"},
            {"boot", "boot.img"},
            {"dumpname", "other.bin"},
            {"totalverlen", "4"},
            {"majorverlen", "2"},
            {"subverlen", "1"},
            {"recordvermode", "1"},
            {"flagdata", "1,2"},
            {"write", "1.2.3"},
            {"writedata", "110,81,0x81,5"},
            {"searchfw", "auto"},
            {"bank", "1"}};
        if (option.name == "settingfile") {
            return settingFile;
        }
        const auto known = kExamples.find(option.name);
        if (known != kExamples.end()) {
            return known->second;
        }
        switch (option.effect.kind) {
        case Kind::Keyword:
            return option.effect.keywords.substr(0, option.effect.keywords.find(' '));
        case Kind::Firmware:
            return "p.img";
        case Kind::Bank:
            return kBanks[option.effect.entry];
        default:
            return option.form.starts_with("file") ? "key.pem" : "3";
        }
    }

    GivenOption Given(std::string_view name) const {
        const OptionFacts &option = *FindOption(name);
        return {option.name, option.takesValue ? Example(option) : std::string_view()};
    }

  private:
    static constexpr std::string_view kBanks[] = {"1",  "16", "32",  "48",  "64",
                                                  "80", "96", "112", "128", "144"};

    Outcome Parse(std::vector<const char *> &argv) const {
        // Zeroed, so that padding is equal in two parsers.
        std::memset(memory.get(), 0, sizeof(CCpIspArgsParse));
        auto *parser = new (memory.get()) CCpIspArgsParse;
        parser->SetCurrentDir(folder.Path());
        Outcome outcome;
        outcome.accepted = parser->ParseArgs(static_cast<int>(argv.size()), argv.data()) == 1;
        if (outcome.accepted) {
            outcome.setting.reset(
                new STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING(parser->GetISPCmdSetting()));
            outcome.sign = parser->GetDigitalSignArgs();
        }
        parser->~CCpIspArgsParse();
        return outcome;
    }

    struct Deleter {
        void operator()(void *bytes) const {
            ::operator delete(bytes);
        }
    };

    TempFolder folder;
    std::string settingFile;
    std::unique_ptr<void, Deleter> memory{::operator new(sizeof(CCpIspArgsParse))};
};

std::string Shown(const Line &line) {
    std::string text;
    for (const GivenOption &option : line) {
        text += (text.empty() ? "--" : " --") + std::string(option.name);
        text += option.value.empty() ? "" : " " + std::string(option.value);
    }
    return text;
}

bool IsUsable(const Line &line, std::size_t self) {
    const OptionFacts &option = *FindOption(line[self].name);
    return HasNeeds(option, {line, self}) && !IsExcluded(option, {line, self});
}

bool AllAreUsable(const Line &line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (!IsUsable(line, i)) {
            return false;
        }
    }
    return true;
}

/// Whether a search by prefix comes before the file that names the prefix: what it then finds
/// depends on the default settings file.
bool SearchesDefaultFile(const Line &line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i].name == "searchfw" && line[i].value == "prefix") {
            return !Holds("after settingfile", {line, i});
        }
    }
    return false;
}

/// Whether two files start at bank 0, which is refused for its values, not for its options.
bool FilesOverlap(const Line &line) {
    std::size_t atZero = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const Effect &effect = FindOption(line[i].name)->effect;
        if (effect.kind != Kind::Firmware && effect.kind != Kind::Search) {
            continue;
        }
        bool hasBank = false;
        for (const GivenOption &other : line) {
            const Effect &bank = FindOption(other.name)->effect;
            hasBank = hasBank || (bank.kind == Kind::Bank && bank.entry == effect.entry);
        }
        atZero += hasBank ? 0 : 1;
    }
    return atZero > 1;
}

/// How often the table called an option usable or not, so that no row passes unseen.
struct Seen {
    int usable = 0;
    int unusable = 0;
};

class OptionNeeds : public testing::Test {
  protected:
    /// Compares the table with the library for one option of a line; `without` is the outcome of
    /// the line without it. Standard output is captured meanwhile, so problems are collected.
    void Check(const Line &line, std::size_t self, const Outcome &with, const Outcome &without) {
        const std::string name = "--" + std::string(line[self].name);
        const bool hasEffect = with.accepted && (!without.accepted || !AreEqual(with, without));
        if (!IsUsable(line, self)) {
            ++seen[line[self].name].unusable;
            if (hasEffect) {
                problems.push_back(name + " has an effect: " + Shown(line));
            }
            return;
        }
        ++seen[line[self].name].usable;
        if (with.accepted && !hasEffect) {
            problems.push_back(name + " has no effect: " + Shown(line));
        }
        if (!with.accepted && AllAreUsable(line) && !FilesOverlap(line) &&
            !SearchesDefaultFile(line)) {
            problems.push_back(name + " is refused: " + Shown(line));
        }
    }

    /// Adds an option to a line at either end and checks it there.
    void CheckAdded(const Line &base, const GivenOption &option, const Outcome &without) {
        Line line = base;
        line.push_back(option);
        Check(line, line.size() - 1, bench.Parse(line), without);
        if (!DependsOnOrder(option.name)) {
            return;
        }
        line.pop_back();
        line.insert(line.begin(), option);
        Check(line, 0, bench.Parse(line), without);
    }

    /// Removes every option of a line in turn.
    void CheckRemoved(const Line &line) {
        const Outcome with = bench.Parse(line);
        for (std::size_t i = 0; i < line.size(); ++i) {
            Line rest = line;
            rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(i));
            Check(line, i, with, bench.Parse(rest));
        }
    }

    static bool DependsOnOrder(std::string_view name) {
        for (const OptionFacts &option : kOptions) {
            for (const std::string_view text : {option.needs, option.excludes, option.goesWith}) {
                const bool hasOrder = text.find("after ") != std::string_view::npos ||
                                      text.find("before ") != std::string_view::npos;
                if (hasOrder &&
                    (option.name == name || text.find(name) != std::string_view::npos)) {
                    return true;
                }
            }
        }
        return false;
    }

    void ExpectNoProblems() {
        constexpr std::size_t kShown = 40;
        std::string text;
        for (std::size_t i = 0; i < std::min(problems.size(), kShown); ++i) {
            text += problems[i] + "\n";
        }
        EXPECT_EQ(text, "") << problems.size() << " disagreements";
    }

    Workbench bench;
    std::map<std::string_view, Seen> seen;
    std::vector<std::string> problems;
};

/// Lines without an action and without the option that is added; "dsmode=1" gives a value.
constexpr const char *kContexts[] = {
    "",
    "fw",
    "searchfw",
    "fw1 bank1",
    "sw fw",
    "hw fw",
    "sw searchfw signfile",
    "sw fw signfile",
    "sw fw signfile factory",
    "sw fw factory newboot",
    "sw fw signfile dsmode=1",
    "sw fw signfile dsmode=1 vkfile",
    "sw fw signfile dsmode=2 keypair",
    "sw fw signfile dsmode=3 vkfile",
    "sw fw signfile dsmode=3 skfile",
    "sw fw dsmode=4",
    "sw fw signfile dsmode=4 nextvkfile",
    "sw fw dsmode=4 nextvkfile skfile",
    "sw fw dsmode=3 skfile factory",
    "hw dsmode=1 nextvkfile",
    "hw dsmode=2 fw nextvkfile",
    "hw fw nextvkfile factory newboot boot",
    "reg",
    "flash",
    "fwbin fw",
    "fwbincmd",
    "userdefined",
    "flash veraddr totalverlen majorverlen",
    "flash totalverlen majorverlen",
    "veraddr totalverlen majorverlen",
    "dumplen",
    "flagaddr fw",
    "writedata",
    "write",
    "settingfile searchfw=prefix",
    "settingfile searchfw=prefix sw signfile",
};

Line LineOf(const Workbench &bench, std::string_view text) {
    Line line;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        const std::size_t equals = word.find('=');
        GivenOption option = bench.Given(word.substr(0, equals));
        if (equals != std::string_view::npos) {
            option.value = word.substr(equals + 1);
        }
        line.push_back(option);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return line;
}

bool Contains(const Line &line, std::string_view name) {
    return std::any_of(line.begin(), line.end(),
                       [=](const GivenOption &option) { return option.name == name; });
}

bool ContainsWord(std::string_view text, std::string_view word) {
    const auto isLetter = [&](std::size_t i) {
        return i < text.size() && std::isalnum(static_cast<unsigned char>(text[i])) != 0;
    };
    for (std::size_t i = text.find(word); i != std::string_view::npos; i = text.find(word, i + 1)) {
        if ((i == 0 || !isLetter(i - 1)) && !isLetter(i + word.size())) {
            return true;
        }
    }
    return false;
}

/// Whether the action is named in an expression, or is the first that uses these files and
/// arguments: the library cannot tell the others from the first while it checks a line.
bool IsDistinct(const ActionFacts &action) {
    for (const OptionFacts &option : kOptions) {
        if (ContainsWord(option.needs, action.name) || ContainsWord(option.excludes, action.name)) {
            return true;
        }
    }
    const auto *first =
        std::find_if(std::begin(kActions), std::end(kActions), [&](const ActionFacts &other) {
            return other.files == action.files && other.reads == action.reads;
        });
    return first->name == action.name;
}

/// The file of a start bank, the start bank of a file: most options of these two kinds need it.
std::string_view PartnerOf(const OptionFacts &option) {
    const Kind wanted = option.effect.kind == Kind::Bank       ? Kind::Firmware
                        : option.effect.kind == Kind::Firmware ? Kind::Bank
                                                               : Kind::Flag;
    for (const OptionFacts &other : kOptions) {
        if (wanted != Kind::Flag && other.effect.kind == wanted &&
            other.effect.entry == option.effect.entry) {
            return other.name;
        }
    }
    return {};
}

} // namespace

TEST_F(OptionNeeds, Rows_contain_valid_expressions) {
    for (const OptionFacts &option : kOptions) {
        EXPECT_TRUE(IsValidExpression(option.needs)) << option.name;
        EXPECT_TRUE(IsValidExpression(option.excludes)) << option.name;
        EXPECT_TRUE(IsValidExpression(option.goesWith)) << option.name;
        EXPECT_FALSE(option.meaning.empty()) << option.name;
        EXPECT_FALSE(option.section.empty()) << option.name;
        const bool hasForm = option.takesValue && option.effect.kind != Kind::Keyword;
        EXPECT_EQ(option.form.empty(), !hasForm) << option.name;
    }
    for (const ConditionFacts &condition : kConditions) {
        EXPECT_TRUE(IsValidExpression(condition.expression)) << condition.name;
        EXPECT_FALSE(condition.words.empty()) << condition.name;
    }
}

TEST_F(OptionNeeds, IsValidExpression_rejects_mistakes) {
    for (const char *expression : {"fw,", "fw|", "(fw", "fw)", "nosuchoption", "NOSUCHCONDITION",
                                   "!", "after", "fw sw", "| fw", "fw, (sw|)"}) {
        EXPECT_FALSE(IsValidExpression(expression)) << expression;
    }
}

TEST_F(OptionNeeds, Expressions_hold_as_options_def_says) {
    const Line line = {{"isp"}, {"fw", "a.bin"}, {"dsmode", "1"}, {"bank1", "2"}, {"sw"}};
    const struct {
        const char *expression;
        bool holds;
    } rows[] = {{"", false},
                {"isp", true},
                {"hw", false},
                {"isp, hw", false},
                {"isp, hw|sw", true},
                {"hw|sw, reg", false},
                {"!hw", true},
                {"!(isp, sw)", false},
                {"dsmode=1", true},
                {"dsmode=2", false},
                {"(isp, hw)|dsmode = 1", true},
                {"after fw", false},
                {"before fw", false},
                {"before dsmode=1", true},
                {"before dsmode=2", false},
                {"before isp", false},
                {"after isp", true},
                {"PROGRAM", true},
                {"SIGNATURE", false},
                {"FIRMWARE, !LOCATION", true},
                {"NEVER", false}};
    // The option of the row is the second one, --fw; it is neither left nor right of itself.
    for (const auto &row : rows) {
        EXPECT_EQ(Holds(row.expression, {line, 1}), row.holds) << row.expression;
    }
    EXPECT_FALSE(Holds("OWN_FILE", {line, 3}));
    EXPECT_FALSE(Holds("ANOTHER", {line, 4}));
    const Line two = {{"sw"}, {"hw"}, {"searchfw", "auto"}, {"bank", "1"}};
    EXPECT_TRUE(Holds("ANOTHER", {two, 0}));
    EXPECT_TRUE(Holds("OWN_FILE", {two, 3}));
}

// An action that is not distinct, and an option whose texts are those of another one, are tested
// alone with each other only; the random lines and the files and banks below see them in more
// company.
TEST_F(OptionNeeds, Table_agrees_with_removal_of_one_option_in_every_context) {
    static_cast<void>(OutputOf([&] {
        for (const ActionFacts &action : kActions) {
            for (const char *context : kContexts) {
                const bool isPlain = std::string_view(context).empty();
                if (!isPlain && !IsDistinct(action)) {
                    continue;
                }
                Line base = LineOf(bench, context);
                base.insert(base.begin(), bench.Given(action.name));
                CheckRemoved(base);
                const Outcome without = bench.Parse(base);
                for (const OptionFacts &option : kOptions) {
                    if (!Contains(base, option.name) && (isPlain || option.like.empty())) {
                        CheckAdded(base, bench.Given(option.name), without);
                    }
                }
            }
        }
    }));
    ExpectNoProblems();
}

TEST_F(OptionNeeds, Table_agrees_with_removal_of_file_or_bank_of_every_entry) {
    static_cast<void>(OutputOf([&] {
        for (const std::string_view action : {"isp", "recordver", "sign", "resetmcu"}) {
            for (const char *context : {"", "fw", "fwbin", "hw fw nextvkfile"}) {
                for (const OptionFacts &option : kOptions) {
                    const std::string_view partner = PartnerOf(option);
                    Line line = LineOf(bench, context);
                    if (partner.empty() || Contains(line, option.name) || Contains(line, partner)) {
                        continue;
                    }
                    line.insert(line.begin(), bench.Given(action));
                    line.push_back(bench.Given(partner));
                    CheckAdded(line, bench.Given(option.name), bench.Parse(line));
                }
            }
        }
    }));
    ExpectNoProblems();
}

TEST_F(OptionNeeds, Table_agrees_with_removal_of_every_option_of_random_lines) {
    constexpr int kLines = 600;
    std::mt19937 random(20260101);
    const auto below = [&](std::size_t end) { return static_cast<std::size_t>(random() % end); };
    static_cast<void>(OutputOf([&] {
        for (int i = 0; i < kLines; ++i) {
            Line line = LineOf(bench, kContexts[below(std::size(kContexts))]);
            for (std::size_t more = below(5); more > 0; --more) {
                const OptionFacts &option =
                    kOptions[std::size(kActions) + below(kOptions.size() - std::size(kActions))];
                if (!Contains(line, option.name)) {
                    line.push_back(bench.Given(option.name));
                }
            }
            line.push_back(bench.Given(kActions[below(std::size(kActions))].name));
            std::shuffle(line.begin(), line.end(), random);
            CheckRemoved(line);
        }
    }));
    ExpectNoProblems();
}

TEST_F(OptionNeeds, Contexts_make_every_option_usable_and_unusable) {
    for (const ActionFacts &action : kActions) {
        for (const char *context : kContexts) {
            for (const OptionFacts &option : kOptions) {
                Line line = LineOf(bench, context);
                if (!Contains(line, option.name) && option.effect.group != Group::Action) {
                    line.push_back(bench.Given(option.name));
                }
                const std::string_view partner = PartnerOf(option);
                if (!partner.empty() && !Contains(line, partner)) {
                    line.push_back(bench.Given(partner));
                }
                line.insert(line.begin(), bench.Given(action.name));
                for (std::size_t i = 0; i < line.size(); ++i) {
                    Seen &counts = seen[line[i].name];
                    ++(IsUsable(line, i) ? counts.usable : counts.unusable);
                }
            }
        }
    }
    for (const OptionFacts &option : kOptions) {
        EXPECT_EQ(seen[option.name].usable > 0, option.needs != "NEVER") << option.name;
        const bool conditional =
            !option.needs.empty() || (!option.excludes.empty() && option.excludes != "ANOTHER");
        EXPECT_EQ(seen[option.name].unusable > 0, conditional) << option.name;
    }
}
