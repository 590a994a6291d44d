// The device library: its 79 pointers, loading and freeing.

#include "scaler_isp/plugins/DeviceLibrary.h"

#include <cstring>
#include <map>
#include <type_traits>
#include <typeindex>

#include <gmock/gmock.h>

#include "comm/LibraryCopy.h"
#include "scaler_isp/abi/CommTypes.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "support/TestLocale.h"

namespace {

struct Pointer {
    std::string name;
    std::string symbol;
    void *slot;
    std::type_index type;
};

#define POINTER(NAME, SYMBOL)                                                                      \
    { "nxd" #NAME, SYMBOL, &nxd##NAME, typeid(nxd##NAME) }

const Pointer kLoaded[] = {
    // required, in the order of the look-up
    POINTER(InitialDev, "InitialDev"),
    POINTER(ReleaseDev, "ReleaseDev"),
    POINTER(GetCommID, "GetCommID"),
    POINTER(GetCommName, "GetCommName"),
    POINTER(GetI2CPageLength, "GetI2CPageLength"),
    POINTER(GetNativePageLength, "GetNativePageLength"),
    POINTER(I2CWrite, "I2CWrite"),
    POINTER(I2CRead, "I2CRead"),
    POINTER(I2CWriteByte, "I2CWriteByte"),
    POINTER(I2CCurrentRead, "I2CCurrentRead"),
    POINTER(I2CWordWrite, "I2CWordWrite"),
    POINTER(I2CWordRead, "I2CWordRead"),
    POINTER(AdjustOption, "AdjustOption"),
    POINTER(SetI2CSpeed, "SetI2CSpeed"),
    POINTER(GetI2CSpeed, "GetI2CSpeed"),
    POINTER(SetAuxMode, "SetAuxMode"),
    POINTER(SetUsbWaitingMode, "SetWaitingMode"),
    POINTER(GetWaitingMode, "GetWaitingMode"),
    POINTER(NativeWrite, "NativeWrite"),
    POINTER(NativeRead, "NativeRead"),
    POINTER(SetConfigFilePath, "SetSettingFilePath"),
    POINTER(GetDeviceHandler, "GetDeviceHandler"),
    POINTER(ResetFirmware, "ResetFirmware"),
    POINTER(GetSMBUSDataType, "GetSMBUSDataType"),
    POINTER(SetSMBUSDataType, "SetSMBUSDataType"),
    POINTER(GetDeviceCount, "GetDeviceCount"),
    POINTER(RemoveDevice, "RemoveDevice"),
    POINTER(SetFTDIGetAck, "SetFTDIGetAck"),
    POINTER(GetFTDIGetAckStatus, "GetFTDIGetAckStatus"),
    POINTER(GetUsbDevicePath, "GetUsbDevicePath"),
    POINTER(SelectUsbByDevicePath, "SelectUsbByDevicePath"),
    POINTER(SelectUsbByIndex, "SelectUsbByIndex"),
    POINTER(SetCmdLine, "SetCmdLine"),
    POINTER(I2CWriteSegment, "I2CWriteSegment"),
    POINTER(I2CReadSegment, "I2CReadSegment"),
    // optional
    POINTER(ReceiveUsbPacket, "ReceiveUsbPacket"),
    POINTER(SendUsbPacket, "SendUsbPacket"),
};

const Pointer kNeverLoaded[] = {
    POINTER(SetIDev, "SetIDev"),
    POINTER(ConfigProgramFlash, "ConfigProgramFlash"),
    POINTER(ReadAuxSniffer, "ReadAuxSniffer"),
    POINTER(NeedSetMcuDefault, "NeedSetMcuDefault"),
    POINTER(CompleteIspFlowInISPBoard, "CompleteIspFlowInISPBoard"),
    POINTER(AuxSnifferStart, "AuxSnifferStart"),
    POINTER(GetAuxSnifferConfigPara, "GetAuxSnifferConfigPara"),
    POINTER(SetNewVexmiraUSBMode, "SetNewVexmiraUSBMode"),
    POINTER(SetI2CDebugPort, "SetI2CDebugPort"),
    POINTER(SetI2CoverAUXDebugPort, "SetI2CoverAUXDebugPort"),
    POINTER(I2C2SubWrite, "I2C2SubWrite"),
    POINTER(I2C2SubRead, "I2C2SubRead"),
    POINTER(WriteFlashData, "WriteFlashData"),
    POINTER(ReadFlashData, "ReadFlashData"),
    POINTER(ReadSysDevice, "ReadSysDevice"),
    POINTER(WriteSysDevice, "WriteSysDevice"),
    POINTER(SectorErase, "SectorErase"),
    POINTER(BankErase, "BankErase"),
    POINTER(IspEnable, "IspEnable"),
    POINTER(DebugMessageEventStart, "DebugMessageEventStart"),
    POINTER(DebugMessageEventFinish, "DebugMessageEventFinish"),
    POINTER(DebugMessageStart, "DebugMessageStart"),
    POINTER(DebugMessageEnd, "DebugMessageEnd"),
    POINTER(DebugMessageGetValue, "DebugMessageGetValue"),
    POINTER(DebugMessageGetString, "DebugMessageGetString"),
    POINTER(CheckSnifferBoardCustomerId, "CheckSnifferBoardCustomerId"),
    POINTER(ExtMcuReadByte, "ExtMcuReadByte"),
    POINTER(ExtMcuWriteByte, "ExtMcuWriteByte"),
    POINTER(ExtMcuReadDword, "ExtMcuReadDword"),
    POINTER(ExtMcuWriteDword, "ExtMcuWriteDword"),
    POINTER(GetNewVxUsbDebugMode, "GetNewVxUsbDebugMode"),
    POINTER(SmbusWritePhy, "SmbusWritePhy"),
    POINTER(SmbusReadPhy, "SmbusReadPhy"),
    POINTER(U4SmbusWriteMemory, "U4SmbusWriteMemory"),
    POINTER(U4SmbusReadMemory, "U4SmbusReadMemory"),
    POINTER(SmbusVdCmdEnable, "SmbusVdCmdEnable"),
    POINTER(I2CSlaveWrite, "I2CSlaveWrite"),
    POINTER(I2CSlaveRead, "I2CSlaveRead"),
    POINTER(I2CStretchRead, "I2CStretchRead"),
    POINTER(I2CWordSlaveWrite, "I2CWordSlaveWrite"),
    POINTER(I2CWordSlaveRead, "I2CWordSlaveRead"),
    POINTER(I2CWordStretchRead, "I2CWordStretchRead"),
};

// The types are those of the like-named functions of the communication library.
using Transfer = unsigned int (*)(unsigned char, unsigned char, unsigned short, unsigned char *);
static_assert(std::is_same_v<decltype(nxdI2CWrite), Transfer>);
static_assert(std::is_same_v<decltype(nxdI2CRead), Transfer>);
static_assert(
    std::is_same_v<decltype(nxdSetUsbWaitingMode), unsigned int (*)(STRUCT_WAITING_STRUCT)>);
static_assert(std::is_same_v<decltype(nxdSetConfigFilePath), void (*)(wchar_t *)>);
static_assert(
    std::is_same_v<decltype(nxdSectorErase), unsigned int (*)(unsigned char, unsigned char)>);

/// The types of the communication functions, by the names of their methods.
std::map<std::string, std::type_index> CommTypes() {
    struct Types {
#define COMM_ROW(SLOT, METHOD, SYMBOL, NOT_LOADED_RESULT, ...) using METHOD = __VA_ARGS__;
#include "comm/comm_rows.def"
    };
    return {
#define COMM_ROW(SLOT, METHOD, SYMBOL, NOT_LOADED_RESULT, ...) {#METHOD, typeid(Types::METHOD *)},
#include "comm/comm_rows.def"
    };
}

void *Value(const Pointer &pointer) {
    void *value = nullptr;
    std::memcpy(&value, pointer.slot, sizeof value);
    return value;
}

void Set(const Pointer &pointer, void *value) {
    std::memcpy(pointer.slot, &value, sizeof value);
}

int Load(const std::string &path) {
    return nxdLoadDeviceDllFile(std::wstring(path.begin(), path.end()).data());
}

void ExpectUnloaded() {
    EXPECT_EQ(g_hDeviceDll, nullptr);
    for (const Pointer &pointer : kLoaded) {
        EXPECT_EQ(Value(pointer), nullptr) << pointer.name;
    }
    for (const Pointer &pointer : kNeverLoaded) {
        EXPECT_EQ(Value(pointer), nullptr) << pointer.name;
    }
}

class DeviceLibrary : public testing::Test {
  protected:
    ~DeviceLibrary() override {
        nxdFreeDeviceDllFile();
    }
    std::string Copy(const std::vector<std::string> &without) {
        return m_folder.Write("device.so", WithoutFunctions(FileBytes(DEVICE_STUB_FILE), without));
    }
    TempFolder m_folder;
};

TEST_F(DeviceLibrary, All_79_pointers_are_null_before_load) {
    ASSERT_EQ(std::size(kLoaded), 37U);
    ASSERT_EQ(std::size(kNeverLoaded), 42U);
    ExpectUnloaded();
}

TEST_F(DeviceLibrary, Only_the_first_37_pointers_are_ever_set) {
    ASSERT_EQ(Load(DEVICE_STUB_FILE), 1);
    for (const Pointer &pointer : kLoaded) {
        void *symbol = dlsym(g_hDeviceDll, pointer.symbol.c_str());
        EXPECT_NE(symbol, nullptr) << pointer.symbol;
        EXPECT_EQ(Value(pointer), symbol) << pointer.name;
    }
    for (const Pointer &pointer : kNeverLoaded) {
        EXPECT_NE(dlsym(g_hDeviceDll, pointer.symbol.c_str()), nullptr) << pointer.symbol;
        EXPECT_EQ(Value(pointer), nullptr) << pointer.name;
    }
}

TEST_F(DeviceLibrary, Pointer_types_equal_those_of_communication_functions) {
    const auto types = CommTypes();
    std::size_t opaque = 0;
    const auto check = [&](const Pointer &pointer) {
        const std::string name = pointer.name.substr(3);
        const auto same = types.find(name == "SetUsbWaitingMode" ? "SetWaitingMode" : name);
        const bool found = same != types.end();
        const std::type_index none = typeid(unsigned int (*)());
        EXPECT_EQ(pointer.type, found ? same->second : none) << pointer.name;
        opaque += found ? 0 : 1;
    };
    for (const Pointer &pointer : kLoaded) {
        check(pointer);
    }
    for (const Pointer &pointer : kNeverLoaded) {
        check(pointer);
    }
    EXPECT_EQ(opaque, 13U);
}

TEST_F(DeviceLibrary, Free_clears_37_pointers_and_closes) {
    ASSERT_EQ(Load(DEVICE_STUB_FILE), 1);
    nxdFreeDeviceDllFile();
    ExpectUnloaded();
    EXPECT_FALSE(IsLoaded(DEVICE_STUB_FILE));
}

TEST_F(DeviceLibrary, Neither_load_nor_free_touches_other_42_pointers) {
    int marks[42] = {};
    for (std::size_t i = 0; i < 42; ++i) {
        Set(kNeverLoaded[i], &marks[i]);
    }
    EXPECT_EQ(Load(DEVICE_STUB_FILE), 1);
    nxdFreeDeviceDllFile();
    OutputOf([&] { EXPECT_EQ(Load(Copy({"I2CReadSegment"})), 0); });
    for (std::size_t i = 0; i < 42; ++i) {
        EXPECT_EQ(Value(kNeverLoaded[i]), &marks[i]) << kNeverLoaded[i].name;
        Set(kNeverLoaded[i], nullptr);
    }
}

TEST_F(DeviceLibrary, Free_without_library_keeps_pointers_set_by_caller) {
    int mark = 0;
    Set(kLoaded[0], &mark);
    nxdFreeDeviceDllFile();
    EXPECT_EQ(Value(kLoaded[0]), &mark);
    Set(kLoaded[0], nullptr);
}

TEST_F(DeviceLibrary, Missing_InitialDev_or_ReleaseDev_returns_5) {
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(Load(Copy({"InitialDev"})), 5); }), "nxdInitialDev Fail\n");
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(Load(Copy({"ReleaseDev"})), 5); }), "nxdReleaseDev Fail\n");
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(Load(Copy({"GetCommID"})), 0); }), "nxdGetCommID Fail\n");
}

