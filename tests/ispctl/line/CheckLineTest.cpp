#include "line/CheckLine.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "line/CorrectLine.h"
#include "line/FindingTable.h"
#include "line/LineFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CheckLine : public LineFixture {};

// Lines of the pages, and of what a factory runs.
const char *const kGoodLines[] = {
    "--isp --fw @f.bin",
    "--isp --fw=@f.bin --bank=2 --comm=3",
    "--isp --fw @g.bin --bank 0xff --slave 0x6e",
    "--isp --bank 253 --fw @f.bin --comm 0x13 --slave 0 --sendextracmd both",
    "--isp --sw --dsmode 2 --keypair 1 --fw @f.bin --signfile @s.sig",
    "--isp --sw --dsmode 0x2 --keypair 1 --fw @f.bin --signfile @s.sig",
    "--isp --sw --dsmode 3 --vkfile @k.pem --fw @f.bin --signfile @s.sig",
    "--isp --sw --dsmode 1 --vkfile @k.pem --subcert @k.pem --fw @f.bin --signfile @s.sig",
    "--isp --sw --dsmode 4 --nextvkfile @k.pem --fw @f.bin --signfile @s.sig",
    "--sign --sw --dsmode 2 --keypair 1 --fw @f.bin",
    "--sign --sw --dsmode 3 --skfile @k.pem --fw @f.bin --signfile @new.sig",
    "--sign --sw --dsmode 4 --skfile @k.pem --nextvkfile @k.pem --fw @f.bin",
    "--sign --hw --skfile @k.pem --nextvkfile @k.pem --fw @f.bin",
    "--sign --hw --dsmode 1 --nextvkfile @k.pem",
    "--verify --sw --dsmode 3 --vkfile @k.pem --fw @f.bin --signfile @s.sig",
    "--verify --sw --dsmode 2 --fw @f.bin --signfile @s.sig",
    "--ispuser --flagaddr 0x1000 --flagdata 1,2,0xff --fw @f.bin",
    "--ispdiff --fw @f.bin --fw1 @g.bin --bank1 16",
    "--ispcopy --fw1 @g.bin --bank1 16",
    "--dumpflash --dumpaddr 0x100000 --dumplen 1000 --dumpname @dump.bin",
    "--dumpflash --dumplen 1000",
    ("--recordver --flash --veraddr 0x100 --totalverlen 4 --majorverlen 2 --subverlen 2 "
     "--recordvermode 1"),
    "--recordver --reg",
    "--recordver --fwbin --fw @f.bin",
    "--recordver --userdefined 3 --comparever",
    "--userdefinedinfo --infotype hpscaler",
    "--edpisp --edpmode readver",
    "--resetmcu",
    "--enterispmode --ispchannel",
    "--getscalertype --settingfile @s.sig",
};

TEST_F(CheckLine, Good_line_has_no_finding) {
    for (const char *line : kGoodLines) {
        const Words arguments = Line(line);
        ASSERT_TRUE(m_context.parse(arguments).accepted) << line;
        const Findings findings = Check(arguments);
        EXPECT_THAT(Names(findings), IsEmpty()) << line << "\n" << Shown(arguments, findings);
    }
}

TEST_F(CheckLine, Good_line_has_no_finding_without_parser) {
    m_context.parse = nullptr;
    for (const char *line : kGoodLines) {
        EXPECT_THAT(Names(Check(line)), IsEmpty()) << line;
    }
}

TEST_F(CheckLine, Search_that_finds_a_file_is_good) {
    Library().Write("only.bin", "x");
    const Words names = Names(Check("--isp --searchfw auto --bank 3"));
    std::filesystem::remove(Library().Path("only.bin"));
    EXPECT_THAT(names, IsEmpty());
}

