#include "bus/ChannelFunctions.h"

#include <cstring>
#include <cwchar>

#include "bus/BusStatus.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {
namespace {

constexpr std::size_t kNameChars = 256;
constexpr const wchar_t *kChannel = L"Virtual bus";

void CopyName(wchar_t *name) {
    std::wmemset(name, 0, kNameChars);
    std::wmemcpy(name, kChannel, std::wcslen(kChannel));
}

void RequireFirst(unsigned index) {
    if (index != 0) {
        throw Failure{VIRTUAL_BUS_NO_SUCH_DEVICE, Format("There is no channel %u", index)};
    }
}

} // namespace

void ChannelFunctions::Initiallize() {
    BusSession::RestartBusyReads();
    Set("removed", 0);
}

void ChannelFunctions::InitialDev() {
    Initiallize();
}

unsigned short ChannelFunctions::GetCommCount() {
    return 1;
}

STRUCT_ENUM_COMM_ID ChannelFunctions::GetCommID() {
    return Get<STRUCT_ENUM_COMM_ID>("comm_id");
}

void ChannelFunctions::GetCommName(wchar_t *name, unsigned short index) {
    RequireFirst(index);
    CopyName(name);
}

void ChannelFunctions::GetAllCommName(wchar_t (*names)[256]) {
    CopyName(names[0]);
}

void ChannelFunctions::GetCommFile(STRUCT_COMM_INFO *) {
    throw Failure{VIRTUAL_BUS_NOT_OFFERED, "The virtual bus has no channel file"};
}

void ChannelFunctions::SetCommByIndex(unsigned short index) {
    RequireFirst(index);
}

void ChannelFunctions::SetCommByID(STRUCT_ENUM_COMM_ID id) {
    Set("comm_id", id);
}

STRUCT_ENUM_SPECIAL_COMM_TYPE ChannelFunctions::GetSpecialCommType() {
    return Get<STRUCT_ENUM_SPECIAL_COMM_TYPE>("special_comm_type");
}

void ChannelFunctions::SetSpecialCommType(STRUCT_ENUM_SPECIAL_COMM_TYPE type) {
    Set("special_comm_type", type);
}

void ChannelFunctions::SetDebugSlave(unsigned char slave) {
    Set("debug_slave", slave);
}

void ChannelFunctions::SetIspSlave(unsigned char slave) {
    Set("isp_slave", slave);
}

void ChannelFunctions::SetIspContinuousSlave(unsigned char slave) {
    Set("isp_continuous_slave", slave);
}

unsigned char ChannelFunctions::GetDebugSlave() {
    return Get<unsigned char>("debug_slave");
}

unsigned char ChannelFunctions::GetIspSlave() {
    return Get<unsigned char>("isp_slave");
}

unsigned char ChannelFunctions::GetIspContinuousSlave() {
    return Get<unsigned char>("isp_continuous_slave");
}

void ChannelFunctions::AutoDetectSlaveAddr() {
    m_session.RequirePresent();
    Set("debug_slave", BusState().Number("debug_slave"));
}

void ChannelFunctions::SetDebugMode(STRUCT_ENUM_DEBUG_TYPE mode) {
    Set("debug_mode", mode);
}

STRUCT_ENUM_DEBUG_TYPE ChannelFunctions::GetDebugMode() {
    return Get<STRUCT_ENUM_DEBUG_TYPE>("debug_mode");
}

unsigned short ChannelFunctions::GetI2CPageLength() {
    return 64;
}

unsigned short ChannelFunctions::GetNativePageLength() {
    return 64;
}

void ChannelFunctions::AdjustOption() {}

void ChannelFunctions::SetI2CSpeed(unsigned short speed) {
    Set("i2c_speed", speed);
}

unsigned short ChannelFunctions::GetI2CSpeed() {
    return Get<unsigned short>("i2c_speed");
}

void ChannelFunctions::SetAuxMode(STRUCT_AUXMODE_STRUCT mode) {
    std::vector<std::uint8_t> bytes(sizeof mode);
    std::memcpy(bytes.data(), &mode, sizeof mode);
    m_session.state.mailboxes["aux_mode"] = bytes;
}

void ChannelFunctions::SetWaitingMode(STRUCT_WAITING_STRUCT mode) {
    Set("waiting_0", mode.ulWords[0]);
    Set("waiting_1", mode.ulWords[1]);
}

STRUCT_WAITING_STRUCT ChannelFunctions::GetWaitingMode() {
    return {{Get<std::uint32_t>("waiting_0"), Get<std::uint32_t>("waiting_1")}};
}

unsigned int ChannelFunctions::GetSMBUSDataType() {
    return Get<unsigned int>("smbus_data_type");
}

void ChannelFunctions::SetSMBUSDataType(unsigned int type) {
    Set("smbus_data_type", type);
}

void ChannelFunctions::SetFTDIGetAck(int ack) {
    Set("ftdi_get_ack", ack);
}

unsigned int ChannelFunctions::GetFTDIGetAckStatus() {
    return Get<unsigned int>("ftdi_get_ack");
}

void ChannelFunctions::SetI2CDebugPort(int port, int mode) {
    Set("debug_port", port);
    Set("debug_port_mode", mode);
    Set("debug_port_over_aux", 0);
}

void ChannelFunctions::SetI2CoverAUXDebugPort() {
    Set("debug_port_over_aux", 1);
}

// Only the journal records the two strings.
void ChannelFunctions::SetSettingFilePath(wchar_t *) {}

void ChannelFunctions::SetCmdLine(wchar_t *) {}

} // namespace virtual_scaler
