// The function that only the device library exports, and the check of its table.

#include "bus/ExportedCall.h"

VIRTUAL_BUS_EXPORT(unsigned int, InitialDev, (), ())

// Every function that the library looks up must be a method of VirtualBus.
template <class Bus, class Method> constexpr bool IsMethod(Method Bus::*) {
    return true;
}
#define WRITTEN_REQUIRED(SYMBOL)                                                                   \
    static_assert(IsMethod(&virtual_scaler::VirtualBus::SYMBOL), #SYMBOL " is not written");
#define WRITTEN_OPTIONAL(SYMBOL) WRITTEN_REQUIRED(SYMBOL)
#define WRITTEN_NEVER(SYMBOL)
#define SCALER_ISP_NXD_FUNCTION(LOOKUP, NAME, SYMBOL, TYPE_OF, FAILURE) WRITTEN_##LOOKUP(SYMBOL)
#include "scaler_isp/plugins/device_functions.def"
