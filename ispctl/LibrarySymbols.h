#ifndef ISPCTL_LIBRARY_SYMBOLS_H
#define ISPCTL_LIBRARY_SYMBOLS_H

#include <cstring>
#include <dlfcn.h>
#include <string>
#include <string_view>
#include <typeinfo>

namespace ispctl {

/// The symbol of a C++ function in the global namespace. In the Itanium C++ ABI a function type is
/// written F<result><parameters>E and the function's symbol _Z<length><name><parameters>, so the
/// compiler itself supplies the parameters, whichever standard library it uses. The result must be
/// a type written with one letter, such as int.
template <class Function> std::string MangledName(std::string_view name) {
    const std::string_view type = typeid(Function).name();
    std::string symbol = "_Z" + std::to_string(name.size());
    return symbol.append(name).append(type.substr(2, type.size() - 3));
}

/// Looks up a symbol. RETURNS whether it was found; if not, slot is null. memcpy, because a cast
/// from void * to a function pointer is only conditionally supported.
template <class Function>
bool ResolveSymbol(void *handle, const std::string &symbol, Function *&slot) {
    void *address = ::dlsym(handle, symbol.c_str());
    static_assert(sizeof address == sizeof slot);
    std::memcpy(&slot, &address, sizeof slot);
    return address != nullptr;
}

} // namespace ispctl

#endif
