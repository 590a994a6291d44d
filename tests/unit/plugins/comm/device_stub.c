/* A device library with a function for every pointer, those that nobody loads included. Only their
 * addresses count. */

#define SCALER_ISP_NXD_FUNCTION(LOOKUP, NAME, SYMBOL, TYPE_OF, FAILURE)                            \
    int SYMBOL(void);                                                                              \
    int SYMBOL(void) {                                                                             \
        return __LINE__;                                                                           \
    }
#include "scaler_isp/plugins/device_functions.def"
