#include "scaler_isp/plugins/SharedLibrary.h"

#include <cstdio>
#include <cstring>
#include <dlfcn.h>

namespace {

// dlerror() discards its message when it returns it, so it is called only once per failure.
const char *LoaderError() {
    const char *text = ::dlerror();
    return text != nullptr ? text : "";
}

} // namespace

void *OpenSharedLibrary(const std::string &path, const char *&error) {
    if (path.empty()) {
        error = "the path is unknown, empty or cannot be expressed in the environment's encoding";
        return nullptr;
    }
    // RTLD_NOW: an unresolved symbol must fail the load, before a device is accessed, and not crash
    // in the middle of programming.
    void *handle = ::dlopen(path.c_str(), RTLD_NOW);
    if (handle == nullptr) {
        error = LoaderError();
    }
    return handle;
}

void *OpenLibraryOrReport(const std::string &path) {
    const char *error = nullptr;
    void *handle = OpenSharedLibrary(path, error);
    if (handle == nullptr) {
        std::fprintf(stderr, "Failed to open libaray %s error:%s\n", path.c_str(), error);
    }
    return handle;
}

const SymbolRequest *ResolveSymbols(void *handle, std::span<const SymbolRequest> rows,
                                    const char *&error) {
    for (const SymbolRequest &row : rows) {
        ::dlerror(); // discards the message of an earlier failure
        void *symbol = ::dlsym(handle, row.pszName);
        // memcpy, because pSlot points to function pointers of many types, and a cast from void *
        // is only conditionally supported.
        std::memcpy(row.pSlot, &symbol, sizeof symbol);
        if (symbol == nullptr && row.bRequired) {
            error = LoaderError();
            return &row;
        }
    }
    return nullptr;
}

void CloseSharedLibrary(void *handle) {
    ::dlclose(handle);
}