TEST_F(CheckLine, Link_that_leads_to_no_file_is_named) {
    const std::pair<const char *, const char *> rows[] = {
        {"loop.bin", "a symbolic link that cannot be followed: Too many levels of symbolic links"},
        {"old.bin", "a symbolic link that leads to no file"}};
    std::filesystem::create_symlink("loop.bin", m_here.Path("loop.bin"));
    std::filesystem::create_symlink("gone.bin", m_here.Path("old.bin"));
    for (const auto &[name, words] : rows) {
        const Findings found = Check(Line("--isp --fw @" + std::string(name)));
        ASSERT_THAT(Names(found), ElementsAre("fatal firmware-not-a-file")) << name;
        EXPECT_EQ(found[0].message,
                  "--fw: " + m_here.Path(name) + " is " + words + ", not a firmware file");
    }
}

TEST_F(CheckLine, Spelling_comes_first_then_fatal_findings_errors_and_warnings) {
    EXPECT_THAT(Names(Check("--isp --comm 010 --fw @f.bin --slave 999 --bnak 3 --factory")),
                ElementsAre("error unknown-option", "fatal number-out-of-range",
                            "warning octal-number", "warning unsigned-programming"));
}

struct Cause {
    const char *line;
    const char *cause;       ///< name
    const char *typed;       ///< what the consequence names
    const char *consequence; ///< class and name
};

const Cause kCauses[] = {
    {"--isp --fww @f.bin", "unknown-option", "--fww", "fatal missing-need"},
    {"--isp --f @f.bin", "ambiguous-option", "--f", "fatal missing-need"},
    {"--ips --fw @f.bin", "unknown-option", "--ips", "fatal no-action"},
    {"isp --fw @f.bin", "leftover-argument", "isp", "fatal no-action"},
    {"--isp=1 --fw @f.bin", "unwanted-value", "--isp", "fatal no-action"},
    {"--isp --fw", "missing-value", "--fw", "fatal missing-need"},
    {"--isp --fw --bank 3", "value-like-option", "--fw", "error leftover-argument"},
    {"--isp --fw @f.bin --sww --signfile @s.sig", "unknown-option", "--sww",
     "error unverified-signature"},
};

TEST_F(CheckLine, Consequence_of_a_spelling_mistake_comes_last_and_names_it) {
    for (const Cause &row : kCauses) {
        const Words arguments = Line(row.line);
        const Findings findings = Check(arguments);
        SCOPED_TRACE(Shown(arguments, findings));
        ASSERT_EQ(findings.size(), 2U);
        EXPECT_EQ(findings[0].name, row.cause);
        EXPECT_EQ(findings[0].followsFrom, "");
        EXPECT_EQ(Names(findings)[1], row.consequence);
        EXPECT_EQ(findings[1].followsFrom, row.typed);
    }
}

TEST_F(CheckLine, Finding_that_stays_after_the_correction_follows_from_nothing) {
    for (const ispctl::Finding &finding : Check("--isp --fw @f.bin --bnak 3 --slave 999")) {
        EXPECT_EQ(finding.followsFrom, "") << finding.name;
    }
}

struct Corrected {
    const char *line;
    const char *corrected;
    std::vector<std::string> remaining; ///< class and name
};

const Corrected kCorrected[] = {
    {"--ips --fww @f.bin --bnak 3 --slave x",
     "--isp --fw @f.bin --bank 3 --slave x",
     {"fatal not-a-number"}},
    {"--ips --fww f.bin --bnak 16k", "--isp --fw @f.bin --bank 16", {}},
    {"--isp --fw @f.bin --signfile @s.sig --vkfile @k.pem --dsmod 3 --comm 010",
     "--isp --fw @f.bin --sw --signfile @s.sig --vkfile @k.pem --dsmode 3 --comm 10",
     {}},
    {"--isp --fw @f.bin --zzzzzz --bnak 3",
     "--isp --fw @f.bin --zzzzzz --bank 3",
     {"error unknown-option"}},
    {"--isp --fw @f.bin --zzzzzz", "", {"error unknown-option"}},
    {"--isp --fw @f.bin", "", {}},
};

