// A device library that has every function that is looked up; nobody calls them.

#define REQUIRED(SYMBOL)                                                                           \
    extern "C" __attribute__((visibility("default"))) void SYMBOL() {}
#define OPTIONAL(SYMBOL) REQUIRED(SYMBOL)
#define NEVER(SYMBOL)
#define SCALER_ISP_NXD_FUNCTION(LOOKUP, NAME, SYMBOL, TYPE_OF, FAILURE) LOOKUP(SYMBOL)
#include "scaler_isp/plugins/device_functions.def"
