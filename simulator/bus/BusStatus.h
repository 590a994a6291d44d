#ifndef SCALER_ISP_SIMULATOR_BUS_BUS_STATUS_H
#define SCALER_ISP_SIMULATOR_BUS_BUS_STATUS_H

/// \file
/// The status codes of the virtual bus, in addition to those of the device (device/ResultCodes.h).
/// Success is 0. Never 6, which the library itself returns for a function that is not loaded.

/// One row per status: X(name, value, meaning in one line).
#define VIRTUAL_BUS_STATUSES(X)                                                                    \
    X(VIRTUAL_BUS_NACK, 0x5B01, "no slave answers at this I2C address")                            \
    X(VIRTUAL_BUS_BAD_ARGUMENT, 0x5B02, "a null pointer, or an address mode other than 0 and 1")   \
    X(VIRTUAL_BUS_BAD_MESSAGE, 0x5B03, "a DDC/CI message has a wrong checksum, length or source")  \
    X(VIRTUAL_BUS_NO_SUCH_DEVICE, 0x5B04, "there is no channel or USB device of this name")        \
    X(VIRTUAL_BUS_NOT_OFFERED, 0x5B05, "the virtual bus does not offer this")                      \
    X(VIRTUAL_BUS_NOT_STARTED, 0x5B06, "the AUX sniffer was not started")                          \
    X(VIRTUAL_BUS_REMOVED, 0x5B07, "the device was removed and not initialised since")             \
    X(VIRTUAL_BUS_BAD_STATE, 0x5B08, "registers.txt has a line that cannot be understood")         \
    X(VIRTUAL_BUS_NO_STATE, 0x5B09, "registers.txt or edid.bin cannot be read or written")

namespace virtual_scaler {

enum BusStatus : int {
#define VIRTUAL_BUS_STATUS_VALUE(NAME, VALUE, MEANING) NAME = VALUE,
    VIRTUAL_BUS_STATUSES(VIRTUAL_BUS_STATUS_VALUE)
#undef VIRTUAL_BUS_STATUS_VALUE
};

} // namespace virtual_scaler

#endif
