#include <algorithm>
#include <random>

#include "line/LineFixture.h"
#include "line/ValueForm.h"

// Random lines against the real parser: the verdict of the findings is that of the library.

namespace {

using ispctl::Finding;
using ispctl::FindingClass;
using ScalerIspFacts::kOptions;

class RandomLine : public LineFixture {
  protected:
    std::size_t Below(std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(m_random);
    }

    std::string ValueOf(const ScalerIspFacts::OptionFacts &option) {
        const char *files[] = {"@f.bin",  "@g.bin", "@k.pem", "@s.sig",
                               "@no.bin", "f.bin",  "@sub",   "@empty.bin"};
        const char *numbers[] = {"1", "2",          "3",  "4",  "0x10", "010", "99", "300",
                                 "x", "4294967297", "7k", "09", "0",    "-1",  "5"};
        const char *lists[] = {"1,2,3", "1.2.3", "1,2,129,5", "1,2,300", "7", "1,x"};
        const ispctl::ValueForm form = ispctl::FormOf(option);
        if (Below(40) == 0) {
            return Below(2) == 0 ? "" : "--isp";
        }
        switch (form.kind) {
        case ispctl::ValueForm::Kind::File:
            return Expand({files[Below(Below(3) == 0 ? 8 : 4)]}).front();
        case ispctl::ValueForm::Kind::Bytes:
            return lists[Below(6)];
        case ispctl::ValueForm::Kind::Keyword:
            return Below(5) == 0 ? "wrong"
                                 : std::string(form.keywords[Below(form.keywords.size())]);
        default:
            return numbers[Below(Below(3) == 0 ? 15 : 4)];
        }
    }

    void Append(Words &words, const ScalerIspFacts::OptionFacts &option) {
        std::string name = "--" + std::string(option.name);
        if (Below(30) == 0) {
            name.pop_back();
        }
        if (!option.takesValue) {
            words.push_back(name + (Below(50) == 0 ? "=1" : ""));
            return;
        }
        const std::string value = ValueOf(option);
        if (Below(5) == 0 || value.empty()) {
            words.push_back(name + "=" + value);
        } else {
            words.insert(words.end(), {name, value});
        }
    }

    Words Make() {
        Words words;
        const char *actions[] = {"isp",    "isp",       "isp",       "ispuser",  "sign",
                                 "verify", "recordver", "dumpflash", "i2cwrite", "resetmcu"};
        if (Below(20) != 0) {
            Append(words, *ScalerIspFacts::FindOption(actions[Below(10)]));
        }
        if (Below(4) != 0) {
            Append(words, *ScalerIspFacts::FindOption("fw"));
        }
        for (std::size_t count = Below(5); count > 0; --count) {
            // Half of them from the options that belong together.
            const auto &option = kOptions[Below(kOptions.size())];
            const bool isRelated = option.section != "actions" || Below(8) == 0;
            if (isRelated) {
                Append(words, option);
            }
        }
        if (Below(20) == 0) {
            words.push_back("more");
        }
        return words;
    }

    std::mt19937 m_random{20260112};
};

bool HasFatal(const std::vector<Finding> &findings) {
    return std::any_of(findings.begin(), findings.end(), [](const Finding &finding) {
        return finding.severity == FindingClass::Fatal;
    });
}

TEST_F(RandomLine, Fatal_findings_exist_exactly_if_the_library_refuses) {
    int refused = 0;
    int accepted = 0;
    for (int i = 0; i < 300; ++i) {
        const Words line = Make();
        const Findings findings = Check(line);
        const bool isRefused = !m_context.parse(line).accepted;
        ASSERT_EQ(HasFatal(findings), isRefused) << testing::PrintToString(line) << "\n"
                                                 << Shown(line, findings);
        refused += isRefused ? 1 : 0;
        accepted += isRefused ? 0 : 1;
        for (const Finding &finding : findings) {
            EXPECT_NE(finding.name, "refused") << testing::PrintToString(line);
            if (finding.argument) {
                ASSERT_LE(finding.offset + finding.length, line.at(*finding.argument).size());
                ASSERT_GT(finding.length, 0U);
            }
        }
    }
    EXPECT_GT(refused, 60);
    EXPECT_GT(accepted, 60);
}

// Without the option the line must give other records, or a refusal. Options with a value are left
// out: a value may be the default, and harmless.
TEST_F(RandomLine, Option_without_finding_has_an_effect) {
    int looked = 0;
    for (int i = 0; i < 800; ++i) {
        const Words line = Make();
        const ispctl::ParsedLine parsed = m_context.parse(line);
        if (!parsed.accepted || !Check(line).empty()) {
            continue;
        }
        for (std::size_t at = 0; at < line.size(); ++at) {
            Words without(line);
            const bool hasValue = line[at].find('=') == std::string::npos && at + 1 < line.size() &&
                                  !line[at + 1].starts_with("--");
            if (!line[at].starts_with("--")) {
                continue;
            }
            const auto first = without.begin() + static_cast<std::ptrdiff_t>(at);
            without.erase(first, first + (hasValue ? 2 : 1));
            const ispctl::ParsedLine other = m_context.parse(without);
            const std::string bytes(reinterpret_cast<const char *>(parsed.records.get()),
                                    sizeof *parsed.records);
            const std::string others(reinterpret_cast<const char *>(other.records.get()),
                                     sizeof *other.records);
            // A value that is the default, such as --slave 0, is harmless.
            const bool isDefault = hasValue || line[at].find('=') != std::string::npos;
            EXPECT_TRUE(!other.accepted || bytes != others || isDefault)
                << line[at] << " in " << testing::PrintToString(line);
            ++looked;
        }
    }
    EXPECT_GT(looked, 100);
}

} // namespace
