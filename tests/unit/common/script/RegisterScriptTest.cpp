#include "scaler_isp/common/script/RegisterScript.h"

#include <stdexcept>
#include <unistd.h>

#include <gtest/gtest.h>

#include "unit/common/script/RecordingComm.h"

std::vector<unsigned int> g_waits;

// Waits are written down, not waited.
extern "C" int usleep(useconds_t microseconds) {
    g_waits.push_back(microseconds);
    return -1;
}

namespace {

using Bytes = std::vector<unsigned char>;
using Calls = std::vector<std::string>;

class RegisterScript : public testing::Test {
  protected:
    void SetUp() override {
        g_waits.clear();
    }

    int Run(Bytes script) {
        return RunCommand(script.data(), static_cast<unsigned int>(script.size()), &m_comm, m_out,
                          &m_count);
    }
    int RunWithoutOutput(Bytes script) {
        return RunCommand(script.data(), static_cast<unsigned int>(script.size()), &m_comm, nullptr,
                          &m_count);
    }
    Bytes Out(std::size_t count) const {
        return {m_out, m_out + count};
    }

    RecordingComm m_comm;
    unsigned char m_out[64] = {};
    unsigned int m_count = 0;
};

struct Row {
    const char *call;
    Bytes script;
};

TEST_F(RegisterScript, Every_opcode_makes_its_call) {
    const Row rows[] = {
        {"ScalerRun", {1}},
        {"ScalerStop", {2}},
        {"WriteReg 10 20", {3, 0x10, 0x20}},
        {"WriteRegBit 10 20 30", {4, 0x10, 0x20, 0x30}},
        {"ReadReg 10", {5, 0x10}},
        {"WriteMcuReg F0 20", {6, 0xF0, 0x20}},
        {"ReadMcuReg F0", {7, 0xF0}},
        {"I2CWriteByte A0 20 30", {8, 0xA0, 0x20, 0x30}},
        {"I2CRead A0 20 1", {9, 0xA0, 0x20}},
        {"I2CCurrentRead A0 1", {12, 0xA0}},
        {"WritePortRegBit 10 20 30 40", {14, 0x10, 0x20, 0x30, 0x40}},
        {"WriteMcuRegBit 10 20 30", {15, 0x10, 0x20, 0x30}},
        {"WriteRegEx 1234 20", {16, 0x12, 0x34, 0x20}},
        {"WriteRegBitEx 1234 20 30", {17, 0x12, 0x34, 0x20, 0x30}},
        {"ReadRegEx 1234", {18, 0x12, 0x34}},
        {"WritePortRegBitEx 1234 5678 20 30", {19, 0x12, 0x34, 0x56, 0x78, 0x20, 0x30}},
        {"WriteRegsEx 1234 2 AA BB inc 1", {20, 0x12, 0x34, 0, 2, 1, 0xAA, 0xBB}},
        {"ReadRegsEx 1234 2 1", {21, 0x12, 0x34, 0, 2, 1}},
        {"WriteRegs 12 2 AA BB inc 0", {22, 0x12, 0, 2, 0, 0xAA, 0xBB}},
        {"ReadRegs 12 3 FE", {23, 0x12, 0, 3, 0xFE}},
        {"WriteMcuRegs 1234 1 AA inc 1", {24, 0x12, 0x34, 0, 1, 1, 0xAA}},
        {"ReadMcuRegs 1234 2 0", {25, 0x12, 0x34, 0, 2, 0}},
        {"Write32BitRegEx 12345678 9ABCDEF0", {26, 0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0}},
    };
    for (const Row &row : rows) {
        m_comm.calls.clear();
        EXPECT_EQ(Run(row.script), 0) << row.call;
        EXPECT_EQ(m_comm.calls, Calls{row.call});
        // The record has exactly this length: the next one begins right after it.
        Bytes twice = row.script;
        twice.push_back(2);
        m_comm.calls.clear();
        EXPECT_EQ(Run(twice), 0) << row.call;
        EXPECT_EQ(m_comm.calls, (Calls{row.call, "ScalerStop"}));
    }
}

TEST_F(RegisterScript, Reads_fill_output_one_after_another) {
    m_count = 100;
    EXPECT_EQ(Run({5, 1, 7, 2, 9, 3, 4, 12, 5, 18, 0, 6, 23, 7, 0, 3, 1, 5, 8}), 0);
    EXPECT_EQ(Out(10), (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 0}));
    EXPECT_EQ(m_count, 109U);
}

