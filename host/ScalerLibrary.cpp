#include "ScalerLibrary.h"

#include <cstring>
#include <dlfcn.h>
#include <fmt/format.h>
#include <string_view>
#include <type_traits>
#include <typeinfo>

#include "scaler_isp/entry/CommandLineSplit.h"

namespace ispctl {
namespace {

// The symbol of a C++ function in the global namespace. In the Itanium C++ ABI a function type is
// written F<result><parameters>E and the function's symbol _Z<length><name><parameters>, so the
// compiler itself supplies the parameters, whichever standard library it uses. The result must be a
// type written with one letter, such as int.
template <class Function> std::string MangledName(std::string_view name) {
    const std::string_view type = typeid(Function).name();
    return fmt::format("_Z{}{}{}", name.size(), name, type.substr(2, type.size() - 3));
}

template <class Function> bool Resolve(void *handle, const std::string &symbol, Function &slot) {
    void *address = ::dlsym(handle, symbol.c_str());
    static_assert(sizeof address == sizeof slot);
    std::memcpy(&slot, &address, sizeof slot);
    return address != nullptr;
}

} // namespace

std::optional<ScalerLibrary> ScalerLibrary::Open(const std::filesystem::path &file,
                                                 std::string &error) {
    static_assert(std::is_same_v<decltype(&::OperateScaler), OperateFunction>);
    static_assert(std::is_same_v<decltype(&::ParseCommandLineParameter), SplitFunction>);
    ScalerLibrary library;
    library.m_path = std::filesystem::absolute(file);
    void *handle = ::dlopen(library.m_path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char *text = ::dlerror();
        error = fmt::format("the library cannot be opened: {}", text != nullptr ? text : "");
        return std::nullopt;
    }
    const std::string split =
        MangledName<std::remove_pointer_t<SplitFunction>>("ParseCommandLineParameter");
    if (!Resolve(handle, "OperateScaler", library.m_operate) ||
        !Resolve(handle, split, library.m_split)) {
        error = fmt::format("{} is no ScalerIsp library for this console: {} is missing",
                            library.m_path.string(),
                            library.m_operate == nullptr ? "OperateScaler" : split);
        return std::nullopt;
    }
    return library;
}

std::optional<std::vector<std::string>> ScalerLibrary::Split(const std::string &line) const {
    std::vector<std::string> words;
    if (m_split(words, line) != 1) {
        return std::nullopt;
    }
    return words;
}

} // namespace ispctl
