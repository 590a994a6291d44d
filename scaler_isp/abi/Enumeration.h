#ifndef SCALER_ISP_ABI_ENUMERATION_H
#define SCALER_ISP_ABI_ENUMERATION_H

#include <stdint.h>

/// An enumeration that occupies exactly 32 bits in a record:
///
///     SCALER_ISP_ENUM_TYPE(NAME);
///     enum SCALER_ISP_ENUM_VALUES(NAME) { FIRST = 0, SECOND = 1 };
///
/// In C++ it is an enumeration with a fixed underlying type, so that a number outside the listed
/// values (from a settings file, from a newer plug-in) can be stored and read back. C99 cannot fix
/// the type of an enumeration; there NAME is a uint32_t and the values are plain constants. The
/// first line alone declares a type without named values.
#ifdef __cplusplus
#define SCALER_ISP_ENUM_TYPE(NAME) enum NAME : uint32_t
#define SCALER_ISP_ENUM_VALUES(NAME)                                                               \
    NAME:                                                                                          \
    uint32_t
#else
#define SCALER_ISP_ENUM_TYPE(NAME) typedef uint32_t NAME
#define SCALER_ISP_ENUM_VALUES(NAME) NAME##_VALUES
#endif

#endif
