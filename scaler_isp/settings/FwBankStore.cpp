#include "scaler_isp/settings/FwBankStore.h"

#include <cstddef>
#include <cstdio>

#include "scaler_isp/common/CCpTransform.h"
#include "scaler_isp/settings/FwBankEdit.h"
#include "scaler_isp/settings/ProfileFile.h"

void WriteFwBankKeys(const FwBankKeys &keys, const std::wstring &iniFile) {
    const std::string path = CCpTransform().ConvertUnicodeStringToUTF8(iniFile);
    const ProfileBytes before = ReadProfileFile(path);
    NativeEncoding encoding;
    std::string after;
    if (EditFwBanks(encoding, before.bytes, keys, after) != 0 &&
        RewriteProfileFile(path, after, before) == RewriteResult::CannotOpen) {
        for (auto left = CountPossibleFwBanks(encoding, before.bytes, keys); left > 0; --left) {
            std::printf("%s", kProfileOpenError);
        }
    }
}
