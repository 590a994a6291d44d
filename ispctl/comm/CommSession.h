#ifndef ISPCTL_COMM_COMM_SESSION_H
#define ISPCTL_COMM_COMM_SESSION_H

#include <filesystem>
#include <optional>
#include <string>

#include "LibraryApi.h"
#include "PluginCodes.h"
#include "ScalerLibrary.h"
#include "Session.h"
#include "comm/CommOptions.h"

namespace ispctl {

/// A communication library that is ready: loaded, initialised, with its channel selected.
class CommSession {
  public:
    /// REQUIRES: options.UsesBus(), and a process of its own (RunInCommProcess).
    /// RETURNS nothing on failure, which is reported, with its exit status in status.
    static std::optional<CommSession> Open(const CommOptions &options, Session &session,
                                           ExitStatus &status);

    const LibraryApi &Api() const {
        return m_api;
    }
    CNxComm &Comm() {
        return *m_comm;
    }
    /// "status 0x5B01", with what the library's maker says of it and, for the virtual bus, where
    /// its device is.
    std::string StatusWords(unsigned int status) const;
    /// What the maker says of a code, and where the device of the virtual bus is; empty if there is
    /// neither.
    std::string WordsFor(int code) const;

  private:
    CommSession(ScalerLibrary library, LibraryApi api, std::filesystem::path path,
                bool virtualScaler);
    /// RETURNS why it is not ready, empty if it is.
    std::string Prepare(const CommOptions &options);

    ScalerLibrary m_library; ///< must outlive what it has made
    LibraryApi m_api;
    LibraryApi::Comm m_comm;
    std::filesystem::path m_path;
    bool m_virtualScaler;
};

} // namespace ispctl

#endif
