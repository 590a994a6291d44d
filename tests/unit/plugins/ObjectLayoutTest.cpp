// The objects of the bindings in memory: other binaries see them.

#include <cstdint>
#include <cstring>
#include <memory>

#include <gmock/gmock.h>

#include <dlfcn.h>

#include "modules/ModuleCalls.h"
#include "scaler_isp/plugins/CCpIsp.h"
#include "scaler_isp/plugins/CCpSignVerify.h"
#include "scaler_isp/plugins/CNxComm.h"

namespace {

using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

/// How many slots the virtual table of a class has: the number of the next one.
template <class Base> std::size_t Slots() {
    struct Next : Base {
        virtual void Added() {}
    };
    const auto added = &Next::Added;
    std::uintptr_t offset = 0; // in bytes; the lowest bit says that the function is virtual
    std::memcpy(&offset, &added, sizeof offset);
    return (offset & ~std::uintptr_t{1}) / sizeof(void *);
}

TEST(ObjectLayout, Plugin_bindings_have_no_virtual_function_but_destructor) {
    EXPECT_EQ(Slots<CCpIsp>(), 2U);
    EXPECT_EQ(Slots<CCpSignVerify>(), 2U);
}

TEST(ObjectLayout, Communication_object_has_160_slots) {
    EXPECT_EQ(Slots<CNxComm>(), 160U);
}

/// The words of an object behind the pointer to its virtual table: the handle and the functions.
template <class Object> std::vector<std::uintptr_t> Words(const void *object) {
    std::vector<std::uintptr_t> words(sizeof(Object) / sizeof(void *) - 1);
    std::memcpy(words.data(), static_cast<const char *>(object) + sizeof(void *),
                words.size() * sizeof words[0]);
    return words;
}

template <class Object> std::vector<std::uintptr_t> Nothing() {
    return std::vector<std::uintptr_t>(sizeof(Object) / sizeof(void *) - 1);
}

template <class Object> void SetWord(Object &object, std::size_t number, void *value) {
    std::memcpy(reinterpret_cast<char *>(&object) + (number + 1) * sizeof(void *), &value,
                sizeof value);
}

/// The words that the functions of a plug-in make; null stands for one that is never looked up.
template <std::size_t N>
std::vector<std::uintptr_t> Found(std::uintptr_t handle, const char *const (&functions)[N]) {
    std::vector<std::uintptr_t> words = {handle};
    for (const char *name : functions) {
        void *function = name != nullptr ? dlsym(reinterpret_cast<void *>(handle), name) : nullptr;
        EXPECT_EQ(function != nullptr, name != nullptr);
        words.push_back(reinterpret_cast<std::uintptr_t>(function));
    }
    return words;
}

std::wstring Path(const char *module) {
    const std::string path = ModulePath(module);
    return {path.begin(), path.end()};
}

constexpr const char *kIspFunctions[] = {nullptr,
                                         "IspFlash",
                                         "GetKeyFromFlash",
                                         "SetCommInterface",
                                         "RecordFWVersion",
                                         "SetUIFunction",
                                         nullptr,
                                         "DumpFlash",
                                         "GetUserDefinedInfoFromDDCCI",
                                         nullptr,
                                         nullptr,
                                         "IspEeprom",
                                         "EnterISPModeExport",
                                         "ResetMCUExport",
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         "GetScalerType",
                                         nullptr};

/// A binding in memory that held something else before.
template <class Binding> class Placed {
  public:
    Placed() {
        std::memset(m_memory, 0x5A, sizeof m_memory);
        m_binding = new (m_memory) Binding;
    }
    Binding &operator*() {
        return *m_binding;
    }
    std::vector<std::uintptr_t> Words() const {
        return ::Words<Binding>(m_memory);
    }
    /// Through the first slot, which destroys without freeing the memory.
    void Destroy() {
        void **table = nullptr;
        std::memcpy(&table, m_memory, sizeof table);
        reinterpret_cast<void (*)(Binding *)>(table[0])(m_binding);
    }

  private:
    alignas(Binding) unsigned char m_memory[sizeof(Binding)];
    Binding *m_binding;
};

TEST(ObjectLayout, Isp_object_is_handle_and_nineteen_functions_in_order) {
    Placed<CCpIsp> isp;
    EXPECT_EQ(isp.Words(), Nothing<CCpIsp>());
    ASSERT_EQ((*isp).LoadIspDllFile(Path("extras").data()), 1);
    const auto loaded = isp.Words();
    EXPECT_EQ(loaded, Found(loaded[0], kIspFunctions));
    (*isp).FreeIspDllFile();
    EXPECT_EQ(isp.Words(), Nothing<CCpIsp>());
    ASSERT_EQ((*isp).LoadIspDllFile(Path("without_DumpFlash").data()), 0);
    EXPECT_EQ(isp.Words(), Nothing<CCpIsp>());
}

TEST(ObjectLayout, Destructor_of_isp_object_keeps_its_members) {
    Placed<CCpIsp> isp;
    ASSERT_EQ((*isp).LoadIspDllFile(Path("extras").data()), 1);
    const auto loaded = isp.Words();
    isp.Destroy();
    EXPECT_EQ(isp.Words(), loaded);
    EXPECT_TRUE(IsLoaded(ModulePath("extras")));
    dlclose(reinterpret_cast<void *>(loaded[0]));
    EXPECT_FALSE(IsLoaded(ModulePath("extras")));
}

TEST(ObjectLayout, Init_clears_every_member_of_isp_object) {
    CCpIsp isp;
    for (std::size_t i = 0; i < 20; ++i) {
        SetWord(isp, i, &isp);
    }
    isp.Init();
    EXPECT_EQ(Words<CCpIsp>(&isp), Nothing<CCpIsp>());
}

TEST(ObjectLayout, Sign_object_is_handle_and_two_functions_in_order) {
    constexpr const char *kFunctions[] = {"SignFwExport", "VerifySignatureExport"};
    Placed<CCpSignVerify> sign;
    EXPECT_EQ(sign.Words(), Nothing<CCpSignVerify>());
    ASSERT_EQ((*sign).LoadSignVerfiyDllFile(Path("sign_full").data()), 1);
    const auto loaded = sign.Words();
    EXPECT_EQ(loaded, Found(loaded[0], kFunctions));
    sign.Destroy();
    EXPECT_EQ(sign.Words(), loaded);
    EXPECT_TRUE(IsLoaded(ModulePath("sign_full")));
    dlclose(reinterpret_cast<void *>(loaded[0]));
}

TEST(ObjectLayout, Init_clears_every_member_of_sign_object) {
    CCpSignVerify sign;
    for (std::size_t i = 0; i < 3; ++i) {
        SetWord(sign, i, &sign);
    }
    sign.Init();
    EXPECT_EQ(Words<CCpSignVerify>(&sign), Nothing<CCpSignVerify>());
}

/// What a function behind one of the pointers received.
struct {
    void *first;
    void *second;
    unsigned int banks[2];
} g_received;

void TakeDevice(void *device) {
    g_received.first = device;
}
int TakeSetting(Record *setting) {
    g_received.first = setting;
    return -77;
}
int TakeBuffer(Record *setting, unsigned char *buffer) {
    g_received.first = setting;
    g_received.second = buffer;
    return -78;
}
int TakeBanks(unsigned int first, unsigned int second, Record *setting) {
    g_received.first = setting;
    g_received.banks[0] = first;
    g_received.banks[1] = second;
    return -79;
}

class IspPointers : public testing::Test {
  protected:
    IspPointers() {
        g_received = {};
    }
    /// Makes a function the only one.
    template <class Function> void Only(std::size_t number, Function *function) {
        m_isp.Init();
        SetWord(m_isp, number, reinterpret_cast<void *>(function));
    }
    CCpIsp m_isp;
    std::unique_ptr<Record> m_record = std::make_unique<Record>();
    unsigned char m_buffer[8] = {};
};

TEST_F(IspPointers, Each_record_wrapper_calls_its_own_pointer) {
    const struct {
        std::size_t number;
        int (CCpIsp::*wrapper)(Record *);
    } rows[] = {{2, &CCpIsp::IspFlash},
                {5, &CCpIsp::RecordFWVersion},
                {7, &CCpIsp::GetFWInfo},
                {8, &CCpIsp::DumpFlash},
                {9, &CCpIsp::GetUserDefinedInfoFromDDCCI},
                {10, &CCpIsp::SendUserDefinedInfo},
                {11, &CCpIsp::ChipEraseFlash},
                {12, &CCpIsp::IspEeprom},
                {13, &CCpIsp::EnterISPModeExport},
                {14, &CCpIsp::ResetMCUExport},
                {16, &CCpIsp::SetMergeFwInfo},
                {17, &CCpIsp::I2CWriteExport},
                {18, &CCpIsp::GetScalerType}};
    for (const auto &row : rows) {
        for (std::size_t number = 1; number <= 19; ++number) {
            Only(number, TakeSetting);
            g_received = {};
            const bool own = number == row.number;
            EXPECT_EQ((m_isp.*row.wrapper)(m_record.get()), own ? -77 : 6) << row.number;
            EXPECT_EQ(g_received.first, own ? m_record.get() : nullptr) << row.number;
        }
    }
}

TEST_F(IspPointers, SetIDev_passes_device_and_returns_whether_function_exists) {
    Only(1, TakeDevice);
    EXPECT_EQ(m_isp.SetIDev(m_buffer), 1);
    EXPECT_EQ(g_received.first, m_buffer);
    m_isp.Init();
    EXPECT_EQ(m_isp.SetIDev(m_buffer), 0);
}

TEST_F(IspPointers, Buffer_is_passed_after_record) {
    Only(3, TakeBuffer);
    EXPECT_EQ(m_isp.GetKeyFromFlash(m_record.get(), m_buffer), -78);
    EXPECT_EQ(g_received.first, m_record.get());
    EXPECT_EQ(g_received.second, m_buffer);
    g_received = {};
    Only(15, TakeBuffer);
    EXPECT_EQ(m_isp.GetMergeFwInfo(m_record.get(), m_buffer), -78);
    EXPECT_EQ(g_received.first, m_record.get());
    EXPECT_EQ(g_received.second, m_buffer);
}

TEST_F(IspPointers, Bank_numbers_are_passed_before_record) {
    Only(19, TakeBanks);
    EXPECT_EQ(m_isp.BankEraseFlash(3, 4, m_record.get()), -79);
    EXPECT_EQ(g_received.first, m_record.get());
    EXPECT_THAT(g_received.banks, testing::ElementsAre(3U, 4U));
}

} // namespace
