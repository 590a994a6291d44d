#ifndef SCALER_ISP_COMMON_LIBRARY_DIRECTORY_H
#define SCALER_ISP_COMMON_LIBRARY_DIRECTORY_H

#include <string>

#include "scaler_isp/common/CCpNxString.h"

/// A directory that ends in "/", in the two forms that are needed. They differ if the name cannot
/// be expressed: records and messages then hold the empty string, but files are still found.
struct LibraryDirectory {
    CCpNxString strName;  ///< what GetCurrentProcessDir returns; empty if unknown or inexpressible
    std::string strBytes; ///< as the system knows it, for open and dlopen; empty if unknown

    bool IsKnown() const {
        return !strBytes.empty();
    }
};

/// The directory of the file that holds the address, or for null of the running executable. Throws
/// CallFailure or std::bad_alloc if a failure of the system keeps it from being found.
LibraryDirectory FindDirectoryOf(const void *address);

/// The directory of this library's own file.
LibraryDirectory FindLibraryDirectory();

/// The path of IspSetting.ini in the library's directory, as it is written into records.
CCpNxString DefaultSettingFile(const LibraryDirectory &directory);

#endif
