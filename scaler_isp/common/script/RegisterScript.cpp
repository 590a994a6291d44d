#include "scaler_isp/common/script/RegisterScript.h"

#include <cstddef>
#include <cstdint>
#include <unistd.h>

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/plugins/CNxComm.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kNotLoaded = 6;

/// Size of an operand in bytes, by its letter.
constexpr std::size_t OperandWidth(char letter) {
    return letter == 'd' ? 4 : letter == 'w' || letter == 'L' ? 2 : 1;
}

/// Size of a record without its opcode, from the letters of its operands.
constexpr std::size_t OperandBytes(const char *operands) {
    std::size_t bytes = 0;
    bool atLetter = true;
    for (; *operands != '\0'; ++operands) {
        if (atLetter) {
            bytes += OperandWidth(*operands);
        }
        atLetter = *operands == ' ';
    }
    return bytes;
}

/// Byte offset of the block length within a record.
constexpr std::size_t BlockLengthOffset(const char *operands) {
    std::size_t offset = 1;
    bool atLetter = true;
    for (; *operands != '\0'; ++operands) {
        if (atLetter) {
            if (*operands == 'L') {
                return offset;
            }
            offset += OperandWidth(*operands);
        }
        atLetter = *operands == ' ';
    }
    return 0;
}

std::uint16_t ReadWord(const unsigned char *bytes) {
    return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

std::uint32_t ReadDoubleWord(const unsigned char *bytes) {
    return static_cast<std::uint32_t>(ReadWord(bytes)) << 16U | ReadWord(bytes + 2);
}

void WaitMilliseconds(std::uint16_t milliseconds) {
    static_cast<void>(::usleep(static_cast<useconds_t>(milliseconds) * 1000));
}

int Poll(CNxComm &comm, const unsigned char *record) {
    const unsigned char mask = record[2];
    const unsigned char expected = record[3] & mask;
    for (std::uint16_t tries = ReadWord(record + 4); tries > 0; --tries) {
        unsigned char value = 0;
        const unsigned int status = comm.ReadMcuReg(record[1], &value);
        if (status != 0) {
            return static_cast<int>(status);
        }
        if ((value & mask) == expected) {
            return kSuccess;
        }
        WaitMilliseconds(ReadWord(record + 6));
    }
    return SCALER_ISP_SCRIPT_POLL_FAILED;
}

/// The output position of a script, and the block length that persists from record to record.
struct ScriptState {
    unsigned char *pOut = nullptr;
    unsigned int *pCount = nullptr;
    std::uint16_t usBlockLength = 0;

    void AdvanceOutput(std::uint16_t bytes) {
        if (pOut != nullptr) {
            pOut += bytes;
        }
        if (pCount != nullptr) {
            *pCount += bytes;
        }
    }
};

// The column CALL of script_opcodes.def is C++ text in these names, which only macros can expand.
// They exist for the switch in RunRecord alone, whose parameters they use.
#define B(OFFSET) record[OFFSET]
#define W(OFFSET) ReadWord(record + (OFFSET))
#define D(OFFSET) ReadDoubleWord(record + (OFFSET))
#define INC(OFFSET) static_cast<STRUCT_ENUM_INC_TYPE>(record[OFFSET])
#define BLOCK state.usBlockLength
#define DATA record + length
#define OUT state.pOut
#define SCALER_ISP_NEEDS_COMM                                                                      \
    if (comm == nullptr) {                                                                         \
        return kNotLoaded;                                                                         \
    }
#define SCALER_ISP_RUN_WAIT(OPERANDS, MILLISECONDS)                                                \
    WaitMilliseconds(MILLISECONDS);                                                                \
    return kSuccess;
#define SCALER_ISP_RUN_CALL(OPERANDS, ACTION)                                                      \
    SCALER_ISP_NEEDS_COMM                                                                          \
    return static_cast<int>(comm->ACTION);
#define SCALER_ISP_RUN_READ(OPERANDS, ACTION)                                                      \
    if (state.pOut == nullptr) {                                                                   \
        return SCALER_ISP_SCRIPT_UNSUPPORTED;                                                      \
    }                                                                                              \
    SCALER_ISP_NEEDS_COMM                                                                          \
    const auto status = static_cast<int>(comm->ACTION);                                            \
    if (status == kSuccess) {                                                                      \
        state.AdvanceOutput(1);                                                                    \
    }                                                                                              \
    return status;
#define SCALER_ISP_RUN_BLOCK_WRITE(OPERANDS, ACTION)                                               \
    state.usBlockLength = W(BlockLengthOffset(OPERANDS));                                          \
    SCALER_ISP_NEEDS_COMM                                                                          \
    const auto status = static_cast<int>(comm->ACTION);                                            \
    length += state.usBlockLength;                                                                 \
    return status;
#define SCALER_ISP_RUN_BLOCK_READ(OPERANDS, ACTION)                                                \
    state.usBlockLength = W(BlockLengthOffset(OPERANDS));                                          \
    SCALER_ISP_NEEDS_COMM                                                                          \
    const auto status = static_cast<int>(comm->ACTION);                                            \
    if (status == kSuccess) {                                                                      \
        state.AdvanceOutput(state.usBlockLength);                                                  \
    }                                                                                              \
    return status;
#define SCALER_ISP_RUN_POLL(OPERANDS, ACTION)                                                      \
    SCALER_ISP_NEEDS_COMM                                                                          \
    return Poll(*comm, record);
#define SCALER_ISP_RUN_CALL_AND_SKIP(OPERANDS, ACTION)                                             \
    SCALER_ISP_NEEDS_COMM                                                                          \
    length += state.usBlockLength;                                                                 \
    return static_cast<int>(comm->ACTION);
#define SCALER_ISP_RUN_UNSUPPORTED(OPERANDS, ACTION) return SCALER_ISP_SCRIPT_UNSUPPORTED;
#define SCALER_ISP_OPCODE(CODE, NAME, KIND, OPERANDS, ACTION)                                      \
    case CODE: {                                                                                   \
        constexpr std::size_t kLength = 1 + OperandBytes(OPERANDS);                                \
        length = kLength;                                                                          \
        SCALER_ISP_RUN_##KIND(OPERANDS, ACTION)                                                    \
    }

/// Runs one record and sets its length.
int RunRecord(unsigned char *record, CNxComm *comm, ScriptState &state, std::size_t &length) {
    switch (record[0]) {
#include "scaler_isp/common/script/script_opcodes.def"
    default:
        return SCALER_ISP_SCRIPT_UNKNOWN_OPCODE;
    }
}

#undef B
#undef W
#undef D
#undef INC
#undef BLOCK
#undef DATA
#undef OUT

} // namespace

int RunCommand(unsigned char *script, unsigned int length, CNxComm *comm, unsigned char *out,
               unsigned int *count) {
    if (script == nullptr) {
        return length == 0 ? kSuccess : SCALER_ISP_SCRIPT_UNKNOWN_OPCODE;
    }
    return CatchAll(kNotLoaded, [&] {
        ScriptState state{out, count};
        for (std::size_t offset = 0; offset < length;) {
            std::size_t recordLength = 0;
            const int result = RunRecord(script + offset, comm, state, recordLength);
            if (result != kSuccess) {
                return result;
            }
            offset += recordLength;
        }
        return kSuccess;
    });
}
