// Loading when memory runs out.

#include <functional>

#include <gmock/gmock.h>

#include "comm/LibraryCopy.h"
#include "modules/ModuleCalls.h"
#include "scaler_isp/plugins/CCpIsp.h"
#include "scaler_isp/plugins/CCpSignVerify.h"
#include "scaler_isp/plugins/CNxComm.h"
#include "scaler_isp/plugins/DeviceLibrary.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "support/TestHeap.h"

namespace {

class NoMemory : public testing::Test {
  protected:
    /// Loads with room for more and more objects, until more would not change anything.
    void Try(const std::string &path, int expected, const std::function<int(wchar_t *)> &load,
             const std::function<void()> &expectUnloaded) {
        for (int objects = 0; objects < 20; ++objects) {
            std::wstring wide(path.begin(), path.end());
            int result = -1;
            CapturedOutput error(CapturedOutput::Stream::Error);
            OutputOf([&] {
                const AllocationLimit memory(objects);
                EXPECT_NO_THROW(result = load(wide.data()));
            });
            if (result != 1) {
                EXPECT_FALSE(IsLoaded(path)) << objects;
                expectUnloaded();
            }
            m_last = result;
        }
        EXPECT_EQ(m_last, expected);
    }

    /// A module that no other test has left in the process.
    std::string Own(const std::string &module) {
        return m_folder.Write(module, FileBytes(ModulePath(module)));
    }
    std::string Without(const std::string &library, const std::string &function) {
        return m_folder.Write("without.so", WithoutFunctions(FileBytes(library), {function}));
    }

    TempFolder m_folder;
    int m_last = -1;
};

TEST_F(NoMemory, Failed_allocation_never_leaves_isp_plugin_half_loaded) {
    CCpIsp isp;
    const auto load = [&](wchar_t *path) { return isp.LoadIspDllFile(path); };
    const auto expectUnloaded = [&] { EXPECT_EQ(isp.IspFlash(nullptr), 6); };
    Try(Own("full"), 1, load, expectUnloaded);
    Try(Own("without_DumpFlash"), 0, load, expectUnloaded);
    isp.FreeIspDllFile();
}

TEST_F(NoMemory, Failed_allocation_never_leaves_sign_plugin_half_loaded) {
    CCpSignVerify sign;
    const auto load = [&](wchar_t *path) { return sign.LoadSignVerfiyDllFile(path); };
    const auto expectUnloaded = [&] {
        EXPECT_EQ(sign.SignFw(nullptr), 0x4004);
        EXPECT_EQ(sign.VerifySignature(nullptr, nullptr), 0x4004);
    };
    Try(Own("sign_full"), 1, load, expectUnloaded);
    Try(Own("verify_only"), 0, load, expectUnloaded);
    sign.FreeSignVerfiyDllFile();
}

TEST_F(NoMemory, Failed_allocation_never_leaves_comm_library_half_loaded) {
    CNxComm comm;
    const auto load = [&](wchar_t *path) { return comm.LoadCommDllFile(path); };
    const auto expectUnloaded = [&] { EXPECT_EQ(comm.Initiallize(), 6U); };
    Try(COMM_RECORDER_FILE, 1, load, expectUnloaded);
    Try(Without(COMM_RECORDER_FILE, "ReadReg"), 0, load, expectUnloaded);
    comm.FreeCommDllFile();
}

TEST_F(NoMemory, Failed_allocation_never_leaves_device_library_half_loaded) {
    const auto expectUnloaded = [] { EXPECT_EQ(nxdInitialDev, nullptr); };
    Try(DEVICE_STUB_FILE, 1, nxdLoadDeviceDllFile, expectUnloaded);
    Try(Without(DEVICE_STUB_FILE, "ReleaseDev"), 5, nxdLoadDeviceDllFile, expectUnloaded);
    nxdFreeDeviceDllFile();
}

} // namespace
