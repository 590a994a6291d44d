#include "explain/ExplainText.h"

#include <algorithm>
#include <fmt/format.h>

#include "ResultInfo.h"
#include "explain/FlashText.h"
#include "line/FindingText.h"

namespace ispctl {
namespace {

/// Collects the parts of the explanation; everything but the picture is made visible.
class TextWriter {
  public:
    explicit TextWriter(Charset charset) : m_charset(charset) {}

    std::string Write(const Explanation &explanation) {
        if (!explanation.library.empty()) {
            Heading("Command line");
            Line("  library: " + explanation.library);
            if (!explanation.notPassed.empty()) {
                Line("  cannot be passed to the library: " + explanation.notPassed);
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

    void Findings(const Explanation &explanation) {
        Heading("Findings");
        if (explanation.findings.empty()) {
            Line("  none");
        }
        FindingLook look;
        look.command = "ispctl explain";
        look.charset = m_charset;
        m_text += FindingsText(explanation.findings, explanation.arguments, look);
    }

    void Plan(const std::vector<PlanStep> &plan) {
        if (!plan.empty()) {
            Heading("What happens, in this order");
        }
        for (std::size_t i = 0; i < plan.size(); ++i) {
            Line(fmt::format("  {}. {}", i + 1, plan[i].text));
            const std::string call = DescribePlanCall(plan[i]);
            if (!call.empty()) {
                Line("     " + call);
            }
            for (const PlanResult &result : plan[i].results) {
                Line("     result " + DescribePlanResult(result));
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
    std::string m_text;
};

} // namespace

std::string DescribePlanResult(const PlanResult &result) {
    const std::string code = !result.code        ? "(plug-in)"
                             : *result.code < 10 ? fmt::format("{} (library)", *result.code)
                                                 : FormatResultCode(*result.code) + " (library)";
    return fmt::format("{}: {}", code, result.text);
}

std::string DescribePlanCall(const PlanStep &step) {
    if (step.plugIn.empty()) {
        return "";
    }
    return step.function.empty() ? "plug-in " + step.plugIn
                                 : fmt::format("calls {} of {}", step.function, step.plugIn);
}

std::string ExplainText(const Explanation &explanation, Charset charset) {
    return TextWriter(charset).Write(explanation);
}

} // namespace ispctl
