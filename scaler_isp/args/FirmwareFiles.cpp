#include "scaler_isp/args/CommandFlow.h"

#include <cstdio>
#include <string>

#include "scaler_isp/args/CommandTables.h"
#include "scaler_isp/common/FileBanks.h"
#include "scaler_isp/common/PathResolution.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/common/TextUtil.h"

namespace {

constexpr int kNoStartBank = -1;
constexpr int kLastStartBank = 255;

/// Whether the command programs firmware, or reads a version from firmware files.
bool NeedsFirmware(const CommandRecord &setting) {
    switch (RowOfAction(setting.enumActionType).enumFiles) {
    case ActionFiles::PROGRAM:
        return true;
    case ActionFiles::READ_VERSION:
        return setting.enumVersionLocationType == ENUM_VER_LOC_FWBIN ||
               setting.enumVersionLocationType == ENUM_VER_LOC_FWBINCMD;
    default:
        return false;
    }
}

/// Whether none of the banks [first, first + count) is in the map. A start bank of at most 255 and
/// a count of at most 65,536 do not overflow.
bool BanksAreFree(const FwBankMap &bankMap, unsigned int first, unsigned int count) {
    const auto next = bankMap.lower_bound(first);
    return next == bankMap.end() || next->first - first >= count;
}

void InsertBanks(FwBankMap &bankMap, unsigned int first, unsigned int count,
                 const std::wstring &path) {
    STRUCT_FW_BANK_SETTING bank;
    bank.strFwPath = path;
    const auto next = bankMap.lower_bound(first);
    for (; bank.ulFileBank < count; ++bank.ulFileBank) {
        bankMap.emplace_hint(next, first + bank.ulFileBank, bank);
    }
}

} // namespace

bool AddFirmwareFile(FwBankMap &files, unsigned int entry, const std::string &path) {
    const std::wstring wide = WideFromUtf8(path);
    STRUCT_FW_BANK_SETTING &setting = files[entry];
    if (!setting.strFwPath.IsEmpty()) {
        std::printf("Parameter has been detected two or more times! --fw%d \n",
                    static_cast<int>(entry));
        return false;
    }
    setting.strFwPath = wide;
    return true;
}

bool SetStartBank(FwBankMap &files, unsigned int entry, const std::string &value) {
    const int number = static_cast<int>(entry);
    int bank = 0;
    if (StringtoInt(value, bank) == 0) {
        std::printf("Parameter illegal! --bank%d %s \n", number, value.c_str());
        return false;
    }
    // QUIRK Bank_minus_one_has_its_own_message: -1 marks a missing value, and 0xffffffff has
    // the same 32 bits.
    if (bank == kNoStartBank) {
        std::printf("Parameter illegal, start bank value is loss! --bank%d %s \n", number,
                    value.c_str());
        return false;
    }
    if (bank < 0 || bank > kLastStartBank) {
        std::printf("Parameter out of range 0~255! --bank%d %s\n", number, value.c_str());
        return false;
    }
    files[entry].ulFileBank = static_cast<unsigned int>(bank);
    return true;
}

bool CountFirmwareBanks(std::string &path, const std::string &directory, unsigned int &count) {
    path = ResolveFile(path, directory);
    std::int64_t position = 0;
    if (!FindEndOfFile(path, position)) {
        return false;
    }
    count = BanksOfCommandFile(position);
    return true;
}

bool ExpandFirmwareFiles(const FwBankMap &files, const CommandRecord &setting,
                         const std::string &directory, FwBankMap &bankMap) {
    if (!NeedsFirmware(setting)) {
        return true;
    }
    if (files.empty() && setting.bAutoSearchFW == 0) {
        std::printf("Program fw bin path should not be empty!\n");
        return false;
    }
    for (const auto &[entry, file] : files) {
        std::string path = Utf8FromWide(file.strFwPath);
        unsigned int count = 0;
        if (!CountFirmwareBanks(path, directory, count)) {
            return false;
        }
        // All banks are checked first, so that a rejected file leaves none of its banks in the map.
        if (!BanksAreFree(bankMap, file.ulFileBank, count)) {
            std::printf("Program fw bank duplicate!\n");
            return false;
        }
        InsertBanks(bankMap, file.ulFileBank, count, WideFromUtf8(path));
    }
    return true;
}
