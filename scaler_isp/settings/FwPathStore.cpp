#include "scaler_isp/settings/FwPathStore.h"

#include <utility>
#include <vector>

#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/FlashBanks.h"
#include "scaler_isp/settings/FwBankStore.h"

void SaveFwPathFromFile(CCpNxString fwPath, CCpNxString iniPath, unsigned int startBank) {
    NothingOnThrow([&] {
        unsigned int count = 0;
        if (GetFwBankCount(fwPath, count) == 0) {
            return;
        }
        std::vector<FwBankKeys::Bank> banks;
        banks.reserve(count);
        for (unsigned int i = 0; i < count; ++i) {
            banks.push_back({i, startBank + i, fwPath.c_str()});
        }
        WriteFwBankKeys({count, std::move(banks)}, iniPath);
    });
}
