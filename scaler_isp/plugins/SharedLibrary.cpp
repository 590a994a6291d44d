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

void *OpenSharedLibrary(const std::string &path, LoaderError &error) {
    if (path.empty()) {
        error = {nullptr, "the path is empty or cannot be expressed in the environment's encoding"};
        return nullptr;
    }
    void *handle = ::dlopen(path.c_str(), RTLD_NOW);
    if (handle == nullptr) {
        error = {nullptr, LoaderText()};
    }
    return handle;
}

bool ResolveSymbols(void *handle, std::span<const SymbolRow> rows, LoaderError &error) {
    for (const SymbolRow &row : rows) {
        ::dlerror();
        void *symbol = ::dlsym(handle, row.pszName);
        std::memcpy(row.pSlot, &symbol, sizeof symbol);
        if (symbol == nullptr && row.bRequired) {
            error = {row.pszName, LoaderText()};
            return false;
        }
    }
    return true;
}

void CloseSharedLibrary(void *handle) {
    ::dlclose(handle);
}
