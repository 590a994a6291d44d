#include "scaler_isp/settings/FwBankKeys.h"

#include <array>

#include "scaler_isp/settings/ProfileBatch.h"

namespace {

constexpr std::wstring_view kSection = L"ISP_Fw";
constexpr std::size_t kKeysOfABank = 3;
constexpr std::size_t kTextOfAKey = 36; // the longest key and the longest number

/// Appends a number as a signed 32-bit decimal.
void AppendDecimal(std::wstring &text, unsigned int number) {
    const auto value = static_cast<int>(number);
    unsigned int rest = value < 0 ? 0U - number : number;
    std::array<wchar_t, 11> digits{};
    std::size_t first = digits.size();
    do {
        digits[--first] = static_cast<wchar_t>(L'0' + static_cast<int>(rest % 10));
        rest /= 10;
    } while (rest != 0);
    if (value < 0) {
        digits[--first] = L'-';
    }
    text.append(digits.begin() + first, digits.end());
}

} // namespace

FwBankKeys::FwBankKeys(std::size_t banks) {
    m_entries.reserve(1 + kKeysOfABank * banks);
    m_text.reserve(m_entries.capacity() * kTextOfAKey);
}

void FwBankKeys::AddCount(unsigned int count) {
    const std::size_t key = m_text.size();
    m_text += L"fwFileCount";
    Add(key, count);
}

void FwBankKeys::AddTargetBank(unsigned int number, unsigned int value) {
    Add(MakeKey(number, L"TargetBank"), value);
}

void FwBankKeys::AddFileBank(unsigned int number, unsigned int value) {
    Add(MakeKey(number, L"FileBank"), value);
}

void FwBankKeys::AddPath(unsigned int number, std::wstring_view path) {
    const std::size_t key = MakeKey(number, L"Path");
    m_entries.push_back({key, m_text.size(), m_text.size(), path.substr(0, path.find(L'\0'))});
}

void FwBankKeys::Add(std::size_t key, unsigned int value) {
    const std::size_t place = m_text.size();
    AppendDecimal(m_text, value);
    m_entries.push_back({key, place, m_text.size(), {}});
}

std::size_t FwBankKeys::MakeKey(unsigned int number, std::wstring_view suffix) {
    const std::size_t key = m_text.size();
    m_text += L"fw";
    AppendDecimal(m_text, number);
    m_text += L'_';
    m_text += suffix;
    return key;
}

void FwBankKeys::WriteTo(const std::wstring &iniFile) const {
    const std::wstring_view text = m_text;
    std::vector<KeyWrite<wchar_t>> writes;
    writes.reserve(m_entries.size());
    for (const Entry &entry : m_entries) {
        const bool number = entry.nEnd > entry.nValue;
        writes.push_back(
            {kSection, text.substr(entry.nKey, entry.nValue - entry.nKey),
             number ? text.substr(entry.nValue, entry.nEnd - entry.nValue) : entry.path});
    }
    static_cast<void>(WriteProfileBatchW(writes, iniFile.c_str()));
}
