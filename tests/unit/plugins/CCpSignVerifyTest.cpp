#include <gmock/gmock.h>

#include "modules/ModuleCalls.h"
#include "scaler_isp/plugins/CCpSignVerify.h"
#include "support/CapturedOutput.h"

namespace {

class SignVerifyBinding : public testing::Test {
  protected:
    int Load(const std::string &path, const std::string &expected = "") {
        std::wstring wide(path.begin(), path.end());
        int result = -1;
        out = OutputOf([&] { result = binding.LoadSignVerfiyDllFile(wide.data()); });
        EXPECT_EQ(out.substr(0, expected.size()), expected);
        if (expected.empty()) {
            EXPECT_EQ(out, "");
        } else {
            EXPECT_EQ(out.back(), '\n');
            EXPECT_EQ(out.find('\n'), out.size() - 1);
        }
        return result;
    }

    ModuleCalls module;
    CCpSignVerify binding;
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS args;
    std::string out;
};

} // namespace

TEST_F(SignVerifyBinding, Object_is_vtable_pointer_handle_and_two_functions) {
    EXPECT_EQ(sizeof(CCpSignVerify), 4 * sizeof(void *));
}

TEST_F(SignVerifyBinding, Functions_return_not_loaded_before_loading) {
    char key[4] = {};
    EXPECT_EQ(OutputOf([&] {
                  EXPECT_EQ(binding.SignFw(&args), 0x4004);
                  EXPECT_EQ(binding.VerifySignature(&args, nullptr), 0x4004);
                  EXPECT_EQ(binding.VerifySignature(&args, key), 0x4004);
                  binding.FreeSignVerfiyDllFile();
              }),
              "");
}

TEST_F(SignVerifyBinding, Any_non_zero_return_value_is_success) {
    ASSERT_EQ(Load(ModulePath("sign_full")), 1);
    char key[4] = {};
    for (const int answer : {1, -1, 2, 0x4002}) {
        module.answer = [&](const ModuleCall &) { return answer; };
        EXPECT_EQ(binding.SignFw(&args), 0);
        EXPECT_EQ(binding.VerifySignature(&args, key), 0);
    }
    module.answer = [](const ModuleCall &) { return 0; };
    EXPECT_EQ(binding.SignFw(&args), 0x4002);
    EXPECT_EQ(binding.VerifySignature(&args, nullptr), 0x4003);
    binding.FreeSignVerfiyDllFile();
}

TEST_F(SignVerifyBinding, Functions_pass_their_arguments) {
    ASSERT_EQ(Load(ModulePath("sign_full")), 1);
    char key[4] = {};
    binding.VerifySignature(&args, key);
    binding.VerifySignature(&args, nullptr);
    binding.SignFw(&args);
    ASSERT_THAT(module.Names(), testing::ElementsAre("VerifySignatureExport",
                                                     "VerifySignatureExport", "SignFwExport"));
    EXPECT_EQ(module.calls[0].first, &args);
    EXPECT_EQ(module.calls[0].second, key);
    EXPECT_EQ(module.calls[1].second, nullptr);
    EXPECT_EQ(module.calls[2].first, &args);
    binding.FreeSignVerfiyDllFile();
}

TEST_F(SignVerifyBinding, Open_failure_prints_message_of_loader_and_newline) {
    EXPECT_EQ(Load("/nowhere/libSignVerify.dylib", "dlopen - "), 0);
    EXPECT_NE(out.find("/nowhere/libSignVerify.dylib"), std::string::npos);
    EXPECT_EQ(Load("", "dlopen - "), 0);
}

TEST_F(SignVerifyBinding, Missing_function_is_reported_and_plugin_closed) {
    EXPECT_EQ(Load(ModulePath("sign_only"), "dlsym - "), 0);
    EXPECT_NE(out.find("VerifySignatureExport"), std::string::npos);
    EXPECT_FALSE(IsLoaded(ModulePath("sign_only")));
    EXPECT_EQ(Load(ModulePath("verify_only"), "dlsym - "), 0);
    EXPECT_NE(out.find("SignFwExport"), std::string::npos);
    EXPECT_FALSE(IsLoaded(ModulePath("verify_only")));
    EXPECT_EQ(binding.VerifySignature(&args, nullptr), 0x4004);
    EXPECT_EQ(Load(ModulePath("neither"), "dlsym - "), 0);
    EXPECT_NE(out.find("VerifySignatureExport"), std::string::npos);
    EXPECT_EQ(binding.SignFw(&args), 0x4004);
}

TEST_F(SignVerifyBinding, Free_resets_handle_and_functions) {
    ASSERT_EQ(Load(ModulePath("sign_full")), 1);
    EXPECT_TRUE(IsLoaded(ModulePath("sign_full")));
    binding.FreeSignVerfiyDllFile();
    EXPECT_FALSE(IsLoaded(ModulePath("sign_full")));
    EXPECT_EQ(binding.SignFw(&args), 0x4004);
    EXPECT_EQ(binding.VerifySignature(&args, nullptr), 0x4004);
    EXPECT_THAT(module.calls, testing::IsEmpty());
}

TEST_F(SignVerifyBinding, Second_load_frees_first_plugin) {
    ASSERT_EQ(Load(ModulePath("sign_full")), 1);
    EXPECT_EQ(Load("/nowhere", "dlopen - "), 0);
    EXPECT_FALSE(IsLoaded(ModulePath("sign_full")));
}

TEST_F(SignVerifyBinding, Init_and_destructor_do_not_close_plugin) {
    ASSERT_EQ(Load(ModulePath("sign_full")), 1);
    binding.Init();
    EXPECT_EQ(binding.SignFw(&args), 0x4004);
    EXPECT_TRUE(IsLoaded(ModulePath("sign_full")));
}

TEST_F(SignVerifyBinding, LoadSignVerfiyDll_uses_last_path_argument_only) {
    const std::string path = ModulePath("sign_full");
    CCpNxString full(std::wstring(path.begin(), path.end()).c_str());
    EXPECT_EQ(LoadSignVerfiyDll(binding, CCpNxString(L"/no/such/folder/"), full), 0);
    EXPECT_EQ(binding.SignFw(&args), 0x4002);
    CCpNxString missing(L"libSignVerify.missing");
    EXPECT_EQ(OutputOf([&] {
                  EXPECT_EQ(LoadSignVerfiyDll(binding, CCpNxString(L"/"), missing), 0x4004);
              }).substr(0, 9),
              "dlopen - ");
}
