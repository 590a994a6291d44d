#include "bus/DeviceFunctions.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <cwchar>
#include <string_view>

#include "bus/BusStatus.h"
#include "common/Files.h"
#include "common/Text.h"
#include "device/Failure.h"
#include "device/MemoryFile.h"

namespace virtual_scaler {
namespace {

constexpr std::uint32_t kFlashBytes = 256 * 65536;
constexpr const wchar_t *kUsbPath = L"virtual-scaler/usb/0";
constexpr std::string_view kCustomerId = "VIRTUAL";

// Its address is the device's handle: opaque, but not null, because callers check for null.
int g_handle = 0;

[[noreturn]] void NoSuchUsbDevice() {
    throw Failure{VIRTUAL_BUS_NO_SUCH_DEVICE, "There is one USB device, with the index 0"};
}

std::string UsbMailbox(unsigned request, unsigned value, unsigned index) {
    return Format("usb 0x%02X 0x%04X 0x%04X", request, value, index);
}

std::string NativeMailbox(int target) {
    return Format("native 0x%X", static_cast<unsigned>(target));
}

} // namespace

void DeviceFunctions::SetMode(const char *mode) {
    m_session.RequirePresent();
    const std::string text = std::string(mode) + '\n';
    if (!ReplaceFile(m_session.Directory() + "mode.txt", text.data(), text.size())) {
        throw Failure{VIRTUAL_ISP_WRITE_FAILED,
                      Format("The device's mode cannot be written: %s", ErrorText(errno))};
    }
}

void DeviceFunctions::StoreMailbox(const std::string &mailbox, u16 length, const void *data) {
    m_session.RequirePresent();
    const auto *bytes = static_cast<const u8 *>(data);
    m_session.state.mailboxes[mailbox].assign(bytes, bytes + length);
}

void DeviceFunctions::ReadMailbox(const std::string &mailbox, u16 length, void *data) {
    m_session.RequirePresent();
    std::vector<std::uint8_t> bytes = m_session.state.mailboxes[mailbox];
    bytes.resize(length);
    std::copy(bytes.begin(), bytes.end(), static_cast<u8 *>(data));
}

void DeviceFunctions::ScalerStop() {
    m_session.RequirePresent();
    m_session.state.Number("scaler_stopped") = 1;
}

void DeviceFunctions::ScalerRun() {
    m_session.RequirePresent();
    m_session.state.Number("scaler_stopped") = 0;
}

void DeviceFunctions::ReleaseDev() {}

void *DeviceFunctions::GetDeviceHandler() {
    return &g_handle;
}

void DeviceFunctions::ResetFirmware() {
    SetMode("normal");
    m_session.state.ResetRegisters();
}

void DeviceFunctions::EnterIspMode(u16) {
    SetMode("isp");
}

void DeviceFunctions::AutoEnterIspMode(u16) {
    SetMode("isp");
}

unsigned int DeviceFunctions::GetDeviceCount() {
    return m_session.state.Number("removed") == 0 ? 1 : 0;
}

void DeviceFunctions::RemoveDevice() {
    m_session.state.Number("removed") = 1;
}

unsigned int DeviceFunctions::NeedSetMcuDefault() {
    return 0;
}

void DeviceFunctions::NativeWrite(int target, u16 length, u8 *data) {
    StoreMailbox(NativeMailbox(target), length, data);
}

void DeviceFunctions::NativeRead(int target, u16 length, u8 *data) {
    ReadMailbox(NativeMailbox(target), length, data);
}

void DeviceFunctions::WriteFlashData(unsigned int addr, u16 length, u8 *data) {
    m_session.RequirePresent();
    MemoryFile flash(m_session.Directory() + "flash.bin", "flash", kFlashBytes);
    flash.RequireInside(addr, length);
    flash.Erase(addr, length);
    flash.Write(addr, data, length);
}

void DeviceFunctions::ReadFlashData(unsigned int addr, u16 length, u8 *data) {
    m_session.RequirePresent();
    const MemoryFile flash(m_session.Directory() + "flash.bin", "flash", kFlashBytes);
    const Bytes bytes = flash.Read(addr, length);
    std::copy(bytes.begin(), bytes.end(), data);
}

void DeviceFunctions::ConfigProgramFlash(u8 config) {
    m_session.state.Number("flash_config") = config;
}

void DeviceFunctions::GetUsbDevicePath(u8 index, wchar_t *path) {
    SelectUsbByIndex(index);
    std::wmemcpy(path, kUsbPath, std::wcslen(kUsbPath) + 1);
}

void DeviceFunctions::SelectUsbByDevicePath(wchar_t *path) {
    if (std::wcscmp(path, kUsbPath) != 0) {
        NoSuchUsbDevice();
    }
}

void DeviceFunctions::SelectUsbByIndex(u8 index) {
    if (index != 0) {
        NoSuchUsbDevice();
    }
}

void DeviceFunctions::SendUsbPacket(u8 request, u16 value, u16 index, u16 length, void *data) {
    StoreMailbox(UsbMailbox(request, value, index), length, data);
}

void DeviceFunctions::ReceiveUsbPacket(u8 request, u16 value, u16 index, u16 length, void *data) {
    ReadMailbox(UsbMailbox(request, value, index), length, data);
}

void DeviceFunctions::SetNewVexmiraUSBMode(STRUCT_ENUM_NEW_VEXMIRAUSB_MODE mode) {
    m_session.state.Number("usb_mode") = mode;
}

void DeviceFunctions::AuxSnifferStart() {
    m_session.RequirePresent();
    m_session.state.Number("sniffer_started") = 1;
}

// The virtual AUX channel is silent.
void DeviceFunctions::ReadAuxSniffer(u16 length, u8 *data) {
    m_session.RequirePresent();
    if (m_session.state.Number("sniffer_started") == 0) {
        throw Failure{VIRTUAL_BUS_NOT_STARTED, "AuxSnifferStart was not called"};
    }
    std::memset(data, 0, length);
}

void DeviceFunctions::GetAuxSnifferConfigPara(u16 &first, u16 &second) {
    first = 0;
    second = 0;
}

void DeviceFunctions::CompleteIspFlowInISPBoard() {
    SetMode("normal");
}

void DeviceFunctions::CheckSnifferBoardCustomerId(u8 *id, u8 length) {
    if (length != kCustomerId.size() || std::memcmp(id, kCustomerId.data(), length) != 0) {
        throw Failure{VIRTUAL_BUS_NO_SUCH_DEVICE, "The customer of the virtual board is VIRTUAL"};
    }
}

} // namespace virtual_scaler
