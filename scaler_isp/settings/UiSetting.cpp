#include "scaler_isp/settings/UiSetting.h"

#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/settings/SettingKey.h"

namespace {

#define SCALER_ISP_UI_KEY(SECTION, FIELD)                                                          \
    SCALER_ISP_SETTING_KEY(STRUCT_CP_ISP_UI_SETTING, SECTION, FIELD, 0)

constexpr SettingKey kKeys[] = {
    SCALER_ISP_UI_KEY(L"ISP_Basic", bShowEraseUI),
    SCALER_ISP_UI_KEY(L"ISP_Basic", bShowFWInfoUI),
    SCALER_ISP_UI_KEY(L"ISP_Basic", bShowFWVersion),
    SCALER_ISP_UI_KEY(L"ISP_Basic", bShowMergeFW),
    SCALER_ISP_UI_KEY(L"ISP_Basic", bShowDualBankFW),
    SCALER_ISP_UI_KEY(L"ISP_Basic", bShowResetMCU),
    SCALER_ISP_UI_KEY(L"ISP_Basic", bShowEnterIspMode),
    SCALER_ISP_UI_KEY(L"ISP_Flash", bShowDumpFlash),
};

} // namespace

void STRUCT_CP_ISP_UI_SETTING::LoadUISetting() {
    CatchAll([&] { LoadKeys(kKeys, ReadBounded(wszSettingFile), *this); });
}
