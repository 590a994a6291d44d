#include "scaler_isp/common/script/RegisterScript.h"

#include <cstddef>
#include <cstdint>
#include <unistd.h>

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/plugins/CNxComm.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kNotLoaded = 6;

/// Bytes of an operand, by its letter.
constexpr std::size_t OperandWidth(char letter) {
    return letter == 'd' ? 4 : letter == 'w' || letter == 'L' ? 2 : 1;
}

/// Bytes of a record behind its opcode, from the letters of its operands.
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

/// Where the block length stands in a record.
constexpr std::size_t BlockLengthOffset(const char *operands) {
    std::size_t place = 1;
    bool atLetter = true;
    for (; *operands != '\0'; ++operands) {
        if (atLetter) {
            if (*operands == 'L') {
                return place;
            }
            place += OperandWidth(*operands);
        }
        atLetter = *operands == ' ';
    }
    return 0;
}

std::uint16_t Word(const unsigned char *bytes) {
    return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}

std::uint32_t DoubleWord(const unsigned char *bytes) {
    return static_cast<std::uint32_t>(Word(bytes)) << 16U | Word(bytes + 2);
}

void WaitMilliseconds(std::uint16_t milliseconds) {
    static_cast<void>(::usleep(static_cast<useconds_t>(milliseconds) * 1000));
}

int Poll(CNxComm &comm, const unsigned char *record) {
    const unsigned char mask = record[2];
    const unsigned char expected = record[3] & mask;
    for (std::uint16_t tries = Word(record + 4); tries > 0; --tries) {
        unsigned char value = 0;
        const unsigned int status = comm.ReadMcuReg(record[1], &value);
        if (status != 0) {
            return static_cast<int>(status);
        }
        if ((value & mask) == expected) {
            return kSuccess;
        }
        WaitMilliseconds(Word(record + 6));
    }
    return SCALER_ISP_SCRIPT_POLL_FAILED;
}

/// What a script delivers, and the block length that it carries from record to record.
struct ScriptState {
    unsigned char *pOut = nullptr;
    unsigned int *pCount = nullptr;
    std::uint16_t usBlock = 0;

    void Deliver(std::uint16_t bytes) {
        if (pOut != nullptr) {
            pOut += bytes;
        }
        if (pCount != nullptr) {
            *pCount += bytes;
        }
    }
};

/// Carries out one record and sets its length.
int RunRecord(unsigned char *record, CNxComm *comm, ScriptState &state, std::size_t &length) {
#define B(PLACE) record[PLACE]
#define W(PLACE) Word(record + (PLACE))
#define D(PLACE) DoubleWord(record + (PLACE))
#define INC(PLACE) static_cast<STRUCT_ENUM_INC_TYPE>(record[PLACE])
#define BLOCK state.usBlock
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
        state.Deliver(1);                                                                          \
    }                                                                                              \
    return status;
#define SCALER_ISP_RUN_BLOCK_WRITE(OPERANDS, ACTION)                                               \
    state.usBlock = W(BlockLengthOffset(OPERANDS));                                                \
    SCALER_ISP_NEEDS_COMM                                                                          \
    const auto status = static_cast<int>(comm->ACTION);                                            \
    length += state.usBlock;                                                                       \
    return status;
#define SCALER_ISP_RUN_BLOCK_READ(OPERANDS, ACTION)                                                \
    state.usBlock = W(BlockLengthOffset(OPERANDS));                                                \
    SCALER_ISP_NEEDS_COMM                                                                          \
    const auto status = static_cast<int>(comm->ACTION);                                            \
    if (status == kSuccess) {                                                                      \
        state.Deliver(state.usBlock);                                                              \
    }                                                                                              \
    return status;
#define SCALER_ISP_RUN_POLL(OPERANDS, ACTION)                                                      \
    SCALER_ISP_NEEDS_COMM                                                                          \
    return Poll(*comm, record);
#define SCALER_ISP_RUN_CALL_AND_SKIP(OPERANDS, ACTION)                                             \
    SCALER_ISP_NEEDS_COMM                                                                          \
    length += state.usBlock;                                                                       \
    return static_cast<int>(comm->ACTION);
#define SCALER_ISP_RUN_UNSUPPORTED(OPERANDS, ACTION) return SCALER_ISP_SCRIPT_UNSUPPORTED;
#define SCALER_ISP_OPCODE(CODE, NAME, KIND, OPERANDS, ACTION)                                      \
    case CODE: {                                                                                   \
        constexpr std::size_t kLength = 1 + OperandBytes(OPERANDS);                                \
        length = kLength;                                                                          \
        SCALER_ISP_RUN_##KIND(OPERANDS, ACTION)                                                    \
    }
    switch (record[0]) {
#include "scaler_isp/common/script/script_opcodes.def"
    default:
        return SCALER_ISP_SCRIPT_UNKNOWN_OPCODE;
    }
#undef B
#undef W
#undef D
#undef INC
#undef BLOCK
#undef DATA
#undef OUT
}

} // namespace

int RunCommand(unsigned char *script, unsigned int length, CNxComm *comm, unsigned char *out,
               unsigned int *count) {
    if (script == nullptr) {
        return length == 0 ? kSuccess : SCALER_ISP_SCRIPT_UNKNOWN_OPCODE;
    }
    return CatchAll(kNotLoaded, [&] {
        ScriptState state{out, count};
        for (std::size_t place = 0; place < length;) {
            std::size_t recordLength = 0;
            const int result = RunRecord(script + place, comm, state, recordLength);
            if (result != kSuccess) {
                return result;
            }
            place += recordLength;
        }
        return kSuccess;
    });
}
