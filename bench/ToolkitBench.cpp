// Byte lists against a strtol loop, and a register script against the same calls with their
// operands decoded beforehand.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "scaler_isp/common/CommandText.h"
#include "scaler_isp/common/script/RegisterScript.h"
#include "scaler_isp/plugins/CNxComm.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::size_t kListCharacters = 256 * 1024;
constexpr unsigned int kRecords = 10000;

std::string MakeList() {
    constexpr const char *kDigits = "0123456789ABCDEF";
    std::string text;
    for (unsigned int i = 0; text.size() + 6 <= kListCharacters; ++i) {
        text += {'0', 'x', kDigits[i / 16 % 16], kDigits[i % 16], ',', ' '};
    }
    return text;
}

void ListSubject(benchmark::State &state) {
    const std::string narrow = MakeList();
    std::wstring text(narrow.begin(), narrow.end());
    Bytes bytes(text.size());
    for (auto _ : state) {
        const int count = CmdToBin(text.data(), static_cast<unsigned int>(text.size()),
                                   bytes.data(), static_cast<unsigned int>(bytes.size()));
        if (static_cast<std::size_t>(count) != text.size() / 6 || bytes[0x5A] != 0x5A) {
            state.SkipWithError("wrong bytes");
            return;
        }
    }
}

void ListPeer(benchmark::State &state) {
    const std::string text = MakeList();
    Bytes bytes(text.size());
    for (auto _ : state) {
        std::size_t count = 0;
        for (const char *at = text.c_str(); *at != '\0';) {
            char *end = nullptr;
            bytes[count++] = static_cast<unsigned char>(std::strtol(at, &end, 0));
            at = end + 2;
        }
        benchmark::DoNotOptimize(bytes.data());
        if (count != text.size() / 6 || bytes[0x5A] != 0x5A) {
            state.SkipWithError("wrong bytes");
            return;
        }
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
    for (bool loaded = Load(comm, state); auto _ : state) {
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
    for (bool loaded = Load(comm, state); auto _ : state) {
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

BENCHMARK(ListSubject)->Name("byte_list:subject");
BENCHMARK(ListPeer)->Name("byte_list:peer");
BENCHMARK(ScriptSubject)->Name("script:subject");
BENCHMARK(ScriptPeer)->Name("script:peer");

} // namespace
