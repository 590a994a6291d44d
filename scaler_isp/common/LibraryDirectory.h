#ifndef SCALER_ISP_COMMON_LIBRARY_DIRECTORY_H
#define SCALER_ISP_COMMON_LIBRARY_DIRECTORY_H

#include <string>

#include "scaler_isp/common/CCpNxString.h"

/// A directory, ending in "/", in two forms. If its name cannot be expressed in the environment's
/// encoding, records and messages hold the empty string, but files are still found by the bytes.
struct LibraryDirectory {
    CCpNxString strName;  ///< what GetCurrentProcessDir returns; empty if unknown or inexpressible
    std::string strBytes; ///< the system's form, for open and dlopen; empty if unknown

    bool IsKnown() const {
        return !strBytes.empty();
    }
};

/// The directory of the loaded file that contains the address, or of the running executable for
/// null. Throws CallFailure or std::bad_alloc if the system fails.
LibraryDirectory FindDirectoryOf(const void *address);

/// The directory of this library's file.
LibraryDirectory FindLibraryDirectory();

/// The path of IspSetting.ini in the library's directory, as stored in records.
CCpNxString DefaultSettingFile(const LibraryDirectory &directory);

#endif
