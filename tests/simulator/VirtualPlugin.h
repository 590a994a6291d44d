#ifndef SCALER_ISP_TESTS_SIMULATOR_VIRTUAL_PLUGIN_H
#define SCALER_ISP_TESTS_SIMULATOR_VIRTUAL_PLUGIN_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

#include "scaler_isp/abi/IspPlugin.h"
#include "scaler_isp/abi/SignVerifyPlugin.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

/// A library opened by path and closed again; Get finds a function by its plain name.
class OpenLibrary {
  public:
    explicit OpenLibrary(const std::string &path);
    ~OpenLibrary();
    OpenLibrary(const OpenLibrary &) = delete;
    OpenLibrary &operator=(const OpenLibrary &) = delete;

    template <class Function> Function *Get(const char *name) const {
        return reinterpret_cast<Function *>(Symbol(name));
    }

  private:
    void *Symbol(const char *name) const;
    void *m_handle;
};

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignArgs = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

/// The command record with its documented defaults, made without the library.
class Command {
  public:
    Command();
    Setting *operator->() {
        return m_setting;
    }
    Setting *Get() {
        return m_setting;
    }
    /// Adds banks `fileBank`... of a file at target `bank`...
    Command &Banks(std::uint32_t bank, const std::string &path, std::uint32_t count,
                   std::uint32_t fileBank = 0);

  private:
    std::unique_ptr<std::uint64_t[]> m_memory;
    Setting *m_setting;
};

/// The virtual ISP plug-in on a device of its own, with what it reports.
class VirtualIsp {
  public:
    VirtualIsp();
    ~VirtualIsp();

    int Run(const char *function, Command &command);
    std::string Journal() const;
    /// The flash as the plug-in itself dumps it.
    std::string Dump(std::size_t address, std::size_t length);
    void SetFaults(const std::string &text);

    TempFolder folder;
    EnvGuard device;
    OpenLibrary plugin;
    std::vector<int> progress;
    std::vector<std::wstring> messages;
    /// Called before a progress report is stored.
    void (*onProgress)(int) = nullptr;
};

/// Bytes that differ from bank to bank and are never 0xFF.
std::string Firmware(std::size_t bytes, std::size_t seed = 1);

#endif