TEST_F(CheckLine, Corrected_line_has_all_corrections) {
    for (const Corrected &row : kCorrected) {
        const Words arguments = Line(row.line);
        const auto corrected = ispctl::CorrectLine(arguments, Check(arguments), {}, m_context);
        EXPECT_EQ(corrected.arguments, Line(row.corrected)) << row.line;
        EXPECT_EQ(Names(corrected.remaining), row.remaining) << row.line;
    }
}

TEST_F(CheckLine, Allowed_finding_stays_in_corrected_line) {
    const Words arguments = Line("--isp --fw @f.bin --bnak 3 --sww");
    const auto corrected =
        ispctl::CorrectLine(arguments, Check(arguments), {"unknown-option"}, m_context);
    EXPECT_THAT(corrected.arguments, IsEmpty());
    EXPECT_THAT(corrected.remaining, IsEmpty());
}

TEST_F(CheckLine, Finding_about_something_else_is_not_the_reason) {
    // The signature mode would be wrong, too, but without --sw nobody reads it.
    EXPECT_THAT(Names(Check("--isp --fw @f.bin --comm 99 --dsmode 9")),
                ElementsAre("fatal number-out-of-range", "error unverified-signature",
                            "error number-out-of-range"));
}

TEST_F(CheckLine, Without_parser_what_the_library_would_refuse_is_still_fatal) {
    m_context.parse = nullptr;
    EXPECT_THAT(Names(Check("--isp --fw @f.bin --comm 99")),
                ElementsAre("fatal number-out-of-range"));
    EXPECT_THAT(Names(Check("--isp --fw f.bin")), ElementsAre("fatal relative-path-elsewhere"));
    EXPECT_THAT(Names(Check("--isp --fw @f.bin --sw --hw --signfile @s.sig")),
                testing::Contains("fatal excluded-option"));
}

TEST_F(CheckLine, Unknown_refusal_gives_what_the_library_prints) {
    // A library with a rule that this program does not know.
    m_context.parse = [](const Words &arguments) {
        ispctl::ParsedLine parsed;
        parsed.accepted = std::count(arguments.begin(), arguments.end(), "--ispchannel") == 0;
        parsed.printed = parsed.accepted ? "" : "no channel today\n";
        return parsed;
    };
    const Findings findings = Check("--isp --fw @f.bin --ispchannel");
    ASSERT_THAT(Names(findings), ElementsAre("fatal refused"));
    EXPECT_EQ(findings[0].argument, 3U);
    EXPECT_THAT(findings[0].message, testing::HasSubstr("no channel today"));
    m_context.parse = [](const Words &) { return ispctl::ParsedLine{false, "never\n", nullptr}; };
    const Findings all = Check("--isp --fw @f.bin");
    ASSERT_THAT(Names(all), ElementsAre("fatal refused"));
    EXPECT_EQ(all[0].argument, std::nullopt);
}

TEST_F(CheckLine, Nobody_is_advised_to_skip_the_verification) {
    for (const char *line : {"--isp --fw @f.bin --sw", "--isp --fw @f.bin --sw --dsmode 3",
                             "--isp --fw @f.bin --sw --signfile @s.sig --dsmode 1"}) {
        for (const ispctl::Finding &finding : Check(line)) {
            EXPECT_EQ(finding.suggestion.find("--factory"), std::string::npos) << line;
            EXPECT_EQ(finding.suggestion.find("--hw"), std::string::npos) << line;
        }
    }
}

TEST_F(CheckLine, Line_without_action_gives_nothing_but_that) {
    EXPECT_THAT(Names(Check("--fw @f.bin --bank 3 --dumplen 4")), ElementsAre("fatal no-action"));
}

TEST(FindingTable, Names_are_unique_and_readable) {
    std::set<std::string_view> names;
    for (const ispctl::FindingRow &row : ispctl::kFindingRows) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_THAT(std::string(row.name), testing::MatchesRegex("[a-z]+(-[a-z]+)*"));
        EXPECT_FALSE(row.message.ends_with(".")) << row.name;
    }
}

} // namespace
