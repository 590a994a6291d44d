// Byte lists against a strtol loop, and a register script against the same calls with their
// operands decoded beforehand.

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "FaultCounter.h"
#include "scaler_isp/common/CommandText.h"
#include "scaler_isp/common/script/RegisterScript.h"
#include "scaler_isp/plugins/CNxComm.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t kListCharacters = 256 * 1024;
constexpr unsigned int kRecords = 10000;

/// How a list writes the value of one byte.
struct Form {
    const char *pszBefore;
    int nBase;
    const char *pszAfter;
    unsigned int nValues;
};

constexpr Form kHexList{"0x", 16, ", ", 256};
constexpr Form kHexLines{"0x", 16, "\n", 256};
constexpr Form kBraces{"{0x", 16, " ,\n", 16};
constexpr Form kDecimal{"", 10, ", ", 256};
constexpr Form kComments{"0x", 16, ", // register\n", 256};

/// A text of the form, and the bytes that it stands for.
struct List {
    explicit List(const Form &form) {
        for (unsigned int i = 0; narrow.size() < kListCharacters; ++i) {
            const unsigned int byte = i % form.nValues;
            char digits[8];
            char *end = std::to_chars(digits, std::end(digits), byte, form.nBase).ptr;
            narrow += form.pszBefore + std::string(&digits[0], end) + form.pszAfter;
            expected.push_back(static_cast<unsigned char>(byte));
        }
    }
    std::string narrow;
    Bytes expected;
};

void ListSubject(benchmark::State &state, const Form &form) {
    const List list(form);
    std::wstring text(list.narrow.begin(), list.narrow.end());
    Bytes bytes(list.expected.size());
    const FaultCounter faults(state);
    for (auto _ : state) {
        const int count = CmdToBin(text.data(), static_cast<unsigned int>(text.size()),
                                   bytes.data(), static_cast<unsigned int>(bytes.size()));
        if (static_cast<std::size_t>(count) != bytes.size()) {
            state.SkipWithError("wrong number of bytes");
            return;
        }
    }
    if (bytes != list.expected) {
        state.SkipWithError("wrong bytes");
    }
}

/// The position of the next digit, past separators and line comments.
const char *NextDigit(const char *at) {
    while (*at != '\0' && (*at < '0' || *at > '9')) {
        at += at[0] == '/' && at[1] == '/' ? std::strcspn(at, "\r\n") : 1;
    }
    return at;
}

void ListPeer(benchmark::State &state, const Form &form) {
    const List list(form);
    Bytes bytes(list.expected.size());
    const FaultCounter faults(state);
    for (auto _ : state) {
        std::size_t count = 0;
        for (const char *at = NextDigit(list.narrow.c_str()); *at != '\0'; at = NextDigit(at)) {
            char *end = nullptr;
            bytes[count++] = static_cast<unsigned char>(std::strtol(at, &end, 0));
            at = end;
        }
        benchmark::DoNotOptimize(bytes.data());
        if (count != bytes.size()) {
            state.SkipWithError("wrong number of bytes");
            return;
        }
    }
    if (bytes != list.expected) {
        state.SkipWithError("wrong bytes");
    }
}

/// One record with its operands decoded.
struct Call {
    unsigned int kind;
    std::uint16_t addr;
    std::uint8_t value;
};

constexpr unsigned int kKinds = 5;

Call CallOf(unsigned int record) {
    return {record % kKinds, static_cast<std::uint16_t>(record), static_cast<std::uint8_t>(record)};
}

Bytes MakeScript() {
    Bytes script;
    for (unsigned int i = 0; i < kRecords; ++i) {
        const Call call = CallOf(i);
        const auto high = static_cast<unsigned char>(call.addr >> 8U);
        const auto low = static_cast<unsigned char>(call.addr);
        const Bytes records[kKinds] = {{3, low, call.value},
                                       {16, high, low, call.value},
                                       {18, high, low},
                                       {22, low, 0, 2, 0, 1, 2},
                                       {8, 0xA0, low, call.value}};
        script.insert(script.end(), records[call.kind].begin(), records[call.kind].end());
    }
    return script;
}

bool Load(CNxComm &comm, benchmark::State &state) {
    const std::string narrow = BENCH_COMM;
    std::wstring path(narrow.begin(), narrow.end());
    const bool loaded = comm.LoadCommDllFile(path.data()) == 1;
    if (!loaded) {
        state.SkipWithError("no communication library");
    }
    return loaded;
}

void ScriptSubject(benchmark::State &state) {
    CNxComm comm;
    Bytes script = MakeScript();
    Bytes out(kRecords);
    const bool loaded = Load(comm, state);
    const FaultCounter faults(state);
    for (auto _ : state) {
        unsigned int count = 0;
        if (!loaded ||
            RunCommand(script.data(), static_cast<unsigned int>(script.size()), &comm, out.data(),
                       &count) != 0 ||
            count != kRecords / kKinds) {
            state.SkipWithError("the script failed");
            return;
        }
    }
}

unsigned int Carry(CNxComm &comm, const Call &call, unsigned char *data, unsigned char *&out) {
    const auto low = static_cast<unsigned char>(call.addr);
    switch (call.kind) {
    case 0:
        return comm.WriteReg(low, call.value);
    case 1:
        return comm.WriteRegEx(call.addr, call.value);
    case 2:
        return comm.ReadRegEx(call.addr, out++);
    case 3:
        return comm.WriteRegs(low, 2, data, INC_TYPE_0);
    default:
        return comm.I2CWriteByte(0xA0, low, call.value);
    }
}

void ScriptPeer(benchmark::State &state) {
    CNxComm comm;
    std::vector<Call> calls;
    for (unsigned int i = 0; i < kRecords; ++i) {
        calls.push_back(CallOf(i));
    }
    Bytes data = {1, 2};
    Bytes out(kRecords);
    const bool loaded = Load(comm, state);
    const FaultCounter faults(state);
    for (auto _ : state) {
        unsigned int status = loaded ? 0 : 6;
        unsigned char *next = out.data();
        for (const Call &call : calls) {
            status |= Carry(comm, call, data.data(), next);
        }
        if (status != 0) {
            state.SkipWithError("a call failed");
            return;
        }
    }
}

#define LIST_PAIR(ROW, FORM)                                                                       \
    BENCHMARK_CAPTURE(ListSubject, , FORM)->Name(ROW ":subject");                                  \
    BENCHMARK_CAPTURE(ListPeer, , FORM)->Name(ROW ":peer")

LIST_PAIR("list_hex", kHexList);
LIST_PAIR("list_lines", kHexLines);
LIST_PAIR("list_braces", kBraces);
LIST_PAIR("list_decimal", kDecimal);
LIST_PAIR("list_comments", kComments);
BENCHMARK(ScriptSubject)->Name("script:subject");
BENCHMARK(ScriptPeer)->Name("script:peer");

} // namespace
