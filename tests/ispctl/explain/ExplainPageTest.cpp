// The explanation as JSON, SVG and HTML: hostile names stay text.

#include <cstdlib>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "explain/ExplainHtml.h"
#include "explain/ExplainJson.h"
#include "explain/FlashSvg.h"
#include "explain/XmlText.h"
#include "support/TempFolder.h"

namespace ispctl {
namespace {

using testing::HasSubstr;
using testing::Not;

const std::string kHostileNames[] = {
    "/plain.bin",
    "/</svg><script>alert(1)</script>",
    "/]]>&amp;&#1;<!-- \"'",
    "/newline\nreturn\rtab\t",
    std::string("/null\0escape\033[31m", 16),
    "/not text \xFF\xC0\x80\xED\xA0\x80",
    "/noncharacters \xEF\xBF\xBE\xEF\xBF\xBF",
    "/direction \xE2\x80\xAE.bin",
    "/line separator \xE2\x80\xA8",
    "/astral \xF0\x9F\x98\x80 tag \xF3\xA0\x80\x81",
    "/" + std::string(3000, 'x'),
};

/// Everything that comes from outside is this name.
Explanation ExplanationOf(const std::string &name) {
    Explanation explanation;
    explanation.library = name;
    explanation.arguments = {"--isp", "--fw", name};
    explanation.commandLine = "ispctl --isp --fw " + name;
    explanation.accepted = true;
    explanation.printed = name;
    explanation.plan = {{"step", name, name, name, {{1, "library", name}}}};
    Finding finding;
    finding.name = "some-name";
    finding.message = finding.suggestion = finding.option = finding.value = name;
    finding.corrected = {name};
    finding.argument = 2;
    finding.length = name.size();
    explanation.findings = {finding};
    explanation.sign.assign(SizeOf(RecordKind::Sign), '\0');
    explanation.sign.replace(20, std::min<std::size_t>(name.size(), 260), name, 0, 260);
    explanation.banks = {{name, 0, 0, true}, {name, 0, 0}, {name, 300, 1}};
    explanation.flash = DrawFlash(explanation.banks);
    explanation.comparedFile = name;
    explanation.differences = {{RecordKind::Sign, "szFwFile", 20, name, name}};
    return explanation;
}

class HostileNames : public testing::TestWithParam<std::string> {
  protected:
    /// Lets an independent parser read the text.
    void ExpectXml(const std::string &text) const {
#ifdef PYTHON
        const std::string file = m_folder.Write("page.xml", text);
        const std::string command =
            PYTHON " -c 'import sys, xml.dom.minidom as m; m.parse(sys.argv[1])' " + file;
        EXPECT_EQ(std::system(command.c_str()), 0) << text; // NOLINT(concurrency-mt-unsafe)
#else
        GTEST_SKIP() << "there is no Python here to parse " << text.size() << " bytes";
#endif
    }

    TempFolder m_folder;
    Explanation m_explanation = ExplanationOf(GetParam());
};

TEST_P(HostileNames, Svg_is_well_formed_xml) {
    ExpectXml(FlashSvg(m_explanation.flash, SvgParts::GridAndLegend));
}

TEST_P(HostileNames, Html_is_well_formed_xml) {
    ExpectXml(ExplainHtml(m_explanation));
}

TEST_P(HostileNames, Html_fetches_and_runs_nothing) {
    const std::string page = ExplainHtml(m_explanation);
    for (const char *markup : {"<script", "<img", "<link", "<iframe", " src=", " href=", "url("}) {
        EXPECT_THAT(page, Not(HasSubstr(markup)));
    }
}

TEST_P(HostileNames, Json_is_valid_and_safe_for_a_terminal) {
    for (const Charset charset : {Charset::Utf8, Charset::Ascii}) {
        const std::string text = ExplainJson(m_explanation, charset);
        const auto document = nlohmann::json::parse(text);
        EXPECT_EQ(document["findings"][0]["corrected"].size(), 1U);
        for (const char byte : text) {
            EXPECT_TRUE(byte == '\n' || static_cast<unsigned char>(byte) >= 0x20U);
            EXPECT_TRUE(charset == Charset::Utf8 || static_cast<unsigned char>(byte) < 0x7FU);
        }
    }
}

TEST_P(HostileNames, Json_keeps_names_that_are_text) {
    const auto document = nlohmann::json::parse(ExplainJson(m_explanation, Charset::Ascii));
    if (GetParam().find('\xFF') == std::string::npos) {
        EXPECT_EQ(document["arguments"][2], GetParam());
    } else {
        EXPECT_THAT(document["arguments"][2], HasSubstr("\\xFF"));
    }
}

INSTANTIATE_TEST_SUITE_P(Names, HostileNames, testing::ValuesIn(kHostileNames));

TEST(XmlText, Markup_and_forbidden_characters_are_escaped) {
    EXPECT_EQ(XmlText("<a href=\"b\">'&"), "&lt;a href=&quot;b&quot;&gt;&#39;&amp;");
    EXPECT_EQ(XmlText("\001\xFF"), "\\x01\\xFF");
    EXPECT_EQ(XmlText("\xEF\xBF\xBE"), "\\u{FFFE}");
    EXPECT_EQ(XmlText("\xE2\x82\xAC"), "\xE2\x82\xAC");
}

struct StatusCase {
    std::vector<FindingClass> findings;
    bool accepted;
    int status;
};

TEST(Explanation, Status_follows_the_worst_finding) {
    const StatusCase cases[] = {
        {{}, true, 0},
        {{FindingClass::Warning}, true, 3},
        {{FindingClass::Warning, FindingClass::Error}, true, 3},
        {{FindingClass::Error, FindingClass::Fatal}, true, 4},
        {{}, false, 4},
        {{FindingClass::Warning}, false, 4},
    };
    for (const StatusCase &row : cases) {
        Explanation explanation;
        explanation.library = "/lib";
        explanation.accepted = row.accepted;
        for (const FindingClass severity : row.findings) {
            explanation.findings.emplace_back().severity = severity;
        }
        EXPECT_EQ(StatusOf(explanation), row.status);
    }
    EXPECT_EQ(StatusOf(Explanation()), 0) << "a record of a file is no refused line";
}

} // namespace
} // namespace ispctl