TEST_F(DeviceLibrary, Each_of_35_required_functions_names_its_pointer) {
    for (std::size_t i = 0; i < 35; ++i) {
        const Pointer &pointer = kLoaded[i];
        const std::string path = Copy({pointer.symbol});
        CapturedOutput output(CapturedOutput::Stream::Output);
        CapturedOutput error(CapturedOutput::Stream::Error);
        EXPECT_EQ(Load(path), i < 2 ? 5 : 0) << pointer.name;
        EXPECT_EQ(error.Take(), "") << pointer.name;
        EXPECT_EQ(output.Take(), pointer.name + " Fail\n");
        ExpectUnloaded();
        EXPECT_FALSE(IsLoaded(path)) << pointer.name;
    }
}

TEST_F(DeviceLibrary, Two_pointers_have_names_other_than_their_symbols) {
    EXPECT_EQ(OutputOf([&] { Load(Copy({"SetWaitingMode"})); }), "nxdSetUsbWaitingMode Fail\n");
    EXPECT_EQ(OutputOf([&] { Load(Copy({"SetSettingFilePath"})); }), "nxdSetConfigFilePath Fail\n");
}

TEST_F(DeviceLibrary, First_missing_function_in_lookup_order_is_reported) {
    std::vector<std::string> missing;
    for (std::size_t i = 35; i-- > 0;) {
        missing.push_back(kLoaded[i].symbol);
        EXPECT_EQ(OutputOf([&] { Load(Copy(missing)); }), kLoaded[i].name + " Fail\n");
    }
}

