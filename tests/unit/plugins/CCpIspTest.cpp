#include <memory>

#include <gmock/gmock.h>

#include "modules/ModuleCalls.h"
#include "scaler_isp/plugins/CCpIsp.h"
#include "support/CapturedOutput.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

int Load(CCpIsp &isp, const std::string &path, std::string *out = nullptr) {
    std::wstring wide(path.begin(), path.end());
    int result = -1;
    const std::string text = OutputOf([&] { result = isp.LoadIspDllFile(wide.data()); });
    if (out != nullptr) {
        *out = text;
    } else {
        EXPECT_EQ(text, "");
    }
    return result;
}

void Progress(int percent) {
    static_cast<void>(percent);
}
void Message(wchar_t *text) {
    static_cast<void>(text);
}
void *Hub() {
    return nullptr;
}

class IspBinding : public testing::Test {
  protected:
    using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
    using Wrapper = int (CCpIsp::*)(Record *);

    ModuleCalls module;
    CCpIsp isp;
    std::unique_ptr<Record> record = std::make_unique<Record>();
    unsigned char buffer[8] = {};
};

struct NamedWrapper {
    const char *name;
    int (CCpIsp::*wrapper)(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *);
};

constexpr NamedWrapper kLookedUp[] = {
    {"IspFlash", &CCpIsp::IspFlash},
    {"RecordFWVersion", &CCpIsp::RecordFWVersion},
    {"DumpFlash", &CCpIsp::DumpFlash},
    {"GetUserDefinedInfoFromDDCCI", &CCpIsp::GetUserDefinedInfoFromDDCCI},
    {"IspEeprom", &CCpIsp::IspEeprom},
    {"EnterISPModeExport", &CCpIsp::EnterISPModeExport},
    {"ResetMCUExport", &CCpIsp::ResetMCUExport},
    {"GetScalerType", &CCpIsp::GetScalerType}};

constexpr NamedWrapper kNeverLookedUp[] = {{"GetFWInfo", &CCpIsp::GetFWInfo},
                                           {"SendUserDefinedInfo", &CCpIsp::SendUserDefinedInfo},
                                           {"ChipEraseFlash", &CCpIsp::ChipEraseFlash},
                                           {"SetMergeFwInfo", &CCpIsp::SetMergeFwInfo},
                                           {"I2CWriteExport", &CCpIsp::I2CWriteExport}};

} // namespace

TEST_F(IspBinding, Object_is_vtable_pointer_handle_and_19_functions) {
    EXPECT_EQ(sizeof(CCpIsp), 21 * sizeof(void *));
    EXPECT_TRUE(std::is_polymorphic_v<CCpIsp>);
}

TEST_F(IspBinding, Functions_return_not_loaded_before_loading) {
    for (const NamedWrapper &row : kLookedUp) {
        EXPECT_EQ((isp.*row.wrapper)(record.get()), 6) << row.name;
    }
    EXPECT_EQ(isp.GetKeyFromFlash(record.get(), buffer), 6);
    EXPECT_EQ(isp.SetIDev(buffer), 0);
    isp.SetCommInterface(nullptr);
    isp.SetUIFunction(Progress, Message, Hub);
    isp.FreeIspDllFile();
    EXPECT_THAT(module.calls, IsEmpty());
}

TEST_F(IspBinding, Wrappers_pass_record_and_return_result) {
    ASSERT_EQ(Load(isp, ModulePath("full")), 1);
    int next = -5;
    module.answer = [&](const ModuleCall &) { return next; };
    for (const NamedWrapper &row : kLookedUp) {
        module.calls.clear();
        ++next;
        EXPECT_EQ((isp.*row.wrapper)(record.get()), next);
        ASSERT_EQ(module.calls.size(), 1U);
        EXPECT_EQ(module.calls[0].name, row.name);
        EXPECT_EQ(module.calls[0].first, record.get());
    }
    isp.FreeIspDllFile();
}

TEST_F(IspBinding, Functions_without_record_result_pass_their_arguments) {
    ASSERT_EQ(Load(isp, ModulePath("full")), 1);
    module.answer = [](const ModuleCall &) { return 77; };
    EXPECT_EQ(isp.GetKeyFromFlash(record.get(), buffer), 77);
    auto *comm = reinterpret_cast<CNxComm *>(buffer);
    isp.SetCommInterface(comm);
    isp.SetUIFunction(Progress, Message, Hub);
    isp.SetUIFunction(nullptr, nullptr, nullptr);
    ASSERT_THAT(module.Names(), ElementsAre("GetKeyFromFlash", "SetCommInterface", "SetUIFunction",
                                            "SetUIFunction"));
    EXPECT_EQ(module.calls[0].first, record.get());
    EXPECT_EQ(module.calls[0].second, buffer);
    EXPECT_EQ(module.calls[1].first, comm);
    EXPECT_EQ(module.calls[2].first, reinterpret_cast<void *>(&Progress));
    EXPECT_EQ(module.calls[2].second, reinterpret_cast<void *>(&Message));
    EXPECT_EQ(module.calls[2].third, reinterpret_cast<void *>(&Hub));
    EXPECT_EQ(module.calls[3].third, nullptr);
    isp.FreeIspDllFile();
}

