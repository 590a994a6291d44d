// What the four bindings ask of the loader, and in which order.

#include <gmock/gmock.h>

#include "comm/CommSymbols.h"
#include "comm/LibraryCopy.h"
#include "modules/ModuleCalls.h"
#include "scaler_isp/plugins/CCpIsp.h"
#include "scaler_isp/plugins/CCpSignVerify.h"
#include "scaler_isp/plugins/CNxComm.h"
#include "scaler_isp/plugins/DeviceLibrary.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::UnorderedElementsAreArray;
using Names = std::vector<std::string>;

/// Loads libraries that tell when they are opened and closed, and what is looked up.
class LookUpOrder : public testing::Test {
  protected:
    ~LookUpOrder() override {
        comm.FreeCommDllFile();
        isp.FreeIspDllFile();
        sign.FreeSignVerfiyDllFile();
        nxdFreeDeviceDllFile();
    }

    /// What the libraries told during a load. Its messages are other tests' business.
    template <class Binding> Names ToldBy(Binding &binding, const std::string &path) {
        module.calls.clear();
        std::wstring wide(path.begin(), path.end());
        OutputOf([&] { LoadInto(binding, wide.data()); });
        return module.Names();
    }
    std::string Without(const std::string &library, const std::string &function) {
        return m_folder.Write("without_" + function + ".so",
                              WithoutFunctions(FileBytes(library), {function}));
    }

    static void LoadInto(CNxComm &comm, wchar_t *path) {
        comm.LoadCommDllFile(path);
    }
    static void LoadInto(CCpIsp &isp, wchar_t *path) {
        isp.LoadIspDllFile(path);
    }
    static void LoadInto(CCpSignVerify &sign, wchar_t *path) {
        sign.LoadSignVerfiyDllFile(path);
    }
    static void LoadInto(int (*&load)(wchar_t *), wchar_t *path) {
        load(path);
    }

    ModuleCalls module;
    TempFolder m_folder;
    CNxComm comm;
    CCpIsp isp;
    CCpSignVerify sign;
    int (*device)(wchar_t *) = nxdLoadDeviceDllFile;
};

const char *const kDeviceSymbols[] = {"InitialDev",
                                      "ReleaseDev",
                                      "GetCommID",
                                      "GetCommName",
                                      "GetI2CPageLength",
                                      "GetNativePageLength",
                                      "I2CWrite",
                                      "I2CRead",
                                      "I2CWriteByte",
                                      "I2CCurrentRead",
                                      "I2CWordWrite",
                                      "I2CWordRead",
                                      "AdjustOption",
                                      "SetI2CSpeed",
                                      "GetI2CSpeed",
                                      "SetAuxMode",
                                      "SetWaitingMode",
                                      "GetWaitingMode",
                                      "NativeWrite",
                                      "NativeRead",
                                      "SetSettingFilePath",
                                      "GetDeviceHandler",
                                      "ResetFirmware",
                                      "GetSMBUSDataType",
                                      "SetSMBUSDataType",
                                      "GetDeviceCount",
                                      "RemoveDevice",
                                      "SetFTDIGetAck",
                                      "GetFTDIGetAckStatus",
                                      "GetUsbDevicePath",
                                      "SelectUsbByDevicePath",
                                      "SelectUsbByIndex",
                                      "SetCmdLine",
                                      "I2CWriteSegment",
                                      "I2CReadSegment"};

TEST_F(LookUpOrder, Communication_library_looks_up_required_symbols_first) {
    Names told = ToldBy(comm, LOOK_UPS_FILE);
    Names required = {"opened"};
    for (const std::string &symbol : CalledCommSymbols()) {
        required.push_back(symbol);
        if (symbol == "DDCCIRead") {
            required.push_back(symbol); // twice in a row
        }
    }
    // The place of the one that no method calls is free among these.
    const auto uncalled = std::find(told.begin(), told.end(), kUncalledCommSymbol);
    ASSERT_LE(uncalled - told.begin(), static_cast<std::ptrdiff_t>(required.size()));
    told.erase(uncalled);
    ASSERT_EQ(told.size(), required.size() + 12);
    const auto optional = told.begin() + static_cast<std::ptrdiff_t>(required.size());
    EXPECT_THAT(Names(told.begin(), optional), ElementsAreArray(required));
    EXPECT_THAT(Names(optional, told.end()), UnorderedElementsAreArray(kOptionalCommSymbols));
}