TEST_F(DeviceLibrary, Both_packet_functions_may_be_missing) {
    EXPECT_EQ(OutputOf([&] {
                  EXPECT_EQ(Load(Copy({"SendUsbPacket", "ReceiveUsbPacket"})), 1);
              }),
              "");
    EXPECT_EQ(nxdSendUsbPacket, nullptr);
    EXPECT_EQ(nxdReceiveUsbPacket, nullptr);
    EXPECT_NE(nxdI2CReadSegment, nullptr);
}

TEST_F(DeviceLibrary, Either_packet_function_may_be_missing) {
    EXPECT_EQ(Load(Copy({"SendUsbPacket"})), 1);
    EXPECT_EQ(nxdSendUsbPacket, nullptr);
    EXPECT_NE(nxdReceiveUsbPacket, nullptr);
    EXPECT_EQ(Load(DEVICE_STUB_FILE), 1);
    EXPECT_NE(nxdSendUsbPacket, nullptr);
}

TEST_F(DeviceLibrary, Missing_path_returns_5_and_prints_to_standard_error_only) {
    ASSERT_EQ(Load(DEVICE_STUB_FILE), 1);
    const std::string path = m_folder.Path("none.so");
    std::string error;
    EXPECT_EQ(OutputOf([&] { error = ErrorOutputOf([&] { EXPECT_EQ(Load(path), 5); }); }), "");
    EXPECT_EQ(error, "Failed to open libaray " + path + " error:" + path +
                         ": cannot open shared object file: No such file or directory\n");
    ExpectUnloaded();
    EXPECT_FALSE(IsLoaded(DEVICE_STUB_FILE));
}

