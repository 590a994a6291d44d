#ifndef SCALER_ISP_SIMULATOR_BUS_DEVICE_FUNCTIONS_H
#define SCALER_ISP_SIMULATOR_BUS_DEVICE_FUNCTIONS_H

#include "bus/BusSession.h"
#include "scaler_isp/abi/CommTypes.h"

namespace virtual_scaler {

/// Control of the device, its flash, USB, the AUX sniffer and the ISP board. A function without a
/// result fails by throwing Failure.
class DeviceFunctions {
    using u8 = unsigned char;
    using u16 = unsigned short;

  public:
    explicit DeviceFunctions(BusSession &session) : m_session(session) {}

    void ScalerStop();
    void ScalerRun();
    void ReleaseDev();
    void *GetDeviceHandler();
    /// Resets registers and restarts the scaler; settings such as slave addresses are kept.
    void ResetFirmware();
    void EnterIspMode(u16 mode);
    void AutoEnterIspMode(u16 mode);
    unsigned int GetDeviceCount();
    void RemoveDevice();
    unsigned int NeedSetMcuDefault();

    // Data written to a target is read back from it.
    void NativeWrite(int target, u16 length, u8 *data);
    void NativeRead(int target, u16 length, u8 *data);

    // Act on the ISP plug-in's flash.bin; a range is erased before it is written.
    void WriteFlashData(unsigned int addr, u16 length, u8 *data);
    void ReadFlashData(unsigned int addr, u16 length, u8 *data);
    void ConfigProgramFlash(u8 config);

    void GetUsbDevicePath(u8 index, wchar_t *path);
    void SelectUsbByDevicePath(wchar_t *path);
    void SelectUsbByIndex(u8 index);
    // Data sent with a request, value and index is received with the same three.
    void SendUsbPacket(u8 request, u16 value, u16 index, u16 length, void *data);
    void ReceiveUsbPacket(u8 request, u16 value, u16 index, u16 length, void *data);
    void SetNewVexmiraUSBMode(STRUCT_ENUM_NEW_VEXMIRAUSB_MODE mode);

    void AuxSnifferStart();
    void ReadAuxSniffer(u16 length, u8 *data);
    void GetAuxSnifferConfigPara(u16 &first, u16 &second);
    void CompleteIspFlowInISPBoard();
    void CheckSnifferBoardCustomerId(u8 *id, u8 length);

  private:
    void SetMode(const char *mode);
    void StoreMailbox(const std::string &mailbox, u16 length, const void *data);
    void ReadMailbox(const std::string &mailbox, u16 length, void *data);

    BusSession &m_session;
};

} // namespace virtual_scaler

#endif
