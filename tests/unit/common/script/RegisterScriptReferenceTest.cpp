#include <random>

#include <gtest/gtest.h>

#include "scaler_isp/common/script/RegisterScript.h"
#include "unit/common/script/RecordingComm.h"

namespace {

using Bytes = std::vector<unsigned char>;

/// Carries a script out record by record on any library, each record written out by hand.
class SlowRunner {
  public:
    SlowRunner(Bytes script, std::size_t length, CNxComm &comm, unsigned char *out)
        : m_script(std::move(script)), m_length(length), m_comm(comm), m_out(out) {}

    unsigned int count = 0;
    std::vector<unsigned int> waits;

    unsigned int Run() {
        for (std::size_t p = 0; p < m_length;) {
            const unsigned int result = Record(p);
            if (result != 0) {
                return result;
            }
            p += m_size;
        }
        return 0;
    }

  private:
    unsigned int Record(std::size_t p) {
        const unsigned char *r = &m_script[p];
        const auto w1 = static_cast<unsigned short>(r[1] * 256 + r[2]);
        const auto w2 = static_cast<unsigned short>(r[2] * 256 + r[3]);
        const auto w3 = static_cast<unsigned short>(r[3] * 256 + r[4]);
        const auto inc4 = static_cast<STRUCT_ENUM_INC_TYPE>(r[4]);
        const auto inc5 = static_cast<STRUCT_ENUM_INC_TYPE>(r[5]);
        auto *data = const_cast<unsigned char *>(r);
        unsigned int status = 0;
        const unsigned char code = r[0];
        if (code == 0) {
            waits.push_back(w1 * 1000U);
            m_size = 3;
        } else if (code == 1 || code == 2) {
            status = code == 1 ? m_comm.ScalerRun() : m_comm.ScalerStop();
            m_size = 1;
        } else if (code == 3 || code == 6) {
            status = code == 3 ? m_comm.WriteReg(r[1], r[2]) : m_comm.WriteMcuReg(r[1], r[2]);
            m_size = 3;
        } else if (code == 4 || code == 15) {
            status = code == 4 ? m_comm.WriteRegBit(r[1], r[2], r[3])
                               : m_comm.WriteMcuRegBit(r[1], r[2], r[3]);
            m_size = 4;
        } else if (code == 8) {
            status = m_comm.I2CWriteByte(r[1], r[2], r[3]);
            m_size = 4;
        } else if (code == 14) {
            status = m_comm.WritePortRegBit(r[1], r[2], r[3], r[4]);
            m_size = 5;
        } else if (code == 16) {
            status = m_comm.WriteRegEx(w1, r[3]);
            m_size = 4;
        } else if (code == 17) {
            status = m_comm.WriteRegBitEx(w1, r[3], r[4]);
            m_size = 5;
        } else if (code == 19) {
            status = m_comm.WritePortRegBitEx(w1, w3, r[5], r[6]);
            m_size = 7;
        } else if (code == 5 || code == 7 || code == 9 || code == 12 || code == 18) {
            return ReadOne(r, w1);
        } else if (code == 13) {
            m_size = 8;
            return Poll(r);
        } else if (code == 20 || code == 24) {
            m_block = w3;
            status = code == 20 ? m_comm.WriteRegsEx(w1, w3, data + 6, inc5)
                                : m_comm.WriteMcuRegs(w1, w3, data + 6, inc5);
            m_size = 6 + m_block;
        } else if (code == 21 || code == 25) {
            m_block = w3;
            status = code == 21 ? m_comm.ReadRegsEx(w1, w3, m_out, inc5)
                                : m_comm.ReadMcuRegs(w1, w3, m_out, inc5);
            m_size = 6;
            Deliver(status, m_block);
        } else if (code == 22) {
            m_block = w2;
            status = m_comm.WriteRegs(r[1], w2, data + 5, inc4);
            m_size = 5 + m_block;
        } else if (code == 23) {
            m_block = w2;
            status = m_comm.ReadRegs(r[1], w2, m_out, inc4);
            m_size = 5;
            Deliver(status, m_block);
        } else if (code == 26) {
            const unsigned int addr = w1 * 65536U + w3;
            const unsigned int value = (r[5] * 256U + r[6]) * 65536U + r[7] * 256U + r[8];
            status = m_comm.Write32BitRegEx(addr, value);
            m_size = 9 + m_block;
        } else {
            return code == 10 || code == 11 ? 2 : 1;
        }
        return status;
    }

    unsigned int ReadOne(const unsigned char *r, unsigned short w1) {
        if (m_out == nullptr) {
            return 2;
        }
        unsigned int status = 0;
        m_size = r[0] == 9 || r[0] == 18 ? 3 : 2;
        if (r[0] == 5) {
            status = m_comm.ReadReg(r[1], m_out);
        } else if (r[0] == 7) {
            status = m_comm.ReadMcuReg(r[1], m_out);
        } else if (r[0] == 9) {
            status = m_comm.I2CRead(r[1], r[2], 1, m_out);
        } else if (r[0] == 12) {
            status = m_comm.I2CCurrentRead(r[1], 1, m_out);
        } else {
            status = m_comm.ReadRegEx(w1, m_out);
        }
        Deliver(status, 1);
        return status;
    }