TEST_F(LookUpOrder, Isp_plugin_looks_up_functions_in_order) {
    EXPECT_THAT(ToldBy(isp, LOOK_UPS_FILE),
                ElementsAre("opened", "IspFlash", "SetCommInterface", "RecordFWVersion",
                            "GetKeyFromFlash", "SetUIFunction", "DumpFlash",
                            "GetUserDefinedInfoFromDDCCI", "IspEeprom", "EnterISPModeExport",
                            "ResetMCUExport", "GetScalerType"));
}

TEST_F(LookUpOrder, Sign_plugin_looks_up_verify_function_first) {
    EXPECT_THAT(ToldBy(sign, LOOK_UPS_FILE),
                ElementsAre("opened", "VerifySignatureExport", "SignFwExport"));
}

TEST_F(LookUpOrder, Device_library_looks_up_37_functions_in_order) {
    const Names told = ToldBy(device, DEVICE_LOOK_UPS_FILE);
    Names required = {"opened"};
    required.insert(required.end(), std::begin(kDeviceSymbols), std::end(kDeviceSymbols));
    ASSERT_EQ(told.size(), 38U);
    EXPECT_THAT(Names(told.begin(), told.begin() + 36), ElementsAreArray(required));
    EXPECT_THAT(Names(told.begin() + 36, told.end()),
                testing::UnorderedElementsAre("SendUsbPacket", "ReceiveUsbPacket"));
}

TEST_F(LookUpOrder, First_missing_function_ends_load) {
    EXPECT_THAT(ToldBy(comm, Without(LOOK_UPS_FILE, "GetCommName")),
                ElementsAre("opened", "Initiallize", "GetCommCount", "GetCommID", "closed"));
    EXPECT_THAT(ToldBy(isp, Without(LOOK_UPS_FILE, "RecordFWVersion")),
                ElementsAre("opened", "IspFlash", "SetCommInterface", "closed"));
    EXPECT_THAT(ToldBy(sign, Without(LOOK_UPS_FILE, "VerifySignatureExport")),
                ElementsAre("opened", "closed"));
    EXPECT_THAT(ToldBy(sign, Without(LOOK_UPS_FILE, "SignFwExport")),
                ElementsAre("opened", "VerifySignatureExport", "closed"));
    EXPECT_THAT(ToldBy(device, Without(DEVICE_LOOK_UPS_FILE, "GetCommID")),
                ElementsAre("opened", "InitialDev", "ReleaseDev", "closed"));
}

TEST_F(LookUpOrder, Second_load_closes_first_library_before_opening) {
    const std::string other = m_folder.Write("other.so", FileBytes(LOOK_UPS_FILE));
    const std::string otherDevice = m_folder.Write("device.so", FileBytes(DEVICE_LOOK_UPS_FILE));
    const auto expectReopened = [&](auto &binding, const std::string &first,
                                    const std::string &second) {
        EXPECT_EQ(ToldBy(binding, first).at(0), "opened");
        for (const std::string &path : {second, second}) {
            const Names told = ToldBy(binding, path);
            ASSERT_GT(told.size(), 2U);
            EXPECT_EQ(told[0], "closed");
            EXPECT_EQ(told[1], "opened");
        }
    };
    expectReopened(comm, LOOK_UPS_FILE, other);
    comm.FreeCommDllFile();
    expectReopened(isp, LOOK_UPS_FILE, other);
    isp.FreeIspDllFile();
    expectReopened(sign, LOOK_UPS_FILE, other);
    expectReopened(device, DEVICE_LOOK_UPS_FILE, otherDevice);
}

TEST_F(LookUpOrder, Symbols_of_loaded_library_are_not_global) {
    ToldBy(isp, LOOK_UPS_FILE);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "IspFlash"), nullptr);
    ToldBy(sign, LOOK_UPS_FILE);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "SignFwExport"), nullptr);
    ToldBy(comm, LOOK_UPS_FILE);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "ScalerRun"), nullptr);
    ToldBy(device, DEVICE_LOOK_UPS_FILE);
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "InitialDev"), nullptr);
}

} // namespace
