#ifndef SCALER_ISP_PLUGINS_SHARED_LIBRARY_H
#define SCALER_ISP_PLUGINS_SHARED_LIBRARY_H

#include <span>
#include <string>

/// The only code that opens libraries and looks up functions (dlopen, dlsym; POSIX). Each binding
/// has its own messages, order and codes. Nothing here allocates memory, so a load that fails can
/// always close what it has opened.

/// One function to look up.
struct SymbolRequest {
    const char *pszName;
    void *pSlot; ///< address of the function pointer that receives it
    bool bRequired;
};

/// Opens a library with immediate binding.
/// \param path   in the system's form; an empty one is a failure, because dlopen would open the
///               main program.
/// \param error  receives the dlerror() message, valid until the next dl* call.
/// RETURNS the handle, or null.
void *OpenSharedLibrary(const std::string &path, const char *&error);

/// The same for the communication and the device library. PRINTS
/// "Failed to open libaray %s error:%s\n" to standard error on failure.
void *OpenLibraryOrReport(const std::string &path);

/// Fills the rows in order; a missing optional symbol gives null.
/// \param error  receives the dlerror() message for a missing required symbol, valid until the next
///               dl* call.
/// RETURNS the row of that symbol, or null on success.
const SymbolRequest *ResolveSymbols(void *handle, std::span<const SymbolRequest> rows,
                                    const char *&error);

void CloseSharedLibrary(void *handle);

#endif