TEST_F(RegisterScript, Null_counter_is_accepted) {
    Bytes script = {5, 1, 21, 0, 1, 0, 2, 1, 7, 2};
    EXPECT_EQ(RunCommand(script.data(), 10, &m_comm, m_out, nullptr), 0);
    EXPECT_EQ(Out(5), (Bytes{1, 2, 3, 4, 0}));
}

TEST_F(RegisterScript, Single_byte_read_fails_without_output_pointer) {
    for (const Bytes &script :
         {Bytes{5, 0x10}, Bytes{7, 1}, Bytes{9, 1, 2}, Bytes{12, 1}, Bytes{18, 1, 2}}) {
        EXPECT_EQ(RunWithoutOutput(script), 2) << int{script[0]};
    }
    EXPECT_EQ(m_comm.calls, Calls{});
    EXPECT_EQ(m_count, 0U);
}

TEST_F(RegisterScript, Block_reads_do_not_ask_for_an_output_pointer) {
    EXPECT_EQ(RunWithoutOutput({21, 0, 1, 0, 2, 1, 23, 1, 0, 3, 0, 25, 0, 1, 0, 4, 1}), 0);
    EXPECT_EQ(m_comm.calls, (Calls{"ReadRegsEx into nothing 1 2 1", "ReadRegs into nothing 1 3 0",
                                   "ReadMcuRegs into nothing 1 4 1"}));
    EXPECT_EQ(m_count, 9U);
}

