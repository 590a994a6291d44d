#ifndef SCALER_ISP_PLUGINS_SHARED_LIBRARY_H
#define SCALER_ISP_PLUGINS_SHARED_LIBRARY_H

#include <cstddef>
#include <span>
#include <string>

/// The one way to open a library and look functions up (dlopen, dlsym; POSIX). Each binding keeps
/// its own messages, order and codes.

/// One function to look up.
struct SymbolRow {
    const char *pszName;
    void *pSlot; ///< address of the function pointer that receives it
    bool bRequired;
};

/// A failure of the loader.
struct LoaderError {
    const char *pszSymbol = nullptr; ///< the required symbol that is missing; null: nothing opened
    std::string strText;             ///< the loader's own words
};

/// Opens a library with immediate binding.
/// \param path  narrow; an empty one is a failure (the loader would open the main program).
/// RETURNS the handle, or null with the error filled.
void *OpenSharedLibrary(const std::string &path, LoaderError &error);

/// Fills the rows in order, a missing optional symbol with null. RETURNS false at the first
/// required symbol that is missing, with the error filled.
bool ResolveSymbols(void *handle, std::span<const SymbolRow> rows, LoaderError &error);

void CloseSharedLibrary(void *handle);

#endif
