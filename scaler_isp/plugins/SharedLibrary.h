#ifndef SCALER_ISP_PLUGINS_SHARED_LIBRARY_H
#define SCALER_ISP_PLUGINS_SHARED_LIBRARY_H

#include <span>
#include <string>

/// The one way to open a library and look functions up (dlopen, dlsym; POSIX). Each binding keeps
/// its own messages, order and codes. Nothing here needs memory, so a load that fails can always
/// close what it opened.

/// One function to look up.
struct SymbolRequest {
    const char *pszName;
    void *pSlot; ///< address of the function pointer that receives it
    bool bRequired;
};

/// Opens a library with immediate binding.
/// \param path   narrow; an empty one is a failure (the loader would open the main program).
/// \param error  receives the loader's own words; they live until its next call.
/// RETURNS the handle, or null.
void *OpenSharedLibrary(const std::string &path, const char *&error);

/// The same for the communication and the device library. PRINTS
/// "Failed to open libaray %s error:%s\n" to standard error on failure.
void *OpenLibraryOrReport(const std::string &path);

/// Fills the rows in order, a missing optional symbol with null.
/// \param error  receives the loader's own words about a required symbol that is missing; they live
///               until its next call.
/// RETURNS the row of that symbol, or null when all went well.
const SymbolRequest *ResolveSymbols(void *handle, std::span<const SymbolRequest> rows,
                                    const char *&error);

void CloseSharedLibrary(void *handle);

#endif
