#include <algorithm>
#include <iterator>

#include "scaler_isp/abi/CommandSetting.h"

// KEPT ClearMapFW_clears_file_bank_and_path_of_the_first_entry_only: the count of 0 marks the other
// entries as unused; their file banks and paths keep what they held.
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
