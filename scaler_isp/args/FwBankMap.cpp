#include "scaler_isp/args/FwBankMap.h"

#include <algorithm>
#include <string_view>

#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/ExceptionBarrier.h"

int CopyMapFwToCStyleStruct(STRUCT_C_STYLE_MAP_FW &record, const FwBankMap &bankMap) {
    record.ulFwCount = static_cast<std::uint32_t>(bankMap.size());
    if (bankMap.size() > SCALER_ISP_MAX_BANKS) {
        return 0;
    }
    std::size_t i = 0;
    for (const auto &[targetBank, bank] : bankMap) {
        STRUCT_C_STYLE_FW_BANK_SETTING &entry = record.stFwBank[i];
        record.ulTargetBank[i] = targetBank;
        entry.ullBankValue = bank.ullBankValue;
        entry.ulFileBank = bank.ulFileBank;
        CopyBounded(entry.wszFwPath, std::wstring_view(bank.strFwPath));
        ++i;
    }
    return 1;
}

void CopyCStyleStructToMapFw(FwBankMap &bankMap, const STRUCT_C_STYLE_MAP_FW &record) {
    CatchAll([&] {
        bankMap.clear();
        // After a rejected copy the count is larger than the arrays.
        const std::size_t count = std::min<std::size_t>(record.ulFwCount, SCALER_ISP_MAX_BANKS);
        for (std::size_t i = 0; i < count; ++i) {
            const STRUCT_C_STYLE_FW_BANK_SETTING &entry = record.stFwBank[i];
            STRUCT_FW_BANK_SETTING bank;
            bank.ullBankValue = entry.ullBankValue;
            bank.ulFileBank = entry.ulFileBank;
            bank.strFwPath = ReadBounded(entry.wszFwPath);
            bankMap.emplace(record.ulTargetBank[i], bank);
        }
    });
}
