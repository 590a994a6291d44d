#include "LibraryApi.h"

#include <fmt/format.h>
#include <new>

#include "LibrarySymbols.h"
#include "scaler_isp/common/script/RegisterScript.h"

namespace ispctl {

std::optional<LibraryApi> LibraryApi::Find(const ScalerLibrary &library, std::string &error) {
    static_assert(std::is_same_v<decltype(::RunCommand), Runner>);
    LibraryApi api;
    const auto find = [&](const std::string &symbol, auto *&slot) {
        if (!ResolveSymbol(library.Handle(), symbol, slot) && error.empty()) {
            error = fmt::format("{} is not a compatible ScalerIsp library: symbol {} not found",
                                library.Path().string(), symbol);
        }
    };
    error.clear();
    find(MangledName<Runner>("RunCommand"), api.m_runCommand);
    // The complete-object constructor; in the Itanium C++ ABI a function whose argument is the
    // storage.
    find("_ZN7CNxCommC1Ev", api.m_construct);
    return error.empty() ? std::optional<LibraryApi>(api) : std::nullopt;
}

ScriptResult LibraryApi::RunScript(std::span<const std::uint8_t> script, std::size_t readBytes,
                                   CNxComm &comm) const {
    std::vector<unsigned char> records(script.begin(), script.end());
    ScriptResult result;
    // One byte more than the script reads: data() of an empty vector may be null, and RunCommand
    // takes null for "reads are not supported".
    result.output.resize(readBytes + 1);
    unsigned int count = 0;
    result.code = m_runCommand(records.data(), static_cast<unsigned int>(records.size()), &comm,
                               result.output.data(), &count);
    result.output.resize(count);
    return result;
}

LibraryApi::Comm LibraryApi::CreateComm() const {
    void *storage = ::operator new(sizeof(CNxComm), std::align_val_t(alignof(CNxComm)));
    m_construct(storage);
    return Comm(std::launder(static_cast<CNxComm *>(storage)));
}

// The virtual calls run in the library that constructed the object; this program does not link the
// class.
void LibraryApi::CommDeleter::operator()(CNxComm *comm) const {
    comm->FreeCommDllFile();
    comm->~CNxComm();
    ::operator delete(comm, std::align_val_t(alignof(CNxComm)));
}

} // namespace ispctl
