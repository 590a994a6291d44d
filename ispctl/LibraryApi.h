#ifndef ISPCTL_LIBRARY_API_H
#define ISPCTL_LIBRARY_API_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ScalerLibrary.h"
#include "scaler_isp/plugins/CNxComm.h"

namespace ispctl {

/// The result of a script.
struct ScriptResult {
    int code = 0;
    std::vector<std::uint8_t> output; ///< bytes that it read before it ended
};

/// The C++ API functions that ispctl calls, looked up by symbol name.
class LibraryApi {
  public:
    /// RETURNS nothing if a function is missing, with the reason in error.
    static std::optional<LibraryApi> Find(const ScalerLibrary &library, std::string &error);

    /// REQUIRES: CheckScript found no problem.
    /// \param readBytes  number of bytes that the script reads: ScriptReport::outputBytes
    ScriptResult RunScript(std::span<const std::uint8_t> script, std::size_t readBytes,
                           CNxComm &comm) const;

    /// A binding to the communication library, constructed by the opened library, because this
    /// program does not link the class. Its deleter unloads the communication library.
    struct CommDeleter {
        void operator()(CNxComm *comm) const;
    };
    using Comm = std::unique_ptr<CNxComm, CommDeleter>;
    Comm CreateComm() const;

  private:
    using Runner = int(unsigned char *, unsigned int, CNxComm *, unsigned char *, unsigned int *);
    using Constructor = void(void *);

    Runner *m_runCommand = nullptr;
    Constructor *m_construct = nullptr;
};

} // namespace ispctl

#endif
