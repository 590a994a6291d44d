#ifndef SCALER_ISP_ABI_ENUMERATION_H
#define SCALER_ISP_ABI_ENUMERATION_H

#include <stdint.h>

/// Opens an enumeration that occupies exactly 32 bits in a record.
///
/// In C++ it is a real enumeration with a fixed underlying type, so that a number outside the listed
/// values (from a settings file, from a newer plug-in) can be stored and read back. C99 cannot fix the
/// type of an enumeration; there the name is a uint32_t and the values are plain constants.
#ifdef __cplusplus
#define SCALER_ISP_ENUM(NAME) enum NAME : uint32_t
#else
#define SCALER_ISP_ENUM(NAME)                                                                      \
    typedef uint32_t NAME;                                                                         \
    enum NAME##_VALUES
#endif

#endif
