#ifndef SCALER_ISP_SETTINGS_FW_BANK_KEYS_H
#define SCALER_ISP_SETTINGS_FW_BANK_KEYS_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The keys that a firmware map has in section "ISP_Fw" of a settings file, collected and then
/// written in one batch.
class FwBankKeys {
  public:
    explicit FwBankKeys(std::size_t banks);

    /// Adds "fwFileCount".
    void AddCount(unsigned int count);

    /// Adds one of the three keys of a bank, "fw<number>_…". The path ends at its first NUL.
    /// REQUIRES: a path lives until WriteTo.
    void AddTargetBank(unsigned int number, unsigned int value);
    void AddFileBank(unsigned int number, unsigned int value);
    void AddPath(unsigned int number, std::wstring_view path);

    void WriteTo(const std::wstring &iniFile) const;

  private:
    /// Where a key and a decimal value stand in m_text; a path stands elsewhere.
    struct Entry {
        std::size_t nKey;
        std::size_t nValue;
        std::size_t nEnd;
        std::wstring_view path;
    };

    void Add(std::size_t key, unsigned int value);
    std::size_t MakeKey(unsigned int number, std::wstring_view suffix);

    std::wstring m_text; ///< all keys and numbers, so that a bank costs no memory of its own
    std::vector<Entry> m_entries;
};

#endif
