#include "script/ScriptCheck.h"

#include <gmock/gmock.h>

namespace {

using ispctl::CheckScript;
using ispctl::ScriptReport;
using testing::ElementsAre;
using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

TEST(ScriptCheck, Complete_script_has_no_problem) {
    const ScriptReport report = CheckScript(Bytes{1, 3, 0x10, 0x20, 0, 0, 1});
    EXPECT_THAT(report.problems, IsEmpty());
    EXPECT_THAT(report.notes, IsEmpty());
    EXPECT_EQ(report.records, 3U);
    EXPECT_EQ(report.outputBytes, 0U);
    EXPECT_EQ(CheckScript(Bytes{}).records, 0U);
}

TEST(ScriptCheck, Read_without_output_is_reported) {
    EXPECT_EQ(CheckScript(Bytes{5, 1, 7, 1, 9, 1, 2, 12, 1, 18, 1, 2}).outputBytes, 5U);
    EXPECT_EQ(CheckScript(Bytes{21, 0, 1, 1, 0, 1, 23, 1, 0, 2, 1, 25, 0, 1, 0, 3, 0}).outputBytes,
              261U);
    EXPECT_EQ(CheckScript(Bytes{13, 1, 2, 3, 0, 4, 0, 5}).outputBytes, 0U)
        << "a poll delivers nothing";
}

TEST(ScriptCheck, Operands_past_end_of_script_are_reported) {
    EXPECT_THAT(CheckScript(Bytes{1, 3, 0x10}).problems,
                ElementsAre("offset 1: WriteReg needs 3 bytes, only 2 left"));
    EXPECT_THAT(CheckScript(Bytes{22, 1, 0, 3, 1, 7, 7}).problems,
                ElementsAre("offset 0: WriteRegs needs 8 bytes, only 7 left"));
    EXPECT_THAT(CheckScript(Bytes{20, 1, 0}).problems,
                ElementsAre("offset 0: WriteRegsEx needs 6 bytes, only 3 left"));
    EXPECT_EQ(CheckScript(Bytes{23, 1, 0xFF}).outputBytes, 0U);
}

TEST(ScriptCheck, Opcodes_that_end_script_are_reported) {
    EXPECT_THAT(CheckScript(Bytes{1, 10, 11, 0xFE, 1}).problems,
                ElementsAre("offset 1: opcode 10 is not supported",
                            "offset 2: opcode 11 is not supported",
                            "offset 3: unknown opcode 0xFE"));
}

TEST(ScriptCheck, Opcode_26_after_block_is_reported) {
    Bytes script = {23, 1, 0, 2, 1, 26, 0, 0, 0, 1, 0, 0, 0, 2, 99, 99, 1};
    const char *note = "offset 5: Write32BitRegEx follows a block of 2 bytes, so the runner skips "
                       "the next 2 bytes";
    EXPECT_THAT(CheckScript(script).notes, ElementsAre(note));
    EXPECT_THAT(CheckScript(script).problems, IsEmpty());
    script.resize(15);
    EXPECT_THAT(CheckScript(script).notes,
                ElementsAre(note, "offset 5: only 1 of them are left, so the script ends there"));
    EXPECT_THAT(CheckScript(Bytes{26, 0, 0, 0, 1, 0, 0, 0, 2, 1}).notes, IsEmpty());
}

TEST(ScriptCheck, All_problems_are_counted_and_first_1000_kept) {
    const Bytes script(1500, 10);
    const ScriptReport report = CheckScript(script);
    EXPECT_EQ(report.records, 1500U);
    EXPECT_EQ(report.problemCount, 1500U);
    EXPECT_EQ(report.problems.size(), 1000U);
}

} // namespace
