#include "scaler_isp/settings/FwPathStore.h"

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/FileBanks.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/settings/FwMapWrites.h"

void SaveFwPathFromFile(CCpNxString fwPath, CCpNxString iniPath, unsigned int startBank) {
    CatchAll([&] {
        unsigned int count = 0;
        if (!CountBanksOfFile(Utf8FromWide(fwPath), count)) {
            return;
        }
        FwMapWrites writes(count, count);
        for (unsigned int i = 0; i < count; ++i) {
            writes.AddBank(i, startBank + i, fwPath.c_str());
        }
        writes.Save(iniPath);
    });
}
