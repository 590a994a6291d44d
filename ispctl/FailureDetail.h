#ifndef ISPCTL_FAILURE_DETAIL_H
#define ISPCTL_FAILURE_DETAIL_H

#include <filesystem>
#include <string>

#include "line/ParsedLine.h"

namespace ispctl {

/// Who formed a result code, and why.
struct ResultOrigin {
    bool fromLibrary = false; ///< a plug-in may return any number, also one of the library's
    std::string detail; ///< what is wrong with a plug-in and what to do, one sentence per line
    bool nothingCalled = false;   ///< certainly no function of a plug-in was called
    bool deviceUntouched = false; ///< certainly none that accesses the device
};

/// Looks into a result code of the library's table. Opens plug-ins once more, so call it in the
/// library's process only.
/// \param records  of the command line; null if they are not known
/// \param pluginLoaded  false only if certainly no plug-in was loaded
ResultOrigin OriginOf(int code, const std::filesystem::path &libraryDirectory,
                      const Records *records, bool pluginLoaded);

} // namespace ispctl

#endif
