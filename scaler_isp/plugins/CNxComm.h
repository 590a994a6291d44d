#ifndef SCALER_ISP_PLUGINS_CNX_COMM_H
#define SCALER_ISP_PLUGINS_CNX_COMM_H

#include <cstdint>

#include "scaler_isp/abi/CommTypes.h"
#include "scaler_isp/abi/Export.h"

/// Unused by this library, but part of the layout of CNxComm: without it every later member would
/// move. 48 bytes.
struct STRUCT_REG_FORMER_VALUE {
    struct Entry {
        std::uint32_t ulValue = 0;
        std::uint8_t ucValue = 0;
    };

    std::uint8_t ucFlag = 0;
    std::uint8_t ucFormerAddress = 0x6A;
    std::uint32_t ulFormerValue = 0;
    std::uint8_t ucFormerSlave = 0x94;
    Entry stEntries[4];
    std::uint32_t ulLast = 0;
};

/// The communication library: a separately delivered library that reaches the scaler over I2C
/// adapters, DDC/CI, USB, AUX and others. CNxComm opens it by path and offers each of its functions
/// as a virtual method; comm_functions.def lists them all.
///
/// A method passes its arguments unchanged and returns the library's result; without a function it
/// calls nothing and returns the table's value, 6 for a status. The order of the virtual methods is
/// a binary interface with ISP plug-ins.
///
/// Usage: LoadCommDllFile, calls, FreeCommDllFile. The destructor closes nothing. Not thread-safe.
// QUIRK Config_path_goes_to_the_setting_path_function: SetConfigFilePath calls the library's
// SetSettingFilePath.
// QUIRK Master_current_read_ex_calls_the_plain_read: I2CMasterCurrentReadEx calls the library's
// I2CMasterCurrentRead; the symbol I2CMasterCurrentReadEx is required nevertheless.
class SCALER_ISP_API CNxComm {
  public:
    virtual ~CNxComm();

    /// Closes the current library, then opens the one at `path` and looks up its functions.
    /// PRINTS "Failed to open libaray %s error:%s\n" with the path and the loader's message to
    /// standard error if it cannot be opened; nothing if a required function is missing.
    /// RETURNS 1 if loaded; otherwise 0, and nothing stays open.
    virtual int LoadCommDllFile(wchar_t *path);

    /// Closes the library and resets its function pointers; does nothing if none is loaded.
    virtual void FreeCommDllFile();

#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    virtual RESULT METHOD PARAMETERS;
#include "scaler_isp/plugins/comm_functions.def"

    CNxComm();
    CNxComm(const CNxComm &) = delete;
    CNxComm &operator=(const CNxComm &) = delete;

    /// Resets the handle and all function pointers to null without closing anything.
    void Init();

  private:
    STRUCT_REG_FORMER_VALUE m_stRegFormerValue;
    void *m_hCommDll;
#define SCALER_ISP_COMM_FUNCTION(LOOKUP, RESULT, METHOD, SYMBOL, CALLS, NOT_LOADED_RESULT,         \
                                 PARAMETERS, ARGUMENTS)                                            \
    RESULT(*m_pfn##METHOD) PARAMETERS;
#include "scaler_isp/plugins/comm_functions.def"
};

#endif
