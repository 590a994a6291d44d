#include <algorithm>
#include <iterator>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/settings/FwMapWrites.h"
#include "scaler_isp/settings/SettingKey.h"

namespace {

constexpr SettingKey kKeys[] = {
#define SCALER_ISP_COMMAND_KEY(SECTION, FIELD, DEFAULT)                                            \
    SCALER_ISP_SETTING_KEY(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, SECTION, FIELD, DEFAULT),
#include "scaler_isp/settings/setting_keys.def"
};

} // namespace

void STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING::LoadSetting() {
    CatchAll([&] { LoadKeys(kKeys, ReadBounded(wszSettingFile), *this); });
}

// QUIRK SaveSetting_numbers_the_target_key_by_its_bank: fw<target bank>_TargetBank holds the index
// of the entry, the reverse of the keys that SaveFwPathFromFile writes.
void STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING::SaveSetting() {
    CatchAll([&] {
        // After a rejected copy the count is larger than the arrays.
        const unsigned int count = std::min<unsigned int>(stMapFw.ulFwCount, SCALER_ISP_MAX_BANKS);
        FwMapWrites writes(stMapFw.ulFwCount, count);
        for (unsigned int i = 0; i < count; ++i) {
            writes.AddBank(stMapFw.ulTargetBank[i], i, ViewBounded(stMapFw.stFwBank[i].wszFwPath));
        }
        writes.Save(ReadBounded(wszSettingFile));
    });
}

// QUIRK ClearMapFW_clears_file_bank_and_path_of_the_first_entry_only: the other entries keep their
// file banks and paths; the count of 0 marks them as unused.
void STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING::ClearMapFW() {
    stMapFw.ulFwCount = 0;
    std::fill(std::begin(stMapFw.ulTargetBank), std::end(stMapFw.ulTargetBank), 0U);
    for (STRUCT_C_STYLE_FW_BANK_SETTING &bank : stMapFw.stFwBank) {
        bank.ullBankValue = 0;
    }
    stMapFw.stFwBank[0].ulFileBank = 0;
    std::fill(std::begin(stMapFw.stFwBank[0].wszFwPath), std::end(stMapFw.stFwBank[0].wszFwPath),
              L'\0');
}
