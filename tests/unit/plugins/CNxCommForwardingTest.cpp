// Every method of CNxComm, called by its number in the virtual table as a plug-in calls it.

#include "scaler_isp/plugins/CNxComm.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include <gtest/gtest.h>

#include "comm/CommRecord.h"
#include "comm/LibraryCopy.h"
#include "support/CapturedOutput.h"

namespace {

alignas(16) unsigned char g_targets[8][64]; // what pointer arguments point to

/// A value that no other argument has, for each place in a list of arguments.
template <class Value> Value Distinct(unsigned place) {
    if constexpr (std::is_pointer_v<Value>) {
        return reinterpret_cast<Value>(g_targets[place]);
    } else {
        unsigned char bytes[sizeof(Value)];
        for (std::size_t i = 0; i < sizeof bytes; ++i) {
            bytes[i] = static_cast<unsigned char>(0x81 + 0x11 * place + i);
        }
        Value value;
        std::memcpy(static_cast<void *>(&value), bytes, sizeof value);
        return value;
    }
}

/// One argument: what is passed, and the bytes that must arrive.
template <class Parameter> struct Argument {
    explicit Argument(unsigned place) : value(Distinct<Parameter>(place)) {}
    Parameter Pass() const {
        return value;
    }
    std::string Bytes() const {
        return {reinterpret_cast<const char *>(&value), sizeof value};
    }
    Parameter value;
};
template <class Target> struct Argument<Target &> {
    explicit Argument(unsigned place) : target(*reinterpret_cast<Target *>(g_targets[place])) {}
    Target &Pass() const {
        return target;
    }
    std::string Bytes() const {
        const void *address = &target;
        return {reinterpret_cast<const char *>(&address), sizeof address};
    }
    Target &target;
};

/// The functions of a virtual table, as the binary interface numbers them.
void *Slot(CNxComm &comm, unsigned slot) {
    void **table = nullptr;
    std::memcpy(&table, static_cast<void *>(&comm), sizeof table);
    return table[slot];
}

/// What the function behind a pointer received last.
struct Received {
    int calls = 0;
    std::string arguments; ///< their bytes, one after the other
    std::vector<unsigned> sizes;
} g_received;

alignas(16) unsigned char g_answer[16]; // and what it returns

template <class Parameter, class Value> void Receive(const Value &value) {
    const void *address = &value;
    const void *bytes =
        std::is_reference_v<Parameter> ? static_cast<const void *>(&address) : &value;
    const std::size_t size = std::is_reference_v<Parameter> ? sizeof address : sizeof value;
    g_received.arguments.append(static_cast<const char *>(bytes), size);
    g_received.sizes.push_back(static_cast<unsigned>(size));
}

struct Called {
    std::string result;    ///< its bytes; empty where there is none
    std::string arguments; ///< the bytes of all arguments, one after the other
    std::vector<unsigned> sizes;
};

template <class Function> struct Caller;
template <class Result, class... Parameters> struct Caller<Result(Parameters...)> {
    static constexpr std::size_t kResultBytes = [] {
        if constexpr (std::is_void_v<Result>) {
            return std::size_t{0};
        } else {
            return sizeof(Result);
        }
    }();

    /// A function of the library, its arguments told by their places and not by their names.
    static Result Function(Parameters... arguments) {
        g_received = {g_received.calls + 1, {}, {}};
        (Receive<Parameters>(arguments), ...);
        if constexpr (!std::is_void_v<Result>) {
            Result result;
            std::memcpy(static_cast<void *>(&result), g_answer, sizeof result);
            return result;
        }
    }

    static Called Call(CNxComm &comm, unsigned slot) {
        return WithPlaces(comm, slot, std::index_sequence_for<Parameters...>{});
    }
    template <std::size_t... Places>
    static Called WithPlaces(CNxComm &comm, unsigned slot, std::index_sequence<Places...>) {
        using Method = Result (*)(CNxComm *, Parameters...);
        const auto method = reinterpret_cast<Method>(Slot(comm, slot));
        const std::tuple<Argument<Parameters>...> arguments{Argument<Parameters>(Places)...};
        Called called;
        ((called.arguments += std::get<Places>(arguments).Bytes()), ...);
        (called.sizes.push_back(static_cast<unsigned>(std::get<Places>(arguments).Bytes().size())),
         ...);
        if constexpr (std::is_void_v<Result>) {
            method(&comm, std::get<Places>(arguments).Pass()...);
        } else {
            const Result result = method(&comm, std::get<Places>(arguments).Pass()...);
            called.result.assign(reinterpret_cast<const char *>(&result), sizeof result);
        }
        return called;
    }
};

struct Row {
    unsigned slot;
    const char *method;
    const char *symbol;
    std::uint64_t unloaded;
    std::size_t resultBytes;
    Called (*call)(CNxComm &comm, unsigned slot);
    void *function;
};

const Row kRows[] = {
#define COMM_ROW(SLOT, METHOD, SYMBOL, NOT_LOADED_RESULT, ...)                                     \
    {SLOT,                                                                                         \
     #METHOD,                                                                                      \
     SYMBOL,                                                                                       \
     NOT_LOADED_RESULT,                                                                            \
     Caller<__VA_ARGS__>::kResultBytes,                                                            \
     Caller<__VA_ARGS__>::Call,                                                                    \
     reinterpret_cast<void *>(&Caller<__VA_ARGS__>::Function)},
#include "comm/comm_rows.def"
};

template <class Function> struct MethodOf;
template <class Result, class... Parameters> struct MethodOf<Result(Parameters...)> {
    using Type = Result (CNxComm::*)(Parameters...);
};
#define COMM_ROW(SLOT, METHOD, SYMBOL, NOT_LOADED_RESULT, ...)                                     \
    static_assert(std::is_same_v<decltype(&CNxComm::METHOD), MethodOf<__VA_ARGS__>::Type>);
#include "comm/comm_rows.def"

std::string UnloadedBytes(const Row &row) {
    return {reinterpret_cast<const char *>(&row.unloaded), row.resultBytes};
}

/// A CNxComm on the recording library.
class CNxCommForwarding : public testing::Test {
  protected:
    CNxCommForwarding() {
        const std::string file = COMM_RECORDER_FILE;
        std::wstring path(file.begin(), file.end());
        EXPECT_EQ(m_comm.LoadCommDllFile(path.data()), 1);
        m_library = dlopen(COMM_RECORDER_FILE, RTLD_NOW | RTLD_NOLOAD);
        m_record = Get<CommRecord *()>("CommRecorderRecord")();
        m_result = static_cast<unsigned char *>(Get<void *()>("CommRecorderResult")());
        for (unsigned char i = 0; i < 16; ++i) {
            m_result[i] = static_cast<unsigned char>(0xE1 + i);
        }
        std::memset(m_record, 0, sizeof *m_record);
    }
    ~CNxCommForwarding() override {
        dlclose(m_library);
        m_comm.FreeCommDllFile();
    }
    template <class Function> Function *Get(const char *name) {
        return reinterpret_cast<Function *>(dlsym(m_library, name));
    }

