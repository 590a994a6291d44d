#ifndef SCALER_ISP_ABI_CALLBACKS_H
#define SCALER_ISP_ABI_CALLBACKS_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/// Progress of the running action. UNITS: percent, 0..100, as the ISP plug-in reports it.
typedef void (*ScalerIspProgressCallback)(int percent);

/// One message for the user: NUL-terminated, 32-bit characters. The plug-in owns the string, which
/// is valid only during the call; it may or may not end with a newline.
typedef void (*ScalerIspMessageCallback)(wchar_t *text);

/// Returns the host's handle of the device behind a hub, or null if there is none.
typedef void *(*ScalerIspHubDeviceCallback)(void);

#ifdef __cplusplus
}
#endif

#endif
