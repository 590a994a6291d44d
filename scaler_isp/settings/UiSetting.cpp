#include "scaler_isp/settings/UiSetting.h"

#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/settings/SettingKey.h"

namespace {

constexpr SettingKey kKeys[] = {
#define SCALER_ISP_UI_KEY(SECTION, FIELD)                                                          \
    SCALER_ISP_SETTING_KEY(STRUCT_CP_ISP_UI_SETTING, SECTION, FIELD, 0),
#include "scaler_isp/settings/setting_keys.def"
};

} // namespace

void STRUCT_CP_ISP_UI_SETTING::LoadUISetting() {
    CatchAll([&] { LoadKeys(kKeys, ReadBounded(wszSettingFile), *this); });
}
