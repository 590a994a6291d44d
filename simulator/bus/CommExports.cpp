// The functions of the communication library, generated from the library's own table. The device
// library is built from the same sources and exports fewer of them.

#include "bus/ExportedCall.h"
#include "common/Files.h"

std::string virtual_scaler::BusDirectory() {
    return DeviceDirectory(1);
}

#define EXPORT_REQUIRED(...) VIRTUAL_BUS_EXPORT(__VA_ARGS__)
#define EXPORT_REQUIRED_TWICE(...) VIRTUAL_BUS_EXPORT(__VA_ARGS__)
#define EXPORT_OPTIONAL(...) VIRTUAL_BUS_EXPORT(__VA_ARGS__)
#define EXPORT_NEVER(RESULT, NAME, PARAMETERS, ARGUMENTS)
#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    EXPORT_##LOOKUP(RESULT, SYMBOL, PARAMETERS, ARGUMENTS)
#include "scaler_isp/plugins/comm_functions.def"