TEST_F(IspBinding, Functions_never_looked_up_return_6) {
    ASSERT_EQ(Load(isp, ModulePath("extras")), 1);
    for (const NamedWrapper &row : kNeverLookedUp) {
        EXPECT_EQ((isp.*row.wrapper)(record.get()), 6) << row.name;
    }
    EXPECT_EQ(isp.GetMergeFwInfo(record.get(), buffer), 6);
    EXPECT_EQ(isp.BankEraseFlash(1, 2, record.get()), 6);
    EXPECT_EQ(isp.SetIDev(buffer), 0);
    EXPECT_THAT(module.calls, IsEmpty());
    isp.FreeIspDllFile();
}

TEST_F(IspBinding, Missing_required_function_closes_plugin_silently) {
    for (const char *name : {"IspFlash", "SetCommInterface", "RecordFWVersion", "GetKeyFromFlash",
                             "SetUIFunction", "DumpFlash"}) {
        const std::string path = ModulePath(std::string("without_") + name);
        EXPECT_EQ(Load(isp, path), 0) << name;
        EXPECT_FALSE(IsLoaded(path)) << name;
        EXPECT_EQ(isp.IspFlash(record.get()), 6) << name;
        EXPECT_EQ(isp.RecordFWVersion(record.get()), 6) << name;
    }
    EXPECT_THAT(module.calls, IsEmpty());
}

TEST_F(IspBinding, Missing_optional_function_returns_6) {
    for (std::size_t missing = 3; missing < std::size(kLookedUp); ++missing) {
        ASSERT_EQ(Load(isp, ModulePath(std::string("without_") + kLookedUp[missing].name)), 1);
        for (std::size_t i = 0; i < std::size(kLookedUp); ++i) {
            EXPECT_EQ((isp.*kLookedUp[i].wrapper)(record.get()), i == missing ? 6 : 0)
                << kLookedUp[i].name;
        }
    }
    ASSERT_EQ(Load(isp, ModulePath("required_only")), 1);
    EXPECT_EQ(isp.IspFlash(record.get()), 0);
    EXPECT_EQ(isp.GetScalerType(record.get()), 6);
    isp.FreeIspDllFile();
}

TEST_F(IspBinding, Open_failure_message_ends_in_the_letter_n) {
    std::string out;
    EXPECT_EQ(Load(isp, "/nowhere/libIsp.dylib", &out), 0);
    EXPECT_EQ(out.substr(0, 9), "dlopen - ");
    EXPECT_NE(out.find("/nowhere/libIsp.dylib"), std::string::npos);
    EXPECT_EQ(out.back(), 'n');
    EXPECT_EQ(out.find('\n'), std::string::npos);
    EXPECT_EQ(isp.IspFlash(record.get()), 6);
}

TEST_F(IspBinding, Empty_path_fails) {
    std::string out;
    EXPECT_EQ(Load(isp, "", &out), 0);
    EXPECT_EQ(out.substr(0, 9), "dlopen - ");
    EXPECT_EQ(out.back(), 'n');
}

TEST_F(IspBinding, Unresolved_symbol_fails_load) {
    std::string out;
    EXPECT_EQ(Load(isp, ModulePath("unresolved"), &out), 0);
    EXPECT_NE(out.find("nobody_defines_this"), std::string::npos);
}

TEST_F(IspBinding, Free_resets_handle_and_functions) {
    ASSERT_EQ(Load(isp, ModulePath("full")), 1);
    EXPECT_TRUE(IsLoaded(ModulePath("full")));
    isp.FreeIspDllFile();
    EXPECT_FALSE(IsLoaded(ModulePath("full")));
    for (const NamedWrapper &row : kLookedUp) {
        EXPECT_EQ((isp.*row.wrapper)(record.get()), 6) << row.name;
    }
    EXPECT_EQ(isp.GetKeyFromFlash(record.get(), buffer), 6);
    isp.SetUIFunction(nullptr, nullptr, nullptr);
    isp.SetCommInterface(nullptr);
    isp.FreeIspDllFile();
    EXPECT_THAT(module.calls, IsEmpty());
}

TEST_F(IspBinding, Second_load_frees_first_plugin) {
    ASSERT_EQ(Load(isp, ModulePath("full")), 1);
    ASSERT_EQ(Load(isp, ModulePath("required_only")), 1);
    EXPECT_FALSE(IsLoaded(ModulePath("full")));
    EXPECT_TRUE(IsLoaded(ModulePath("required_only")));
    EXPECT_EQ(isp.GetScalerType(record.get()), 6);
    std::string out;
    EXPECT_EQ(Load(isp, "/nowhere", &out), 0);
    EXPECT_FALSE(IsLoaded(ModulePath("required_only")));
    EXPECT_EQ(isp.IspFlash(record.get()), 6);
}

TEST_F(IspBinding, Init_resets_pointers_without_closing) {
    ASSERT_EQ(Load(isp, ModulePath("full")), 1);
    CCpIsp second;
    ASSERT_EQ(Load(second, ModulePath("full")), 1);
    isp.Init();
    EXPECT_EQ(isp.IspFlash(record.get()), 6);
    second.FreeIspDllFile();
    EXPECT_TRUE(IsLoaded(ModulePath("full"))); // the forgotten handle still holds it
    EXPECT_EQ(Load(second, ModulePath("full")), 1);
    second.FreeIspDllFile();
}

TEST_F(IspBinding, Destructor_leaves_the_plugin_loaded) {
    {
        const auto gone = std::make_unique<CCpIsp>();
        ASSERT_EQ(Load(*gone, ModulePath("without_IspEeprom")), 1);
    }
    EXPECT_TRUE(IsLoaded(ModulePath("without_IspEeprom")));
}
