#include "comm/CommSession.h"

#include <fmt/format.h>
#include <utility>

#include "LibraryPaths.h"
#include "Utf8.h"
#include "line/NamedFile.h"

namespace ispctl {

CommSession::CommSession(ScalerLibrary library, LibraryApi api, std::filesystem::path path,
                         bool virtualScaler)
    : m_library(std::move(library)), m_api(api), m_comm(m_api.CreateComm()),
      m_path(std::move(path)), m_virtualScaler(virtualScaler) {}

std::string CommSession::WordsFor(int code) const {
    const auto words = FindCommCode(m_path, code);
    std::string text;
    if (words) {
        text = ": " + words->meaning + (words->remedy.empty() ? "" : "; " + words->remedy);
    }
    if (m_virtualScaler) {
        text +=
            fmt::format("; the device is in {} (SCALER_ISP_VIRTUAL_DEVICE names another directory)",
                        VirtualDeviceDirectory(m_path.parent_path()).string());
    }
    return text;
}

std::string CommSession::StatusWords(unsigned int status) const {
    return fmt::format("status 0x{:X}{}", status, WordsFor(static_cast<int>(status)));
}

std::string CommSession::Prepare(const CommOptions &options) {
    if (const unsigned int status = m_comm->Initiallize(); status != 0) {
        return fmt::format("cannot initialise the communication library ({})", StatusWords(status));
    }
    if (options.channel) {
        const auto channel = static_cast<STRUCT_ENUM_COMM_ID>(*options.channel);
        if (const unsigned int status = m_comm->SetCommByID(channel); status != 0) {
            return fmt::format("cannot select channel {} ({})", *options.channel,
                               StatusWords(status));
        }
    }
    return "";
}

std::optional<CommSession> CommSession::Open(const CommOptions &options, Session &session,
                                             ExitStatus &status) {
    std::string error;
    auto library = ScalerLibrary::Open(
        options.library.empty() ? InstalledLibraryPath().string() : options.library, error);
    const auto api = library ? LibraryApi::Find(*library, error) : std::nullopt;
    if (!api) {
        status = session.Fail(kExitUsage, error);
        return std::nullopt;
    }
    if (options.virtualScaler) {
        session.streams.PrintMessage("virtual scaler: no hardware is touched");
    }
    const std::filesystem::path path = std::filesystem::absolute(
        options.virtualScaler ? VirtualCommLibraryPath() : std::filesystem::path(options.comm));
    auto wide = WideFromUtf8(path.string());
    if (!wide) {
        status = session.Fail(kExitUsage, fmt::format("{} is not valid UTF-8", path.string()));
        return std::nullopt;
    }
    std::error_code ignored;
    const auto kind = std::filesystem::status(path, ignored);
    if (std::filesystem::exists(kind) && !std::filesystem::is_regular_file(kind)) {
        // Loading a pipe would wait for a writer.
        status = session.Fail(kExitNoPlugin, fmt::format("{} is {}, not a communication library",
                                                         path.string(), KindOf(kind)));
        return std::nullopt;
    }
    CommSession opened(std::move(*library), *api, path, options.virtualScaler);
    if (opened.m_comm->LoadCommDllFile(wide->data()) != 1) {
        status = session.Fail(
            kExitNoPlugin, fmt::format("cannot load {} as a communication library", path.string()));
        return std::nullopt;
    }
    if (const std::string problem = opened.Prepare(options); !problem.empty()) {
        status = session.Fail(kExitFailed, problem);
        return std::nullopt;
    }
    return opened;
}

} // namespace ispctl