TEST_F(DeviceLibrary, Empty_path_returns_5_and_never_opens_main_program) {
    const auto message =
        testing::AllOf(testing::StartsWith("Failed to open libaray  error:"),
                       testing::Not(testing::EndsWith("error:\n")), testing::EndsWith("\n"));
    EXPECT_THAT(ErrorOutputOf([&] { EXPECT_EQ(Load(""), 5); }), message);
    EXPECT_THAT(ErrorOutputOf([&] { EXPECT_EQ(nxdLoadDeviceDllFile(nullptr), 5); }), message);
    EXPECT_EQ(g_hDeviceDll, nullptr);
}

TEST_F(DeviceLibrary, Path_is_converted_to_encoding_of_environment) {
    if (!HasTestLocale("de_DE.ISO-8859-1")) {
        GTEST_SKIP() << "the locale de_DE.ISO-8859-1 was not made";
    }
    const EnvironmentLocaleGuard latin("de_DE.ISO-8859-1");
    m_folder.Write("d\xFCnn.so", FileBytes(DEVICE_STUB_FILE));
    std::wstring path(m_folder.Path().begin(), m_folder.Path().end());
    path += L"d\u00FCnn.so";
    EXPECT_EQ(nxdLoadDeviceDllFile(path.data()), 1);
}

TEST_F(DeviceLibrary, Second_load_closes_first_library) {
    const std::string first = Copy({});
    ASSERT_EQ(Load(first), 1);
    ASSERT_EQ(Load(DEVICE_STUB_FILE), 1);
    EXPECT_FALSE(IsLoaded(first));
    EXPECT_TRUE(IsLoaded(DEVICE_STUB_FILE));
    ASSERT_EQ(Load(DEVICE_STUB_FILE), 1);
    nxdFreeDeviceDllFile();
    EXPECT_FALSE(IsLoaded(DEVICE_STUB_FILE)) << "the same path was opened twice";
}

} // namespace
