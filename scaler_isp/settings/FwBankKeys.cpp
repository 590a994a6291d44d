#include "scaler_isp/settings/FwBankKeys.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace {

constexpr std::string_view kCountName = "fwFileCount";
constexpr std::string_view kPrefix = "fw";

/// The keys of a bank in their order, and what follows the number in their names.
enum BankKey : std::size_t { kTargetBank, kFileBank, kPath };
constexpr std::array<std::string_view, 3> kSuffixes = {"_TargetBank", "_FileBank", "_Path"};

struct Place {
    std::size_t bank;
    BankKey key;
};

Place PlaceOf(std::size_t index) {
    return {(index - 1) / kSuffixes.size(), static_cast<BankKey>((index - 1) % kSuffixes.size())};
}

std::size_t IndexOf(std::size_t bank, BankKey key) {
    return 1 + bank * kSuffixes.size() + key;
}

/// Takes a number off the front of a name. False where AppendDecimal writes it otherwise.
bool TakeDecimal(std::string_view &name, unsigned int &number) {
    constexpr std::int64_t kMost = std::numeric_limits<int>::max();
    const bool negative = name.starts_with('-');
    name.remove_prefix(negative ? 1 : 0);
    const bool zero = name.starts_with('0');
    std::int64_t value = 0;
    std::size_t digits = 0;
    for (; digits < name.size() && name[digits] >= '0' && name[digits] <= '9'; ++digits) {
        value = std::min(10 * value + (name[digits] - '0'), kMost + 2);
    }
    name.remove_prefix(digits);
    number = static_cast<unsigned int>(negative ? -value : value);
    return zero ? digits == 1 && !negative : digits > 0 && value <= kMost + (negative ? 1 : 0);
}

} // namespace

void AppendDecimal(int number, std::string &text) {
    const auto bits = static_cast<unsigned int>(number);
    unsigned int rest = number < 0 ? 0U - bits : bits;
    std::array<char, kLongestDecimal> digits{};
    std::size_t first = digits.size();
    do {
        digits[--first] = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    if (number < 0) {
        digits[--first] = '-';
    }
    text.append(digits.begin() + first, digits.end());
}

FwBankKeys::FwBankKeys(unsigned int count, std::vector<Bank> banks)
    : m_count(count), m_banks(std::move(banks)) {
    for (std::size_t i = 1; i < m_banks.size(); ++i) {
        m_ascending = m_ascending && m_banks[i].nTargetKey == m_banks[i - 1].nTargetKey + 1;
    }
    for (std::size_t i = 0; !m_ascending && i < m_banks.size(); ++i) {
        m_byTarget.try_emplace(m_banks[i].nTargetKey, Named{i, i}).first->second.last = i;
    }
}

std::size_t FwBankKeys::Count() const {
    return IndexOf(m_banks.size(), kTargetBank);
}

void FwBankKeys::AppendName(std::size_t index, std::string &text) const {
    if (index == 0) {
        text += kCountName;
        return;
    }
    const auto [bank, key] = PlaceOf(index);
    text += kPrefix;
    AppendDecimal(static_cast<int>(key == kTargetBank ? m_banks[bank].nTargetKey : bank), text);
    text += kSuffixes[key];
}

FwBankKeys::Value FwBankKeys::ValueOf(std::size_t index) const {
    if (index == 0) {
        return static_cast<int>(m_count);
    }
    const auto [bank, key] = PlaceOf(index);
    switch (key) {
    case kTargetBank:
        return static_cast<int>(m_banks[bank].nTargetValue);
    case kFileBank:
        return static_cast<int>(bank);
    case kPath:
        break;
    }
    return m_banks[bank].path;
}

std::size_t FwBankKeys::Find(std::string_view name) const {
    if (name == kCountName) {
        return 0;
    }
    unsigned int number = 0;
    if (!name.starts_with(kPrefix)) {
        return kNone;
    }
    name.remove_prefix(kPrefix.size());
    if (!TakeDecimal(name, number)) {
        return kNone;
    }
    const auto suffix = std::find(kSuffixes.begin(), kSuffixes.end(), name);
    if (suffix == kSuffixes.end()) {
        return kNone;
    }
    const auto key = static_cast<BankKey>(suffix - kSuffixes.begin());
    // Of the two others a negative number is above every bank.
    const std::size_t bank = key == kTargetBank ? BanksOfTarget(number).first : number;
    return bank < m_banks.size() ? IndexOf(bank, key) : kNone;
}

std::size_t FwBankKeys::FirstOfName(std::size_t index) const {
    if (m_ascending || index == 0 || PlaceOf(index).key != kTargetBank) {
        return index;
    }
    return IndexOf(BanksOfTarget(m_banks[PlaceOf(index).bank].nTargetKey).first, kTargetBank);
}

std::size_t FwBankKeys::LastOfName(std::size_t index) const {
    if (m_ascending || index == 0 || PlaceOf(index).key != kTargetBank) {
        return index;
    }
    return IndexOf(BanksOfTarget(m_banks[PlaceOf(index).bank].nTargetKey).last, kTargetBank);
}

FwBankKeys::Named FwBankKeys::BanksOfTarget(unsigned int number) const {
    if (m_ascending) {
        const std::size_t bank = m_banks.empty() ? 0 : number - m_banks.front().nTargetKey;
        return {bank, bank};
    }
    const auto found = m_byTarget.find(number);
    return found != m_byTarget.end() ? found->second : Named{m_banks.size(), m_banks.size()};
}
