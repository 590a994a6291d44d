#include "scaler_isp/settings/FwPathStore.h"

#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/FlashBanks.h"
#include "scaler_isp/settings/FwBankKeys.h"

void SaveFwPathFromFile(CCpNxString fwPath, CCpNxString iniPath, unsigned int startBank) {
    NothingOnThrow([&] {
        unsigned int count = 0;
        if (GetFwBankCount(fwPath, count) == 0) {
            return;
        }
        FwBankKeys keys(count);
        keys.AddCount(count);
        for (unsigned int i = 0; i < count; ++i) {
            keys.AddTargetBank(i, startBank + i);
            keys.AddFileBank(i, i);
            keys.AddPath(i, fwPath);
        }
        keys.WriteTo(iniPath);
    });
}
