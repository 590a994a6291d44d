#include <cstdio>
#include <string>

#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/args/ProgrammingActions.h"
#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/FlashBanks.h"
#include "scaler_isp/common/Paths.h"
#include "scaler_isp/common/TextUtil.h"

namespace {

constexpr int kNoStartBank = -1;
constexpr int kLastStartBank = 255;

/// Whether a command of this kind writes firmware, or reads a version out of firmware files.
bool NeedsFirmware(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &setting) {
    const bool readsVersionOfFile = setting.enumActionType == ENUM_ACTION_RECORDVER &&
                                    (setting.enumVersionLocationType == ENUM_VER_LOC_FWBIN ||
                                     setting.enumVersionLocationType == ENUM_VER_LOC_FWBINCMD);
    return readsVersionOfFile || ProgramsFirmware(setting.enumActionType);
}

/// Whether none of the banks [first, first + count) is taken; bank numbers wrap at 32 bits.
bool BanksAreFree(const FwBankMap &bankMap, unsigned int first, unsigned int count) {
    for (unsigned int i = 0; i < count; ++i) {
        if (bankMap.contains(first + i)) {
            return false;
        }
    }
    return true;
}

void InsertBanks(FwBankMap &bankMap, unsigned int first, unsigned int count,
                 const CCpNxString &path) {
    auto hint = bankMap.end();
    for (unsigned int i = 0; i < count; ++i) {
        hint = bankMap.emplace_hint(hint, first + i, STRUCT_FW_BANK_SETTING());
        hint->second.ulFileBank = i;
        hint->second.strFwPath = path;
        ++hint;
    }
}

} // namespace

int CCpIspArgsParse::InsertCommandFwFile(unsigned int entry, const char *path) {
    return ResultOrOnThrow(0, [&] {
        if (path == nullptr) {
            return 0;
        }
        STRUCT_FW_BANK_SETTING &setting = m_mapCommandFw[entry];
        if (!setting.strFwPath.IsEmpty()) {
            std::printf("Parameter has been detected two or more times! --fw%d \n",
                        static_cast<int>(entry));
            return 0;
        }
        setting.strFwPath = m_transform.ConvertStringToWString(path);
        return 1;
    });
}

int CCpIspArgsParse::InsertCommandStartBank(unsigned int entry, std::string value) {
    return ResultOrOnThrow(0, [&] {
        const int number = static_cast<int>(entry);
        int bank = 0;
        if (StringtoInt(value, bank) == 0) {
            std::printf("Parameter illegal! --bank%d %s \n", number, value.c_str());
            return 0;
        }
        // KEPT Bank_minus_one_has_a_message_of_its_own: -1 is the mark for no value, and 0xffffffff
        // is the same 32 bits.
        if (bank == kNoStartBank) {
            std::printf("Parameter illegal, start bank value is loss! --bank%d %s \n", number,
                        value.c_str());
            return 0;
        }
        if (bank < 0 || bank > kLastStartBank) {
            std::printf("Parameter out of range 0~255! --bank%d %s\n", number, value.c_str());
            return 0;
        }
        m_mapCommandFw[entry].ulFileBank = static_cast<unsigned int>(bank);
        return 1;
    });
}

int CCpIspArgsParse::GetFwBankCount(std::string &path, unsigned int &count) {
    return ResultOrOnThrow(0, [&] {
        path = GetFileFullPath(path, m_strCurrentDir);
        if (!CountFlashBanks(path, count)) {
            std::printf("File open fail! %s\n", path.c_str());
            return 0;
        }
        return 1;
    });
}

int CCpIspArgsParse::JudgeFwMap(FwBankMap &bankMap) {
    return ResultOrOnThrow(0, [&] {
        if (!NeedsFirmware(m_stSetting)) {
            return 1;
        }
        if (m_mapCommandFw.empty()) {
            if (m_stSetting.bAutoSearchFW == 0) {
                std::printf("Program fw bin path should not be empty!\n");
                return 0;
            }
            return 1;
        }
        for (auto &[entry, setting] : m_mapCommandFw) {
            std::string path = setting.strFwPath.GetStringBufferBaseOnOS();
            unsigned int count = 0;
            if (GetFwBankCount(path, count) == 0) {
                return 0;
            }
            // Nothing of a file is placed before all of its banks are known to be free.
            if (!BanksAreFree(bankMap, setting.ulFileBank, count)) {
                std::printf("Program fw bank duplicate!\n");
                return 0;
            }
            CCpNxString wide;
            wide = m_transform.ConvertStringToWString(path);
            InsertBanks(bankMap, setting.ulFileBank, count, wide);
        }
        return 1;
    });
}
