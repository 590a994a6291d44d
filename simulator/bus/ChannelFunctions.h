#ifndef SCALER_ISP_SIMULATOR_BUS_CHANNEL_FUNCTIONS_H
#define SCALER_ISP_SIMULATOR_BUS_CHANNEL_FUNCTIONS_H

#include "bus/BusSession.h"
#include "scaler_isp/abi/CommTypes.h"

namespace virtual_scaler {

/// Channel, slave addresses, modes and speeds: there is one channel, and values that are set are
/// stored and returned. A function without a result fails by throwing Failure.
class ChannelFunctions {
  public:
    explicit ChannelFunctions(BusSession &session) : m_session(session) {}

    void Initiallize();
    void InitialDev();
    unsigned short GetCommCount();
    STRUCT_ENUM_COMM_ID GetCommID();
    void GetCommName(wchar_t *name, unsigned short index);
    void GetAllCommName(wchar_t (*names)[256]);
    void GetCommFile(STRUCT_COMM_INFO *info);
    void SetCommByIndex(unsigned short index);
    void SetCommByID(STRUCT_ENUM_COMM_ID id);
    STRUCT_ENUM_SPECIAL_COMM_TYPE GetSpecialCommType();
    void SetSpecialCommType(STRUCT_ENUM_SPECIAL_COMM_TYPE type);

    void SetDebugSlave(unsigned char slave);
    void SetIspSlave(unsigned char slave);
    void SetIspContinuousSlave(unsigned char slave);
    unsigned char GetDebugSlave();
    unsigned char GetIspSlave();
    unsigned char GetIspContinuousSlave();
    void AutoDetectSlaveAddr();

    void SetDebugMode(STRUCT_ENUM_DEBUG_TYPE mode);
    STRUCT_ENUM_DEBUG_TYPE GetDebugMode();
    unsigned short GetI2CPageLength();
    unsigned short GetNativePageLength();
    void AdjustOption();
    void SetI2CSpeed(unsigned short speed);
    unsigned short GetI2CSpeed();
    void SetAuxMode(STRUCT_AUXMODE_STRUCT mode);
    void SetWaitingMode(STRUCT_WAITING_STRUCT mode);
    STRUCT_WAITING_STRUCT GetWaitingMode();
    unsigned int GetSMBUSDataType();
    void SetSMBUSDataType(unsigned int type);
    void SetFTDIGetAck(int ack);
    unsigned int GetFTDIGetAckStatus();
    void SetI2CDebugPort(int port, int mode);
    void SetI2CoverAUXDebugPort();
    void SetSettingFilePath(wchar_t *path);
    void SetCmdLine(wchar_t *commandLine);

  private:
    template <class Value> Value Get(const char *name) {
        return static_cast<Value>(m_session.state.Number(name));
    }
    template <class Value> void Set(const char *name, Value value) {
        m_session.state.Number(name) = static_cast<std::uint32_t>(value);
    }

    BusSession &m_session;
};

} // namespace virtual_scaler

#endif
