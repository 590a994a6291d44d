#include "line/LineUnderCheck.h"

#include <algorithm>
#include <utility>

#include "line/NumberText.h"
#include "line/ValueForm.h"

namespace ispctl {

using ScalerIspFacts::ActionFacts;

LineUnderCheck::LineUnderCheck(const std::vector<std::string> &arguments,
                               const LineContext &context, bool mayParse)
    : m_arguments(arguments), m_context(context), m_given(ReadGivenArguments(arguments)) {
    for (const GivenArgument &given : m_given) {
        if (given.kind == GivenArgument::Kind::Option) {
            m_options.push_back(&given);
            m_facts.push_back({given.option->name, FactOf(given)});
        }
    }
    if (mayParse && context.parse) {
        m_parsed = context.parse(arguments);
    }
}

// The expressions of the option table compare decimal numbers; 0x3 and 03 are 3, too.
std::string_view LineUnderCheck::FactOf(const GivenArgument &given) {
    if (!given.value) {
        return {};
    }
    const NumberText number = ReadNumberText(*given.value);
    if (FormOf(*given.option).kind != ValueForm::Kind::Number || !number.isComplete) {
        return *given.value;
    }
    return m_numbers.emplace_back(std::to_string(number.stored));
}

const GivenArgument *LineUnderCheck::Find(std::string_view name) const {
    const auto found = std::find_if(m_options.rbegin(), m_options.rend(),
                                    [&](const auto *given) { return given->option->name == name; });
    return found != m_options.rend() ? *found : nullptr;
}

bool LineUnderCheck::IsReplaced(std::size_t index) const {
    return Find(m_options[index]->option->name) != m_options[index];
}

const ActionFacts *LineUnderCheck::Action() const {
    const ActionFacts *action = nullptr;
    for (const GivenArgument *given : m_options) {
        const ActionFacts *facts = ScalerIspFacts::FindAction(given->option->name);
        if (facts != nullptr && action != nullptr && facts != action) {
            return nullptr;
        }
        action = facts != nullptr ? facts : action;
    }
    return action;
}

bool LineUnderCheck::IsUsable(std::size_t index) const {
    const ScalerIspFacts::OptionFacts &option = *m_options[index]->option;
    return HasNeeds(option, LineFor(index)) && !IsExcluded(option, LineFor(index));
}

const ParsedLine &LineUnderCheck::Parse(const ArgumentList &arguments) const {
    auto found = m_similar.find(arguments);
    if (found == m_similar.end()) {
        found = m_similar.emplace(arguments, m_context.parse(arguments)).first;
        found->second.records.reset(); // they are large, and nobody reads them
    }
    return found->second;
}

Finding &LineUnderCheck::Report(FindingName name, const GivenArgument &given, Underline underline,
                                FindingWords words) {
    if (words.option.empty() && given.kind != GivenArgument::Kind::NonOption) {
        words.option = given.typed;
    }
    if (words.value.empty() && given.value) {
        words.value = *given.value;
    }
    Finding &finding = Report(name, words);
    const bool hasOwnValue = given.valuePosition == given.position;
    finding.argument = underline == Underline::Value ? given.valuePosition : given.position;
    finding.length = given.typed.size();
    if (underline == Underline::Value) {
        finding.offset = hasOwnValue ? given.typed.size() + 1 : 0;
        finding.length = m_arguments[given.valuePosition].size() - finding.offset;
        if (finding.length == 0) { // "--comm=": nothing else can be underlined
            finding.offset = 0;
            finding.length = m_arguments[given.valuePosition].size();
        }
    }
    return finding;
}

Finding &LineUnderCheck::Report(FindingName name, const FindingWords &words) {
    return m_findings.emplace_back(MakeFinding(name, words));
}

void LineUnderCheck::AddProbe(ArgumentList corrected) {
    const Finding &finding = m_findings.back();
    m_probes.push_back({finding.name, finding.argument,
                        finding.option.empty() ? finding.value : finding.option,
                        std::move(corrected)});
}

bool LineUnderCheck::HasFatal(const GivenArgument &given) const {
    return std::any_of(m_findings.begin(), m_findings.end(), [&](const Finding &finding) {
        return finding.severity == FindingClass::Fatal && finding.argument &&
               *finding.argument >= given.position && *finding.argument <= given.valuePosition;
    });
}

} // namespace ispctl
