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
    /// Registers are new and the scaler runs; numbers that were set stay.
    void ResetFirmware();
    void EnterIspMode(u16 mode);
    void AutoEnterIspMode(u16 mode);
    unsigned int GetDeviceCount();
    void RemoveDevice();
    unsigned int NeedSetMcuDefault();

    // What is written for a target is read back from it.
    void NativeWrite(int target, u16 length, u8 *data);
    void NativeRead(int target, u16 length, u8 *data);

    // The ISP plug-in's flash.bin; what is written is erased first.
    void WriteFlashData(unsigned int addr, u16 length, u8 *data);
    void ReadFlashData(unsigned int addr, u16 length, u8 *data);
    void ConfigProgramFlash(u8 config);

    void GetUsbDevicePath(u8 index, wchar_t *path);
    void SelectUsbByDevicePath(wchar_t *path);
    void SelectUsbByIndex(u8 index);
    // What is sent with a request, value and index is received with them.
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
    void Put(const std::string &box, u16 length, const void *data);
    void Take(const std::string &box, u16 length, void *data);

    BusSession &m_session;
};

} // namespace virtual_scaler

#endif
