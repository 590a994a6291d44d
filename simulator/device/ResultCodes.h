#ifndef SCALER_ISP_SIMULATOR_DEVICE_RESULT_CODES_H
#define SCALER_ISP_SIMULATOR_DEVICE_RESULT_CODES_H

/// \file
/// Every result code that the virtual ISP plug-in itself returns, distinct from the library's
/// codes. An injected fault may return any other code.

/// One row per code: X(name, value, meaning in one line).
#define VIRTUAL_ISP_RESULT_CODES(X)                                                                \
    X(VIRTUAL_ISP_SUCCESS, 0, "success")                                                           \
    X(VIRTUAL_ISP_NO_DEVICE, 0x5A01, "the device's directory or files cannot be opened")           \
    X(VIRTUAL_ISP_BAD_DESCRIPTION, 0x5A02, "device.ini has a line that cannot be understood")      \
    X(VIRTUAL_ISP_BAD_FAULTS, 0x5A03,                                                              \
      "faults.txt cannot be read or has a line that cannot be understood")                         \
    X(VIRTUAL_ISP_OUTSIDE, 0x5A04, "a bank or an address lies outside the flash or the EEPROM")    \
    X(VIRTUAL_ISP_NO_FIRMWARE_FILE, 0x5A05, "a firmware file cannot be read")                      \
    X(VIRTUAL_ISP_SHORT_FIRMWARE, 0x5A06, "a firmware file ends before a bank that is asked for")  \
    X(VIRTUAL_ISP_WRITE_FAILED, 0x5A07, "the flash cannot be written, for instance a full disk")   \
    X(VIRTUAL_ISP_VERIFY_FAILED, 0x5A08, "what was read back differs from what was written")       \
    X(VIRTUAL_ISP_POWER_LOST, 0x5A09, "the power was lost on demand; a bank is half written")      \
    X(VIRTUAL_ISP_NO_VERSION, 0x5A0A, "there is no version where it was looked for")               \
    X(VIRTUAL_ISP_NO_KEY, 0x5A0B, "the key area of the flash is erased")                           \
    X(VIRTUAL_ISP_BAD_MODE, 0x5A0C, "the virtual scaler does not know this mode or information")   \
    X(VIRTUAL_ISP_NO_DUMP, 0x5A0D, "the dump file cannot be written")                              \
    X(VIRTUAL_ISP_NOTHING_TO_PROGRAM, 0x5A0E, "the bank map is empty and nothing was programmed")  \
    X(VIRTUAL_ISP_BAD_RECORD, 0x5A0F, "no record, no buffer, or more than 512 banks in the map")   \
    X(VIRTUAL_ISP_READ_FAILED, 0x5A10, "the flash or the EEPROM cannot be read")                   \
    X(VIRTUAL_ISP_INTERNAL, 0x5AFF, "an error inside the plug-in, for instance no memory")

namespace virtual_scaler {

enum ResultCode : int {
#define VIRTUAL_ISP_RESULT_CODE_VALUE(NAME, VALUE, MEANING) NAME = VALUE,
    VIRTUAL_ISP_RESULT_CODES(VIRTUAL_ISP_RESULT_CODE_VALUE)
#undef VIRTUAL_ISP_RESULT_CODE_VALUE
};

} // namespace virtual_scaler

#endif
