#include "ScalerLibrary.h"

#include <dlfcn.h>
#include <fmt/format.h>
#include <type_traits>

#include "LibraryReason.h"
#include "LibrarySymbols.h"
#include "scaler_isp/entry/CommandLineSplit.h"

namespace ispctl {

std::optional<ScalerLibrary> ScalerLibrary::Open(const std::filesystem::path &file,
                                                 std::string &error) {
    static_assert(std::is_same_v<decltype(&::OperateScaler), OperateFunction>);
    static_assert(std::is_same_v<decltype(&::ParseCommandLineParameter), SplitFunction>);
    ScalerLibrary library;
    library.m_path = std::filesystem::absolute(file);
    error = WhyNotLoadable(library.m_path);
    if (!error.empty()) {
        return std::nullopt;
    }
    void *handle = ::dlopen(library.m_path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char *text = ::dlerror();
        error = WordsOfLoader(library.m_path, text != nullptr ? text : "no reason is given");
        return std::nullopt;
    }
    library.m_handle = handle;
    const std::string split =
        MangledName<std::remove_pointer_t<SplitFunction>>("ParseCommandLineParameter");
    if (!ResolveSymbol(handle, "OperateScaler", library.m_operate) ||
        !ResolveSymbol(handle, split, library.m_split)) {
        error = fmt::format("{} is not a compatible ScalerIsp library: symbol {} not found; {}",
                            library.m_path.string(),
                            library.m_operate == nullptr ? "OperateScaler" : split, kOtherLibrary);
        return std::nullopt;
    }
    return library;
}

std::optional<std::vector<std::string>> ScalerLibrary::Split(const std::string &line) const {
    std::vector<std::string> arguments;
    if (m_split(arguments, line) != 1) {
        return std::nullopt;
    }
    return arguments;
}

} // namespace ispctl
