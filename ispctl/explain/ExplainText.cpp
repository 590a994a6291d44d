#include "explain/ExplainText.h"

#include <algorithm>
#include <fmt/format.h>

#include "ResultInfo.h"
#include "WrapText.h"
#include "explain/FlashText.h"
#include "line/FindingText.h"

namespace ispctl {
namespace {

/// Collects the parts of the explanation; everything but the picture is made visible.
class TextWriter {
  public:
    explicit TextWriter(const ExplainLook &look) : m_charset(look.charset), m_width(look.width) {}

    std::string Write(const Explanation &explanation) {
        if (!explanation.library.empty()) {
            Heading("Command line");
            Line("  library: " + explanation.library);
            if (!explanation.notPassed.empty()) {
                Sentences("cannot be passed to the library: " + explanation.notPassed, "  ", 4);
            } else {
                Line("  " + explanation.commandLine);
            }
            Findings(explanation);
        }
        Plan(explanation.plan);
        if (!explanation.flash.files.empty()) {
            Heading("Flash");
            m_text += FlashText(explanation.flash, m_charset);
        }
        if (explanation.comparedFile.empty()) {
            Records(explanation);
        } else {
            Differences(explanation);
        }
        return m_text;
    }

  private:
    void Heading(std::string_view text) {
        m_text += fmt::format("{}{}\n", m_text.empty() ? "" : "\n", text);
    }
    void Line(std::string_view text) {
        m_text += Visible(text, Layout::OneLine, m_charset) + "\n";
    }
    void Sentences(std::string_view text, std::string_view indent, std::size_t indentOfOthers) {
        m_text +=
            WrapText(Visible(text, Layout::OneLine, m_charset), {m_width, indentOfOthers}, indent);
    }

    void Findings(const Explanation &explanation) {
        Heading("Findings");
        if (explanation.findings.empty()) {
            Line("  none");
        }
        FindingLook look;
        look.command = explanation.ownPart;
        look.width = m_width;
        look.charset = m_charset;
        m_text +=
            FindingsText(explanation.findings, explanation.corrected, explanation.arguments, look);
    }

    void Plan(const std::vector<PlanStep> &plan) {
        if (!plan.empty()) {
            Heading("What happens, in this order");
        }
        for (std::size_t i = 0; i < plan.size(); ++i) {
            Sentences(fmt::format("{:>3}. {}", i + 1, plan[i].text), "", 5);
            const std::string call = DescribePlanCall(plan[i]);
            if (!call.empty()) {
                Line("     " + call);
            }
            for (const PlanResult &result : plan[i].results) {
                Sentences(DescribePlanResult(result), "     ", 7);
            }
        }
    }

    void Records(const Explanation &explanation) {
        for (const auto &[record, bytes] : RecordsOf(explanation)) {
            const bool all = explanation.choice == FieldChoice::All;
            const auto rows = RowsOf(record, bytes, explanation.choice);
            Heading(fmt::format("{} record, {} bytes, {}",
                                record == RecordKind::Command ? "Command" : "Sign", bytes.size(),
                                all            ? "all fields"
                                : rows.empty() ? "all fields are defaults"
                                               : "fields that differ from the defaults"));
            std::size_t width = 0;
            for (const RecordRow &row : rows) {
                width = std::max(width, row.name.size());
            }
            for (const RecordRow &row : rows) {
                Line(fmt::format("  {:<8} {:<{}}  {}", row.offset, row.name, width, row.value));
                Line(fmt::format("           {:<{}}  {}", "", width, row.bytes));
            }
        }
    }

    void Differences(const Explanation &explanation) {
        const auto &differences = explanation.differences;
        Heading(fmt::format("{} field{} {} from {}", differences.size(),
                            differences.size() == 1 ? "" : "s",
                            differences.size() == 1 ? "differs" : "differ",
                            Visible(explanation.comparedFile, Layout::OneLine, m_charset)));
        for (const FieldDifference &difference : differences) {
            Line(fmt::format("  0x{:04X} {} {}", difference.offset, NameOf(difference.record),
                             difference.name));
            Line("    here: " + difference.first);
            Line("    file: " + difference.second);
        }
    }

    Charset m_charset;
    std::size_t m_width;
    std::string m_text;
};

} // namespace

std::string DescribePlanResult(const PlanResult &result) {
    if (!result.code) {
        return fmt::format("result of the {}: {}", result.source, result.text);
    }
    const std::string code =
        *result.code < 10 ? std::to_string(*result.code) : FormatResultCode(*result.code);
    return fmt::format("result {} of the {}: {}", code, result.source, result.text);
}

std::string DescribePlanCall(const PlanStep &step) {
    if (step.plugIn.empty()) {
        return "";
    }
    return step.function.empty() ? "file " + step.plugIn
                                 : fmt::format("calls {} of {}", step.function, step.plugIn);
}

std::string ExplainText(const Explanation &explanation, const ExplainLook &look) {
    return TextWriter(look).Write(explanation);
}

} // namespace ispctl
