#ifndef SCALER_ISP_SETTINGS_FW_MAP_WRITES_H
#define SCALER_ISP_SETTINGS_FW_MAP_WRITES_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "scaler_isp/settings/IniEdit.h"

/// The writes that store a firmware map, in their order: the count, then three keys per bank.
class FwMapWrites {
  public:
    /// \param count  the value of "fwFileCount"
    /// \param banks  the maximum number of banks to add
    FwMapWrites(unsigned int count, std::size_t banks);
    FwMapWrites(const FwMapWrites &) = delete;
    FwMapWrites &operator=(const FwMapWrites &) = delete;

    /// Adds the keys of the next bank.
    /// \param targetKey  the number in the name of its "TargetBank" key
    /// \param path       must outlive the object
    void AddBank(unsigned int targetKey, unsigned int targetValue, std::wstring_view path);

    /// Writes all keys to section "ISP_Fw" by replacing the file once; see EditIniFile.
    void Save(const std::wstring &iniFile) const;

  private:
    std::wstring_view Number(unsigned int value);
    std::wstring_view Name(unsigned int number, std::wstring_view suffix);

    unsigned int m_banks = 0;
    std::wstring m_characters; ///< all names and numbers; never reallocated
    std::vector<IniWrite> m_writes;
};

#endif
