#ifndef SCALER_ISP_SETTINGS_FW_BANK_KEYS_H
#define SCALER_ISP_SETTINGS_FW_BANK_KEYS_H

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

/// The keys that a firmware map has in section "ISP_Fw" of a settings file, in the order in which
/// they are written: the count, then three keys a bank. An index stands for one write. Names are
/// computed both ways, from index to name and back, so that a map of any size needs no table of
/// them.
class FwBankKeys {
  public:
    static constexpr std::wstring_view kSection = L"ISP_Fw";
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    struct Bank {
        unsigned int nTargetKey;   ///< the number in the name of its "TargetBank" key
        unsigned int nTargetValue; ///< what is written there
        std::wstring_view path;    ///< without NUL
    };

    /// A number is written as AppendDecimal does it.
    using Value = std::variant<int, std::wstring_view>;

    /// \param count  the value of "fwFileCount"
    /// \param banks  REQUIRES: paths outlive the object.
    FwBankKeys(unsigned int count, std::vector<Bank> banks);

    /// How many writes there are.
    std::size_t Count() const;

    void AppendName(std::size_t index, std::string &text) const;
    Value ValueOf(std::size_t index) const;

    /// The first write of a name, or kNone.
    std::size_t Find(std::string_view name) const;

    /// The first and the last write that have the name of this one. Only target banks share names.
    std::size_t FirstOfName(std::size_t index) const;
    std::size_t LastOfName(std::size_t index) const;

  private:
    struct Named {
        std::size_t first;
        std::size_t last;
    };

    /// The banks whose target key has the number; as many as there are banks, where none has it.
    Named BanksOfTarget(unsigned int number) const;

    unsigned int m_count;
    std::vector<Bank> m_banks;
    bool m_ascending = true; ///< each target key is the next number, so that it tells its bank
    std::unordered_map<unsigned int, Named> m_byTarget; ///< where they are not
};

/// UNITS: characters of the longest number.
constexpr std::size_t kLongestDecimal = std::numeric_limits<int>::digits10 + 2;

/// Appends a signed decimal.
void AppendDecimal(int number, std::string &text);

#endif
