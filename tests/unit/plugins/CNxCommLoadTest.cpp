// Loading and freeing the communication library.

#include "scaler_isp/plugins/CNxComm.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include <gmock/gmock.h>

#include "comm/CommRecord.h"
#include "comm/CommSymbols.h"
#include "comm/LibraryCopy.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "support/TestLocale.h"

namespace {

using testing::EndsWith;
using testing::StartsWith;

/// Every symbol that must be there.
std::vector<std::string> RequiredSymbols() {
    std::vector<std::string> required = CalledCommSymbols();
    required.emplace_back(kUncalledCommSymbol);
    return required;
}

std::wstring Wide(const std::string &ascii) {
    return {ascii.begin(), ascii.end()};
}

int Load(CNxComm &comm, const std::string &path) {
    return comm.LoadCommDllFile(Wide(path).data());
}

/// Handle and pointers of the object, by their places in memory.
constexpr std::size_t kHandleAt = 56;
std::vector<std::uintptr_t> HandleAndPointers(const CNxComm &comm) {
    std::vector<std::uintptr_t> words(157);
    std::memcpy(words.data(), reinterpret_cast<const char *>(&comm) + kHandleAt,
                words.size() * sizeof words[0]);
    return words;
}

bool IsEmpty(const CNxComm &comm) {
    return HandleAndPointers(comm) == std::vector<std::uintptr_t>(157);
}

std::string FormerValues(const CNxComm &comm) {
    return {reinterpret_cast<const char *>(&comm) + 8, 48};
}

/// 48 bytes; those between the members are left out.
void ExpectDefaultFormerValues(const CNxComm &comm) {
    const std::string bytes = FormerValues(comm);
    EXPECT_EQ(bytes.substr(0, 2), std::string("\x00\x6A", 2));
    EXPECT_EQ(bytes.substr(4, 5), std::string("\x00\x00\x00\x00\x94", 5));
    for (std::size_t entry = 0; entry < 4; ++entry) {
        EXPECT_EQ(bytes.substr(12 + 8 * entry, 5), std::string(5, '\0')) << entry;
    }
    EXPECT_EQ(bytes.substr(44, 4), std::string(4, '\0'));
}

class CNxCommLoad : public testing::Test {
  protected:
    std::string Copy(const std::string &name, const std::vector<std::string> &without = {}) {
        return m_folder.Write(name, WithoutFunctions(FileBytes(COMM_RECORDER_FILE), without));
    }
    TempFolder m_folder;
};

TEST_F(CNxCommLoad, Object_is_reserved_values_handle_and_156_pointers) {
    EXPECT_EQ(sizeof(CNxComm), 8U + 48U + 8U + 156U * 8U);
    CNxComm comm;
    EXPECT_TRUE(IsEmpty(comm));
    ExpectDefaultFormerValues(comm);
}

TEST_F(CNxCommLoad, Complete_library_returns_1_and_sets_all_but_20_pointers) {
    CNxComm comm;
    EXPECT_EQ(Load(comm, COMM_RECORDER_FILE), 1);
    std::vector<std::uintptr_t> words = HandleAndPointers(comm);
    EXPECT_NE(words[0], 0U);
    EXPECT_EQ(std::count(words.begin() + 1, words.end(), 0U), 20);
    ExpectDefaultFormerValues(comm);
    comm.FreeCommDllFile();
    EXPECT_TRUE(IsEmpty(comm));
    EXPECT_FALSE(IsLoaded(COMM_RECORDER_FILE));
    ExpectDefaultFormerValues(comm);
}

TEST_F(CNxCommLoad, Pointers_are_in_order_of_methods) {
    const char *const symbols[] = {
#define COMM_ROW(SLOT, METHOD, SYMBOL, ...) SYMBOL,
#include "comm/comm_rows.def"
    };
    CNxComm comm;
    ASSERT_EQ(Load(comm, COMM_RECORDER_FILE), 1);
    const std::vector<std::uintptr_t> words = HandleAndPointers(comm);
    auto *library = reinterpret_cast<void *>(words[0]);
    for (std::size_t i = 0; i < 156; ++i) {
        // The method of this one calls its neighbour's, but it has its own.
        const char *symbol = i == 85 ? kUncalledCommSymbol : symbols[i];
        void *function = symbol != nullptr ? dlsym(library, symbol) : nullptr;
        EXPECT_EQ(words[1 + i], reinterpret_cast<std::uintptr_t>(function)) << i;
    }
    comm.FreeCommDllFile();
}

TEST_F(CNxCommLoad, Each_of_124_required_symbols_is_needed) {
    const std::vector<std::string> required = RequiredSymbols();
    ASSERT_EQ(required.size(), 124U);
    for (const std::string &symbol : required) {
        const std::string path = Copy(symbol + ".so", {symbol});
        CNxComm comm;
        CapturedOutput output(CapturedOutput::Stream::Output);
        CapturedOutput error(CapturedOutput::Stream::Error);
        EXPECT_EQ(Load(comm, path), 0) << symbol;
        EXPECT_EQ(error.Take(), "") << symbol;
        EXPECT_EQ(output.Take(), "") << symbol;
        EXPECT_TRUE(IsEmpty(comm)) << symbol;
        EXPECT_FALSE(IsLoaded(path)) << symbol;
    }
}

TEST_F(CNxCommLoad, Each_of_12_optional_symbols_may_be_missing) {
    ASSERT_EQ(kOptionalCommSymbols.size(), 12U);
    for (const std::string &symbol : kOptionalCommSymbols) {
        CNxComm comm;
        EXPECT_EQ(Load(comm, Copy(symbol + ".so", {symbol})), 1) << symbol;
        const auto words = HandleAndPointers(comm);
        EXPECT_EQ(std::count(words.begin(), words.end(), 0U), 21) << symbol;
        comm.FreeCommDllFile();
    }
}

TEST_F(CNxCommLoad, Methods_of_missing_optional_symbols_return_6) {
    CNxComm comm;
    EXPECT_EQ(Load(comm, Copy("few.so", kOptionalCommSymbols)), 1);
    unsigned int word = 0;
    unsigned char byte = 0;
    EXPECT_EQ(comm.SetI2CDebugPort(1, 2), 6U);
    EXPECT_EQ(comm.SetI2CoverAUXDebugPort(), 6U);
    EXPECT_EQ(comm.ReadDDRCPURegEx(0, &word, STRUCT_ENUM_CPU_TYPE(0)), 6U);
    EXPECT_EQ(comm.WriteDDRCPURegEx(0, 0, STRUCT_ENUM_CPU_TYPE(0)), 6U);
    EXPECT_EQ(comm.ReadDDRCPURegsEx(0, 1, &word, INC_TYPE_0, STRUCT_ENUM_CPU_TYPE(0)), 6U);
    EXPECT_EQ(comm.WriteDDRCPURegsEx(0, 1, &word, INC_TYPE_0, STRUCT_ENUM_CPU_TYPE(0)), 6U);
    EXPECT_EQ(comm.CheckSnifferBoardCustomerId(&byte, 1), 6U);
    EXPECT_EQ(comm.I2CSlaveWrite(0, 0, 1, &byte), 6U);
    EXPECT_EQ(comm.I2CSlaveRead(0, 0, 1, &byte), 6U);
    EXPECT_EQ(comm.I2CStretchRead(0, 0, 1, &byte), 6U);
    EXPECT_EQ(comm.Read32BitReg1Byte(0, &byte), 6U);
    EXPECT_EQ(comm.Write32BitReg1Byte(0, 1), 6U);
    comm.FreeCommDllFile();
}

TEST_F(CNxCommLoad, Load_resets_optional_symbols_of_earlier_library) {
    CNxComm comm;
    EXPECT_EQ(Load(comm, COMM_RECORDER_FILE), 1);
    EXPECT_EQ(Load(comm, Copy("few.so", kOptionalCommSymbols)), 1);
    const auto words = HandleAndPointers(comm);
    EXPECT_EQ(std::count(words.begin(), words.end(), 0U), 32);
    comm.FreeCommDllFile();
}

TEST_F(CNxCommLoad, Missing_file_is_reported_on_standard_error) {
    CNxComm comm;
    const std::string path = m_folder.Path("none.so");
    int result = 1;
    std::string error;
    EXPECT_EQ(OutputOf([&] { error = ErrorOutputOf([&] { result = Load(comm, path); }); }), "");
    EXPECT_EQ(result, 0);
    EXPECT_EQ(error, "Failed to open libaray " + path + " error:" + path +
                         ": cannot open shared object file: No such file or directory\n");
    EXPECT_TRUE(IsEmpty(comm));
}

TEST_F(CNxCommLoad, File_that_is_not_library_is_reported_on_standard_error) {
    CNxComm comm;
    const std::string path = m_folder.Write("text.so", "no library at all");
    EXPECT_THAT(ErrorOutputOf([&] { EXPECT_EQ(Load(comm, path), 0); }),
                testing::AllOf(StartsWith("Failed to open libaray " + path + " error:" + path),
                               EndsWith("\n")));
}

TEST_F(CNxCommLoad, Empty_path_fails_and_never_opens_main_program) {
    CNxComm comm;
    // Opening the program itself would find no function and say nothing.
    const auto message = testing::AllOf(StartsWith("Failed to open libaray  error:"),
                                        testing::Not(EndsWith("error:\n")), EndsWith("\n"));
    EXPECT_THAT(ErrorOutputOf([&] { EXPECT_EQ(Load(comm, ""), 0); }), message);
    EXPECT_THAT(ErrorOutputOf([&] { EXPECT_EQ(comm.LoadCommDllFile(nullptr), 0); }), message);
    EXPECT_TRUE(IsEmpty(comm));
}

TEST_F(CNxCommLoad, Path_is_converted_to_encoding_of_environment) {
    Copy("d\xC3\xBCnn.so");
    const std::wstring wide = Wide(m_folder.Path()) + L"d\u00FCnn.so";
    CNxComm comm;
    EXPECT_EQ(comm.LoadCommDllFile(std::wstring(wide).data()), 1);
    comm.FreeCommDllFile();
    if (!HasTestLocale("de_DE.ISO-8859-1")) {
        GTEST_SKIP() << "the locale de_DE.ISO-8859-1 was not made";
    }
    const EnvironmentLocaleGuard latin("de_DE.ISO-8859-1");
    EXPECT_THAT(
        ErrorOutputOf([&] { EXPECT_EQ(comm.LoadCommDllFile(std::wstring(wide).data()), 0); }),
        StartsWith("Failed to open libaray " + m_folder.Path("d\xFCnn.so") + " error:"));
    Copy("d\xFCnn.so");
    EXPECT_EQ(comm.LoadCommDllFile(std::wstring(wide).data()), 1);
    comm.FreeCommDllFile();
}

TEST_F(CNxCommLoad, Second_load_of_same_path_closes_first_library_before_opening) {
    CNxComm comm;
    ASSERT_EQ(Load(comm, COMM_RECORDER_FILE), 1);
    comm.ScalerRun();
    void *library = dlopen(COMM_RECORDER_FILE, RTLD_NOW | RTLD_NOLOAD);
    const auto record = reinterpret_cast<CommRecord *(*)()>(dlsym(library, "CommRecorderRecord"));
    EXPECT_EQ(record()->calls, 1);
    dlclose(library);
    ASSERT_EQ(Load(comm, COMM_RECORDER_FILE), 1);
    library = dlopen(COMM_RECORDER_FILE, RTLD_NOW | RTLD_NOLOAD);
    const auto fresh = reinterpret_cast<CommRecord *(*)()>(dlsym(library, "CommRecorderRecord"));
    EXPECT_EQ(fresh()->calls, 0) << "the library was never unloaded";
    dlclose(library);
    comm.FreeCommDllFile();
    EXPECT_FALSE(IsLoaded(COMM_RECORDER_FILE));
}

TEST_F(CNxCommLoad, Failed_load_resets_object_and_closes_first_library) {
    CNxComm comm;
    ASSERT_EQ(Load(comm, COMM_RECORDER_FILE), 1);
    ErrorOutputOf([&] { EXPECT_EQ(Load(comm, m_folder.Path("none.so")), 0); });
    EXPECT_TRUE(IsEmpty(comm));
    EXPECT_FALSE(IsLoaded(COMM_RECORDER_FILE));
    EXPECT_EQ(comm.ScalerRun(), 6U);
}

TEST_F(CNxCommLoad, Load_calls_virtual_free_method) {
    struct Counting : CNxComm {
        void FreeCommDllFile() override {
            ++calls;
            CNxComm::FreeCommDllFile();
        }
        int calls = 0;
    };
    Counting comm;
    EXPECT_EQ(Load(comm, COMM_RECORDER_FILE), 1);
    EXPECT_EQ(comm.calls, 1);
    EXPECT_EQ(Load(comm, Copy("less.so", {"ScalerRun"})), 0);
    EXPECT_EQ(comm.calls, 3);
}

TEST_F(CNxCommLoad, Load_and_free_are_slots_2_and_3) {
    CNxComm comm;
    void **table = nullptr;
    std::memcpy(&table, static_cast<void *>(&comm), sizeof table);
    const auto load = reinterpret_cast<int (*)(CNxComm *, wchar_t *)>(table[2]);
    const auto free = reinterpret_cast<void (*)(CNxComm *)>(table[3]);
    EXPECT_EQ(load(&comm, Wide(COMM_RECORDER_FILE).data()), 1);
    EXPECT_TRUE(IsLoaded(COMM_RECORDER_FILE));
    free(&comm);
    EXPECT_FALSE(IsLoaded(COMM_RECORDER_FILE));
    free(&comm);
    EXPECT_TRUE(IsEmpty(comm));
}

TEST_F(CNxCommLoad, Slot_1_is_deleting_destructor) {
    auto *comm = new CNxComm; // a leak is found by the sanitizer
    void **table = nullptr;
    std::memcpy(&table, static_cast<void *>(comm), sizeof table);
    reinterpret_cast<void (*)(CNxComm *)>(table[1])(comm);
}

TEST_F(CNxCommLoad, Destructor_leaves_library_loaded) {
    const std::string path = Copy("left.so");
    { // slot 0 destroys without freeing the memory
        alignas(CNxComm) unsigned char memory[sizeof(CNxComm)];
        auto *comm = new (memory) CNxComm;
        ASSERT_EQ(Load(*comm, path), 1);
        void **table = nullptr;
        std::memcpy(&table, memory, sizeof table);
        reinterpret_cast<void (*)(CNxComm *)>(table[0])(comm);
    }
    void *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(handle, nullptr);
    dlclose(handle);
    dlclose(handle); // the one that was left
    EXPECT_FALSE(IsLoaded(path));
}

TEST_F(CNxCommLoad, Init_resets_pointers_without_closing) {
    const std::string path = Copy("forgotten.so");
    CNxComm comm;
    ASSERT_EQ(Load(comm, path), 1);
    const std::string former = FormerValues(comm);
    std::uintptr_t handle = HandleAndPointers(comm)[0];
    comm.Init();
    EXPECT_TRUE(IsEmpty(comm));
    EXPECT_EQ(FormerValues(comm), former);
    EXPECT_TRUE(IsLoaded(path));
    dlclose(reinterpret_cast<void *>(handle));
}

TEST_F(CNxCommLoad, Load_and_free_keep_reserved_values) {
    CNxComm comm;
    std::memset(reinterpret_cast<char *>(&comm) + 8, 0x5A, 48);
    Load(comm, COMM_RECORDER_FILE);
    comm.FreeCommDllFile();
    comm.Init();
    EXPECT_EQ(FormerValues(comm), std::string(48, '\x5A'));
}

} // namespace
