#ifndef ISPCTL_LINE_LINE_UNDER_CHECK_H
#define ISPCTL_LINE_LINE_UNDER_CHECK_H

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "line/CheckLine.h"
#include "line/FindingTable.h"
#include "line/GivenArguments.h"
#include "line/LineEdits.h"
#include "scaler_isp/args/OptionNeeds.h"

namespace ispctl {

/// What a finding underlines.
enum class Underline { Line, Name, Value };

/// One command line, what the library makes of it, and what was found about it so far.
class LineUnderCheck {
  public:
    /// \param mayParse  false: the library's parser is not asked, because a file that it would open
    ///                  could block it
    LineUnderCheck(const std::vector<std::string> &arguments, const LineContext &context,
                   bool mayParse);

    const ArgumentList &Arguments() const {
        return m_arguments;
    }
    const LineContext &Context() const {
        return m_context;
    }
    const std::vector<GivenArgument> &Given() const {
        return m_given;
    }

    /// The options that the library stores, in their order.
    const std::vector<const GivenArgument *> &Options() const {
        return m_options;
    }
    /// The line as the expressions of the option table see it. \param index  into Options()
    ScalerIspFacts::GivenLine LineFor(std::size_t index) const {
        return {m_facts, index};
    }
    const std::vector<ScalerIspFacts::GivenOption> &Facts() const {
        return m_facts;
    }
    bool Holds(std::string_view expression) const {
        return HoldsFor(0, expression);
    }
    bool HoldsFor(std::size_t index, std::string_view expression) const {
        return ScalerIspFacts::Holds(expression, LineFor(index));
    }
    /// The last one with this whole name, or null.
    const GivenArgument *Find(std::string_view name) const;
    /// Whether a later option of the same name replaces this value.
    bool IsReplaced(std::size_t index) const;
    /// The only action, or null if there is none or more than one.
    const ScalerIspFacts::ActionFacts *Action() const;
    /// Whether needs and excludes of this option leave it an effect.
    bool IsUsable(std::size_t index) const;

    bool HasParser() const {
        return m_parsed.has_value();
    }
    bool IsRefused() const {
        return m_parsed && !m_parsed->accepted;
    }
    const std::string &Printed() const {
        return m_parsed->printed;
    }
    /// What the parser makes of a similar line, without the records.
    const ParsedLine &Parse(const ArgumentList &arguments) const;

    /// Adds a finding about this argument; option and value are taken from it if words has none.
    Finding &Report(FindingName name, const GivenArgument &given, Underline underline,
                    FindingWords words);
    /// Adds a finding about the complete line.
    Finding &Report(FindingName name, const FindingWords &words);
    std::vector<Finding> &Findings() {
        return m_findings;
    }
    /// Notes what the line would be with the finding corrected that was reported last: what is not
    /// found about that line follows from this finding.
    void AddProbe(ArgumentList corrected);
    /// The noted lines, with name and argument of their finding.
    struct Probe {
        std::string_view name;
        std::optional<std::size_t> argument;
        std::string typed;
        ArgumentList corrected;
    };
    const std::vector<Probe> &Probes() const {
        return m_probes;
    }
    /// Leaves an argument to the finding that explains it: no other one is needed.
    void MarkExplained(std::size_t position) {
        m_explained.insert(position);
    }
    bool IsExplained(std::size_t position) const {
        return m_explained.contains(position);
    }
    /// Whether a finding that may be the reason of a refusal is about this argument.
    bool HasFatal(const GivenArgument &given) const;

  private:
    std::string_view FactOf(const GivenArgument &given);

    const ArgumentList &m_arguments;
    const LineContext &m_context;
    std::vector<GivenArgument> m_given;
    std::vector<const GivenArgument *> m_options;
    std::deque<std::string> m_numbers; ///< values as decimal numbers, which m_facts refers to
    std::vector<ScalerIspFacts::GivenOption> m_facts;
    std::optional<ParsedLine> m_parsed;
    mutable std::map<ArgumentList, ParsedLine> m_similar; ///< several checks try the same lines
    std::vector<Finding> m_findings;
    std::vector<Probe> m_probes;
    std::set<std::size_t> m_explained;
};

} // namespace ispctl

#endif
