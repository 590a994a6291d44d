#include "scaler_isp/plugins/SharedLibrary.h"

#include <cstring>
#include <dlfcn.h>

namespace {

// The text is gone with the loader's next call, so it is fetched at once and only once.
std::string LoaderText() {
    const char *text = ::dlerror();
    return text != nullptr ? text : "";
}

} // namespace

void *OpenSharedLibrary(const std::string &path, std::string &error) {
    if (path.empty()) {
        error = "the path is empty or cannot be expressed in the environment's encoding";
        return nullptr;
    }
    void *handle = ::dlopen(path.c_str(), RTLD_NOW);
    if (handle == nullptr) {
        error = LoaderText();
    }
    return handle;
}

const SymbolRow *ResolveSymbols(void *handle, std::span<const SymbolRow> rows, std::string &error) {
    for (const SymbolRow &row : rows) {
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
