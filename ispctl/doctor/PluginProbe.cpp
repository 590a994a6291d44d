#include "doctor/PluginProbe.h"

#include <algorithm>
#include <array>
#include <dlfcn.h>
#include <string_view>
#include <utility>

#include "ScalerLibrary.h"
#include "doctor/Probe.h"
#include "scaler_isp/abi/SignVerifyPlugin.h"

namespace ispctl::doctor {
namespace {

using Use = PluginFunction::Use;

constexpr PluginFunction kLookedUp[] = {
#define SCALER_ISP_REQUIRED_SYMBOL(NAME) {#NAME, Use::Required},
#define SCALER_ISP_OPTIONAL_SYMBOL(NAME) {#NAME, Use::Optional},
#include "scaler_isp/plugins/isp_functions.def"
};

constexpr const char *kWrapped[] = {
#define SCALER_ISP_STATUS_FUNCTION(NAME, PARAMETERS, ARGUMENTS) #NAME,
#define SCALER_ISP_VOID_FUNCTION(NAME, PARAMETERS, ARGUMENTS) #NAME,
#define SCALER_ISP_DEVICE_FUNCTION(NAME, PARAMETERS, ARGUMENTS) #NAME,
#include "scaler_isp/plugins/isp_functions.def"
};

// Every wrapper has a function; those that are looked up come first.
constexpr auto kIspFunctions = [] {
    std::array<PluginFunction, std::size(kWrapped)> all{};
    std::size_t size = 0;
    for (const PluginFunction &function : kLookedUp) {
        all[size++] = function;
    }
    for (const char *name : kWrapped) {
        const bool lookedUp =
            std::any_of(std::begin(kLookedUp), std::end(kLookedUp),
                        [&](const PluginFunction &f) { return std::string_view(f.name) == name; });
        if (!lookedUp) {
            all[size++] = {name, Use::NeverCalled};
        }
    }
    return all;
}();

// The compiler knows whether the header of plug-in authors declares the name.
#define ISPCTL_DECLARED_NAME(NAME) (static_cast<void>(sizeof(&::NAME)), #NAME)

constexpr PluginFunction kSignFunctions[] = {
    {ISPCTL_DECLARED_NAME(VerifySignatureExport), Use::Required},
    {ISPCTL_DECLARED_NAME(SignFwExport), Use::Required},
};

/// How many of the functions that the library requires are there, and how many there should be.
std::pair<long, long> CountRequired(PluginRole role,
                                    const std::function<bool(const char *)> &exports) {
    const auto functions = FunctionsOf(role);
    const auto isRequired = [](const PluginFunction &function) {
        return function.use == Use::Required;
    };
    return {std::count_if(functions.begin(), functions.end(),
                          [&](const PluginFunction &function) {
                              return isRequired(function) && exports(function.name);
                          }),
            std::count_if(functions.begin(), functions.end(), isRequired)};
}

} // namespace

const char *NameOf(PluginRole role) {
    return role == PluginRole::Isp ? "isp" : "sign";
}

const char *KindOf(PluginRole role) {
    return role == PluginRole::Isp ? "an ISP plug-in" : "a sign/verify plug-in";
}

bool IsOfOtherRole(PluginRole role, const std::function<bool(const char *)> &exports) {
    const auto [otherThere, otherRequired] = CountRequired(OtherRole(role), exports);
    return CountRequired(role, exports).first == 0 && otherThere == otherRequired;
}

std::span<const PluginFunction> FunctionsOf(PluginRole role) {
    return role == PluginRole::Isp ? std::span<const PluginFunction>(kIspFunctions)
                                   : std::span<const PluginFunction>(kSignFunctions);
}

void ProbePlugin(const std::string &library, const std::string &plugin, ParentLink &link) {
    // A plug-in may depend on the library; in a run it is there.
    std::string ignored;
    if (!library.empty()) {
        ScalerLibrary::Open(library, ignored);
    }
    void *handle = ::dlopen(plugin.c_str(), RTLD_NOW);
    if (handle == nullptr) {
        const char *text = ::dlerror();
        Send(link, {"not-loaded", text != nullptr ? text : ""});
        Send(link, {kProbeEnd});
        return;
    }
    Send(link, {"loaded"});
    for (const PluginRole role : {PluginRole::Isp, PluginRole::Sign}) {
        for (const PluginFunction &function : FunctionsOf(role)) {
            if (::dlsym(handle, function.name) != nullptr) {
                Send(link, {"function", function.name});
            }
        }
    }
    ::dlclose(handle);
    Send(link, {kProbeEnd});
}

} // namespace ispctl::doctor