TEST_F(RegisterScript, Empty_script_succeeds) {
    EXPECT_EQ(Run({}), 0);
    EXPECT_EQ(RunCommand(nullptr, 0, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(RunCommand(nullptr, 1, &m_comm, m_out, &m_count), 1);
}

TEST_F(RegisterScript, Opcodes_from_27_return_unknown) {
    EXPECT_EQ(Run({0x1B}), 1);
    EXPECT_EQ(Run({0xFF}), 1);
    EXPECT_EQ(Run({1, 0xFE, 2}), 1);
    EXPECT_EQ(m_comm.calls, Calls{"ScalerRun"});
}

TEST_F(RegisterScript, Opcodes_10_and_11_are_unsupported) {
    EXPECT_EQ(Run({10}), 2);
    EXPECT_EQ(Run({11}), 2);
}

TEST_F(RegisterScript, Script_stops_at_first_failure) {
    m_comm.failures[3] = 0x80000001;
    EXPECT_EQ(Run({5, 1, 5, 2, 5, 3, 5, 4}), static_cast<int>(0x80000001));
    EXPECT_EQ(m_comm.calls.size(), 3U);
    EXPECT_EQ(m_count, 2U) << "a failed read is not counted";
}

TEST_F(RegisterScript, Failed_block_read_keeps_earlier_output) {
    for (const Bytes &block :
         {Bytes{21, 0, 1, 0, 2, 1}, Bytes{23, 1, 0, 2, 1}, Bytes{25, 0, 1, 0, 2, 1}}) {
        m_comm.calls.clear();
        m_comm.failures[2] = 9;
        m_count = 0;
        Bytes script = {5, 1};
        script.insert(script.end(), block.begin(), block.end());
        script.insert(script.end(), {5, 2});
        EXPECT_EQ(Run(script), 9) << int{block[0]};
        EXPECT_EQ(m_count, 1U) << int{block[0]};
        EXPECT_EQ(m_comm.calls.size(), 2U) << int{block[0]};
    }
}

TEST_F(RegisterScript, Wait_operand_is_in_milliseconds) {
    EXPECT_EQ(Run({0, 0, 5, 0, 0xFF, 0xFF, 0, 0, 0}), 0);
    EXPECT_EQ(g_waits, (std::vector<unsigned int>{5000, 65535000, 0}));
}

TEST_F(RegisterScript, Poll_ends_at_first_match) {
    m_comm.reads = {0x01, 0x12, 0xF3};
    EXPECT_EQ(Run({13, 0x20, 0x0F, 0xA3, 0, 9, 0x01, 0x00, 2}), 0);
    EXPECT_EQ(m_comm.calls,
              (Calls{"ReadMcuReg 20", "ReadMcuReg 20", "ReadMcuReg 20", "ScalerStop"}));
    EXPECT_EQ(g_waits, (std::vector<unsigned int>{256000, 256000}));
    EXPECT_EQ(m_count, 0U) << "a poll delivers nothing";
}

TEST_F(RegisterScript, Poll_also_waits_after_last_try) {
    EXPECT_EQ(Run({13, 0x20, 0xFF, 0x99, 0, 2, 0, 7, 2}), 3);
    EXPECT_EQ(m_comm.calls, (Calls{"ReadMcuReg 20", "ReadMcuReg 20"}));
    EXPECT_EQ(g_waits, (std::vector<unsigned int>{7000, 7000}));
}

TEST_F(RegisterScript, Poll_without_tries_fails_at_once) {
    EXPECT_EQ(Run({13, 0x20, 0, 0, 0, 0, 0, 7}), 3);
    EXPECT_EQ(m_comm.calls, Calls{});
    EXPECT_TRUE(g_waits.empty());
}

TEST_F(RegisterScript, Poll_count_is_operand_of_two_bytes) {
    EXPECT_EQ(Run({13, 0x20, 0xFF, 0x00, 1, 2, 0, 0}), 0) << "0 comes after 255 reads";
    EXPECT_EQ(m_comm.calls.size(), 256U);
}

TEST_F(RegisterScript, Failed_read_ends_poll_with_its_status) {
    m_comm.failures[2] = 77;
    EXPECT_EQ(Run({13, 0x20, 0xFF, 0x02, 0, 9, 0, 1}), 77) << "though the value would match";
    EXPECT_EQ(m_comm.calls.size(), 2U);
}

TEST_F(RegisterScript, Opcode_26_skips_the_last_block_length) {
    const Bytes write32 = {26, 0, 0, 0, 1, 0, 0, 0, 2};
    Bytes script = {23, 1, 0, 3, 0}; // a read block carries its length, too
    script.insert(script.end(), write32.begin(), write32.end());
    script.insert(script.end(), {99, 99, 99, 2});
    script.insert(script.end(), write32.begin(), write32.end());
    script.insert(script.end(), {99, 99, 99, 22, 1, 0, 0, 0});
    script.insert(script.end(), write32.begin(), write32.end());
    script.push_back(1);
    EXPECT_EQ(Run(script), 0);
    EXPECT_EQ(m_comm.calls,
              (Calls{"ReadRegs 1 3 0", "Write32BitRegEx 1 2", "ScalerStop", "Write32BitRegEx 1 2",
                     "WriteRegs 1 0 inc 0", "Write32BitRegEx 1 2", "ScalerRun"}));
}

TEST_F(RegisterScript, Block_length_is_reset_for_each_run) {
    EXPECT_EQ(Run({23, 1, 0, 3, 0}), 0);
    EXPECT_EQ(Run({26, 0, 0, 0, 1, 0, 0, 0, 2, 1}), 0);
    EXPECT_EQ(m_comm.calls.back(), "ScalerRun");
}

TEST_F(RegisterScript, Operands_are_read_past_given_length) {
    Bytes script = {1, 3, 0x10, 0x20, 1};
    EXPECT_EQ(RunCommand(script.data(), 2, &m_comm, m_out, &m_count), 0);
    EXPECT_EQ(m_comm.calls, (Calls{"ScalerRun", "WriteReg 10 20"}));
}

TEST_F(RegisterScript, Largest_block_is_read_past_given_length) {
    Bytes script = {20, 0, 1, 0xFF, 0xFF, 1};
    script.resize(6 + 65535, 0x5A);
    script.push_back(2);
    EXPECT_EQ(RunCommand(script.data(), 65541, &m_comm, m_out, &m_count), 0);
    EXPECT_EQ(m_comm.calls.size(), 1U);
    EXPECT_EQ(RunCommand(script.data(), 65542, &m_comm, m_out, &m_count), 0);
    EXPECT_EQ(m_comm.calls.size(), 3U);
}

TEST_F(RegisterScript, Records_that_need_library_return_6_without_it) {
    Bytes script = {0, 0, 1, 1};
    EXPECT_EQ(RunCommand(script.data(), 4, nullptr, m_out, &m_count), 6);
    EXPECT_EQ(g_waits, std::vector<unsigned int>{1000});
    unsigned char unsupported = 10;
    EXPECT_EQ(RunCommand(&unsupported, 1, nullptr, nullptr, nullptr), 2);
    unsigned char unknown = 0xFE;
    EXPECT_EQ(RunCommand(&unknown, 1, nullptr, nullptr, nullptr), 1);
    CNxComm unloaded;
    EXPECT_EQ(RunCommand(script.data(), 4, &unloaded, m_out, &m_count), 6);
}

class ThrowingComm : public CNxComm {
  public:
    unsigned int ScalerRun() override {
        throw std::runtime_error("gone");
    }
};

TEST_F(RegisterScript, Exception_of_library_ends_script) {
    ThrowingComm comm;
    unsigned char script = 1;
    EXPECT_EQ(RunCommand(&script, 1, &comm, nullptr, nullptr), 6);
}

} // namespace