    CNxComm m_comm;
    void *m_library = nullptr;
    CommRecord *m_record = nullptr;
    unsigned char *m_result = nullptr;
};

TEST(CNxCommTable, Slots_4_to_159_are_156_methods) {
    ASSERT_EQ(std::size(kRows), 156U);
    for (unsigned i = 0; i < 156; ++i) {
        EXPECT_EQ(kRows[i].slot, i + 4) << kRows[i].method;
    }
}

TEST_F(CNxCommForwarding, Every_slot_passes_arguments_and_result_unchanged) {
    int calls = 0;
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.method);
        if (row.symbol == nullptr) {
            continue;
        }
        const Called called = row.call(m_comm, row.slot);
        ASSERT_EQ(m_record->calls, ++calls);
        EXPECT_STREQ(m_record->name, row.symbol);
        EXPECT_EQ(std::vector<unsigned>(m_record->sizes, m_record->sizes + m_record->arguments),
                  called.sizes);
        EXPECT_EQ(std::string(reinterpret_cast<char *>(m_record->bytes), m_record->byteCount),
                  called.arguments);
        EXPECT_EQ(called.result, std::string(reinterpret_cast<char *>(m_result), row.resultBytes));
    }
    EXPECT_EQ(calls, 136);
}

TEST_F(CNxCommForwarding, Methods_without_symbol_call_nothing_even_if_exported) {
    int without = 0;
    for (const Row &row : kRows) {
        if (row.symbol != nullptr) {
            continue;
        }
        ++without;
        EXPECT_NE(dlsym(m_library, row.method), nullptr) << row.method;
        EXPECT_EQ(row.call(m_comm, row.slot).result, UnloadedBytes(row)) << row.method;
    }
    EXPECT_EQ(without, 20);
    EXPECT_EQ(m_record->calls, 0);
}

