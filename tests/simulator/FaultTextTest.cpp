// Each fault of faults.txt: its smallest and largest values, and what is no fault.

#include "device/Faults.h"

#include <gmock/gmock.h>

#include "device/Failure.h"
#include "support/TempFolder.h"

namespace {

using namespace virtual_scaler;
using testing::ElementsAre;

Faults FaultsOf(const std::string &text) {
    const TempFolder folder;
    return LoadFaults(folder.Write("faults.txt", text));
}

TEST(FaultText, Largest_values_are_read) {
    const Faults faults = FaultsOf("fail-bank 255 code 0x7FFFFFFF\n"
                                   "flip-bit\t255\n"
                                   "power-loss  255\n"
                                   "slow 60000\n"
                                   "nack 0xFF\n"
                                   "busy mcu 0xFFFFFFFF value 255 reads 4294967295\n");
    EXPECT_THAT(faults.failBank, ElementsAre(std::pair(255U, 0x7FFFFFFF)));
    EXPECT_THAT(faults.flipBit, ElementsAre(255U));
    EXPECT_THAT(faults.powerLoss, ElementsAre(255U));
    EXPECT_EQ(faults.slowMilliseconds, 60000U);
    EXPECT_THAT(faults.nack, ElementsAre(0xFEU)) << "the least significant bit is ignored";
    ASSERT_EQ(faults.busy.size(), 1U);
    EXPECT_EQ(faults.busy.begin()->first, std::pair(std::string("mcu"), 0xFFFFFFFFU));
    EXPECT_EQ(faults.busy.begin()->second.value, 255);
    EXPECT_EQ(faults.busy.begin()->second.reads, 4294967295U);
    EXPECT_FALSE(faults.refuseOpen);
    EXPECT_FALSE(faults.wrongChecksum);
}

TEST(FaultText, Smallest_values_are_read) {
    const Faults faults =
        FaultsOf("fail-bank 0 code 1\nflip-bit 0\npower-loss 0\nslow 0\nnack 0\n"
                 "busy reg 0 value 0 reads 0\nrefuse-open\nwrong-ddcci-checksum\n");
    EXPECT_THAT(faults.failBank, ElementsAre(std::pair(0U, 1)));
    EXPECT_THAT(faults.flipBit, ElementsAre(0U));
    EXPECT_THAT(faults.powerLoss, ElementsAre(0U));
    EXPECT_EQ(faults.slowMilliseconds, 0U);
    EXPECT_THAT(faults.nack, ElementsAre(0U));
    EXPECT_EQ(faults.busy.size(), 1U);
    EXPECT_TRUE(faults.refuseOpen);
    EXPECT_TRUE(faults.wrongChecksum);
}

TEST(FaultText, Missing_or_empty_file_has_no_faults) {
    const TempFolder folder;
    for (const Faults &faults : {LoadFaults(folder.Path("none.txt")), FaultsOf("\n# slow 1\n")}) {
        EXPECT_TRUE(faults.failBank.empty());
        EXPECT_TRUE(faults.nack.empty());
        EXPECT_EQ(faults.slowMilliseconds, 0U);
    }
}

TEST(FaultText, Other_lines_are_named_with_their_number) {
    for (const std::string line :
         {"fail-bank 256 code 1", "fail-bank 0 code 0x80000000", "fail-bank 0 codes 1",
          "flip-bit 256", "power-loss 256", "slow 60001", "nack 256", "nack", "nack 1 2",
          "busy mcu 1 value 256 reads 1", "busy mcu 1 values 1 reads 1",
          "busy mcu 1 value 1 read 1", "busy mcu 1 value 1 reads", "busy mcu x value 1 reads 1",
          "busy mcu 1 value 1 reads x", "refuse-open 1", "wrong-ddcci-checksum 1", "slowly 1"}) {
        try {
            FaultsOf("slow 1\n" + line);
            ADD_FAILURE() << line;
        } catch (const Failure &failure) {
            EXPECT_EQ(failure.code, VIRTUAL_ISP_BAD_FAULTS);
            EXPECT_EQ(failure.text, "faults.txt, line 2 cannot be understood: " + line);
        }
    }
}

} // namespace
