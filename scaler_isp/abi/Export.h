#ifndef SCALER_ISP_ABI_EXPORT_H
#define SCALER_ISP_ABI_EXPORT_H

/// Marks what the library offers to other binaries. Everything is compiled with hidden visibility;
/// a name is exported only if it has this mark and is listed in packaging/exports.list.
#if defined(__GNUC__)
#define SCALER_ISP_API __attribute__((visibility("default")))
#else
#define SCALER_ISP_API
#endif

/// Marks a member of an exported class that is not for other binaries.
#if defined(__GNUC__)
#define SCALER_ISP_INTERNAL __attribute__((visibility("hidden")))
#else
#define SCALER_ISP_INTERNAL
#endif

#endif
