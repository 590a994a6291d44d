#include "scaler_isp/plugins/SharedLibrary.h"

#include <cstdio>
#include <cstring>
#include <dlfcn.h>

namespace {

// The loader forgets the text when it is fetched, so that is done only once.
const char *LoaderText() {
    const char *text = ::dlerror();
    return text != nullptr ? text : "";
}

} // namespace

void *OpenSharedLibrary(const std::string &path, const char *&error) {
    if (path.empty()) {
        error = "the path is unknown, empty or cannot be expressed in the environment's encoding";
        return nullptr;
    }
    void *handle = ::dlopen(path.c_str(), RTLD_NOW);
    if (handle == nullptr) {
        error = LoaderText();
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
        ::dlerror(); // forgets an older failure
        void *symbol = ::dlsym(handle, row.pszName);
        std::memcpy(row.pSlot, &symbol, sizeof symbol);
        if (symbol == nullptr && row.bRequired) {
            error = LoaderText();
            return &row;
        }
    }
    return nullptr;
}

void CloseSharedLibrary(void *handle) {
    ::dlclose(handle);
}
