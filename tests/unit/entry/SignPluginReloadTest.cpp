#include <dlfcn.h>

#include "RunFlowFixture.h"

/// Runs with a signature plug-in of their own.
class SignPluginReload : public RunFlowTest {
  protected:
    int RunWithOwnPlugin() {
        const std::string name =
            std::filesystem::path(m_path).lexically_relative(ProgramDirectory()).string();
        CCpNxString signName(std::wstring(name.begin(), name.end()).c_str());
        CCpNxString ispPath = Below("full");
        return ExecuteProcess(record.get(), signArgs.get(), ispPath, signName, nullptr);
    }

    TempFolder m_folder;
    std::string m_path = m_folder.Path("sign.module");
};

TEST_F(SignPluginReload, Every_run_opens_sign_plugin_and_none_closes_it) {
    std::filesystem::copy_file(ModulePath("sign_full"), m_path);
    Act(1);
    EXPECT_EQ(RunWithOwnPlugin(), 0);
    Act(2);
    EXPECT_EQ(RunWithOwnPlugin(), 0);
    Act(4);
    SignedBySoftware(1);
    EXPECT_EQ(RunWithOwnPlugin(), 0);
    void *plugin = dlopen(m_path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(plugin, nullptr);
    dlclose(plugin); // this test's own
    for (int run = 0; run < 3; ++run) {
        EXPECT_TRUE(IsLoaded(m_path)) << run;
        dlclose(plugin);
    }
    EXPECT_FALSE(IsLoaded(m_path));
}
