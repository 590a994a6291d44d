#include "scaler_isp/settings/FwBankKeys.h"

namespace {

constexpr const wchar_t *kSection = L"ISP_Fw";
constexpr std::size_t kKeysOfABank = 3;

// Numbers are written as signed 32-bit decimals.
std::wstring Decimal(unsigned int number) {
    return std::to_wstring(static_cast<int>(number));
}

} // namespace

FwBankKeys::FwBankKeys(std::size_t banks) {
    m_writes.reserve(1 + kKeysOfABank * banks);
}

void FwBankKeys::AddCount(unsigned int count) {
    m_writes.push_back({kSection, L"fwFileCount", Decimal(count)});
}

void FwBankKeys::AddTargetBank(unsigned int number, unsigned int value) {
    AddBankKey(number, L"TargetBank", Decimal(value));
}

void FwBankKeys::AddFileBank(unsigned int number, unsigned int value) {
    AddBankKey(number, L"FileBank", Decimal(value));
}

void FwBankKeys::AddPath(unsigned int number, const std::wstring &path) {
    AddBankKey(number, L"Path", path);
}

void FwBankKeys::AddBankKey(unsigned int number, const wchar_t *suffix, const std::wstring &value) {
    m_writes.push_back({kSection, L"fw" + Decimal(number) + L"_" + suffix, value});
}

void FwBankKeys::WriteTo(const std::wstring &iniFile) const {
    static_cast<void>(WriteProfileBatchW(m_writes, iniFile.c_str()));
}