TEST_F(CNxCommForwarding, Sector_and_bank_erase_return_6_with_loaded_library) {
    EXPECT_EQ(m_comm.SectorErase(1, 2), 6U);
    EXPECT_EQ(m_comm.BankErase(1), 6U);
    EXPECT_EQ(m_record->calls, 0);
}

TEST_F(CNxCommForwarding, Config_path_goes_to_the_setting_path_function) {
    wchar_t path[] = L"/x";
    m_comm.SetConfigFilePath(path);
    EXPECT_STREQ(m_record->name, "SetSettingFilePath");
}

TEST_F(CNxCommForwarding, Master_current_read_ex_calls_the_plain_read) {
    unsigned char data[1] = {};
    m_comm.I2CMasterCurrentReadEx(0xA0, 1, data);
    EXPECT_STREQ(m_record->name, "I2CMasterCurrentRead");
}

/// The pointer with this number in the object, which lies behind the handle.
void SetPointer(CNxComm &comm, std::size_t number, void *function) {
    std::memcpy(reinterpret_cast<char *>(&comm) + 64 + 8 * number, &function, sizeof function);
}

TEST(CNxCommPointers, Every_method_calls_its_pointer_with_arguments_in_order) {
    for (unsigned char i = 0; i < 16; ++i) {
        g_answer[i] = static_cast<unsigned char>(0xD1 + i);
    }
    CNxComm comm;
    const std::string former(reinterpret_cast<const char *>(&comm) + 8, 48);
    for (const Row &row : kRows) {
        SCOPED_TRACE(row.method);
        const bool asTheRowBefore = std::strcmp(row.method, "I2CMasterCurrentReadEx") == 0;
        const unsigned number = row.slot - 4 - (asTheRowBefore ? 1 : 0);
        g_received = {};
        SetPointer(comm, number, row.function);
        const Called called = row.call(comm, row.slot);
        SetPointer(comm, number, nullptr);
        EXPECT_EQ(g_received.calls, 1);
        EXPECT_EQ(g_received.sizes, called.sizes);
        EXPECT_EQ(g_received.arguments, called.arguments);
        EXPECT_EQ(called.result, std::string(reinterpret_cast<char *>(g_answer), row.resultBytes));
    }
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(&comm) + 8, 48), former)
        << "the former values are the users'";
}

TEST(CNxCommEmpty, Every_method_returns_not_loaded_and_prints_nothing) {
    CNxComm comm;
    CapturedOutput output(CapturedOutput::Stream::Output);
    CapturedOutput error(CapturedOutput::Stream::Error);
    for (const Row &row : kRows) {
        EXPECT_EQ(row.call(comm, row.slot).result, UnloadedBytes(row)) << row.method;
    }
    EXPECT_EQ(error.Take(), "");
    EXPECT_EQ(output.Take(), "");
}

TEST(CNxCommEmpty, Counting_methods_return_6_and_slave_methods_0) {
    CNxComm comm;
    EXPECT_EQ(comm.GetDebugSlave(), 0);
    EXPECT_EQ(comm.GetCommCount(), 6);
    EXPECT_EQ(comm.GetDeviceCount(), 6U);
    EXPECT_EQ(comm.GetDeviceHandler(), nullptr);
    EXPECT_EQ(comm.GetWaitingMode().ulWords[0], 0U);
    EXPECT_EQ(comm.GetWaitingMode().ulWords[1], 0U);
}

} // namespace
