#include "modules/ModuleCalls.h"

#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>

namespace {

ModuleCalls *g_current = nullptr;

int Hook(const char *name, void *first, void *second, void *third) {
    const auto suspend = g_current->suspend;
    suspend(true);
    int result = 0;
    {
        const ModuleCall call{name, first, second, third};
        g_current->calls.push_back(call);
        result = g_current->answer(call); // which may make further calls
    }
    suspend(false);
    return result;
}

} // namespace

ModuleCalls::ModuleCalls() {
    g_current = this;
    char text[32];
    std::snprintf(text, sizeof text, "%llx",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(&Hook)));
    setenv("SCALER_ISP_TEST_HOOK", text, 1);
}

ModuleCalls::~ModuleCalls() {
    unsetenv("SCALER_ISP_TEST_HOOK");
    g_current = nullptr;
}

std::vector<std::string> ModuleCalls::Names() const {
    std::vector<std::string> names;
    for (const ModuleCall &call : calls) {
        names.push_back(call.name);
    }
    return names;
}

std::string ModulePath(const std::string &name) {
    return std::string(SCALER_ISP_TEST_MODULES) + "/" + name + ".module";
}

bool IsLoaded(const std::string &path) {
    void *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) {
        dlclose(handle);
    }
    return handle != nullptr;
}