    unsigned int Poll(const unsigned char *r) {
        for (int tries = r[4] * 256 + r[5]; tries > 0; --tries) {
            unsigned char value = 0;
            const unsigned int status = m_comm.ReadMcuReg(r[1], &value);
            if (status != 0) {
                return status;
            }
            if ((value & r[2]) == (r[3] & r[2])) {
                return 0;
            }
            waits.push_back((r[6] * 256U + r[7]) * 1000U);
        }
        return 3;
    }

    void Deliver(unsigned int status, std::size_t bytes) {
        if (status == 0) {
            m_out = m_out != nullptr ? m_out + bytes : nullptr;
            count += static_cast<unsigned int>(bytes);
        }
    }

    Bytes m_script;
    std::size_t m_length;
    CNxComm &m_comm;
    unsigned char *m_out;
    std::size_t m_size = 0;
    std::size_t m_block = 0;
};

/// Both runners on the same script; `fault` is the number of the call that fails with 9.
void Compare(const Bytes &bytes, std::size_t length, std::size_t fault, bool output) {
    g_waits.clear();
    const auto prepare = [&](RecordingComm &comm) {
        if (fault != 0) {
            comm.failures[fault] = 9;
        }
    };
    RecordingComm fast;
    RecordingComm slow;
    prepare(fast);
    prepare(slow);
    Bytes fastOut(200000, 0xEE);
    Bytes slowOut(200000, 0xEE);
    Bytes script = bytes;
    script.resize(bytes.size() + 66000, 0x5A);
    SlowRunner runner(script, length, slow, output ? slowOut.data() : nullptr);
    const auto expected = static_cast<int>(runner.Run());
    unsigned int count = 0;
    ASSERT_EQ(RunCommand(script.data(), static_cast<unsigned int>(length), &fast,
                         output ? fastOut.data() : nullptr, &count),
              expected);
    ASSERT_EQ(fast.calls, slow.calls);
    ASSERT_EQ(g_waits, runner.waits);
    ASSERT_EQ(count, runner.count);
    ASSERT_EQ(fastOut, slowOut);
}

class RegisterScriptReference : public testing::Test {
  protected:
    unsigned int Below(unsigned int end) {
        return static_cast<unsigned int>(m_random() % end);
    }
    unsigned char Byte() {
        return static_cast<unsigned char>(m_random());
    }
    void RunRandom(const Bytes &bytes) {
        const std::size_t length =
            Below(4) == 0 ? Below(static_cast<unsigned>(bytes.size()) + 1) : bytes.size();
        const std::size_t fault = Below(4) == 0 ? 1 + Below(6) : 0;
        Compare(bytes, length, fault, Below(8) != 0);
    }
    std::mt19937 m_random{3};
};

TEST_F(RegisterScriptReference, Random_bytes_run_as_by_reference) {
    for (int round = 0; round < 300 && !HasFatalFailure(); ++round) {
        Bytes bytes(Below(16));
        for (unsigned char &byte : bytes) {
            byte = Below(3) == 0 ? static_cast<unsigned char>(Below(2)) : Byte() % 28;
        }
        RunRandom(bytes);
    }
}

TEST_F(RegisterScriptReference, Random_records_run_as_by_reference) {
    const std::vector<std::size_t> sizes = {3, 1, 1, 3, 4, 2, 3, 2, 4, 3, 1, 1, 2, 8,
                                            5, 4, 4, 5, 3, 7, 6, 6, 5, 5, 6, 6, 9};
    for (int round = 0; round < 1500 && !HasFatalFailure(); ++round) {
        Bytes bytes;
        unsigned char block = 0;
        for (auto records = Below(12); records > 0; --records) {
            unsigned char code = 10;
            while (code == 10 || code == 11) {
                code = static_cast<unsigned char>(Below(27));
            }
            Bytes record(sizes[code]);
            for (unsigned char &byte : record) {
                byte = Byte();
            }
            record[0] = code;
            if (code == 13) {
                record[4] = 0;
                record[5] %= 8;
                record[2] &= 7;
            }
            if (code >= 20 && code <= 25) {
                const std::size_t place = code == 22 || code == 23 ? 2 : 3;
                block = static_cast<unsigned char>(Below(6));
                record[place] = 0;
                record[place + 1] = block;
            }
            if (code == 20 || code == 22 || code == 24 || code == 26) {
                record.resize(record.size() + block, 0xDA);
            }
            bytes.insert(bytes.end(), record.begin(), record.end());
        }
        RunRandom(bytes);
    }
}

} // namespace
