#ifndef SCALER_ISP_SETTINGS_FW_BANK_KEYS_H
#define SCALER_ISP_SETTINGS_FW_BANK_KEYS_H

#include <cstddef>
#include <string>
#include <vector>

#include "scaler_isp/settings/ProfileBatch.h"

/// The keys that a firmware map has in section "ISP_Fw" of a settings file, collected and then
/// written in one batch.
class FwBankKeys {
  public:
    explicit FwBankKeys(std::size_t banks);

    /// Adds "fwFileCount".
    void AddCount(unsigned int count);

    /// Adds the three keys of one bank. Each value has a number of its own in its key's name.
    void AddTargetBank(unsigned int number, unsigned int value);
    void AddFileBank(unsigned int number, unsigned int value);
    void AddPath(unsigned int number, const std::wstring &path);

    void WriteTo(const std::wstring &iniFile) const;

  private:
    void AddBankKey(unsigned int number, const wchar_t *suffix, const std::wstring &value);

    std::vector<ProfileWrite> m_writes;
};

#endif
