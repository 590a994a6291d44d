#ifndef SCALER_ISP_SCALER_ISP_H
#define SCALER_ISP_SCALER_ISP_H

/// \file
/// The complete C++20 API for host tools. C hosts include scaler_isp/OperateScaler.h only.

#include "scaler_isp/OperateScaler.h"
#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/args/ArgsFwSearch.h"
#include "scaler_isp/args/CCpIspArgsParse.h"
#include "scaler_isp/args/CpNxCmdLindParse.h"
#include "scaler_isp/args/FwBankMap.h"
#include "scaler_isp/args/RawArgs.h"
#include "scaler_isp/common/ByteTools.h"
#include "scaler_isp/common/CCpNxString.h"
#include "scaler_isp/common/CCpTransform.h"
#include "scaler_isp/common/CommandText.h"
#include "scaler_isp/common/FlashBanks.h"
#include "scaler_isp/common/Paths.h"
#include "scaler_isp/common/TextUtil.h"
#include "scaler_isp/common/script/RegisterScript.h"
#include "scaler_isp/entry/CommandLineSplit.h"
#include "scaler_isp/entry/Globals.h"
#include "scaler_isp/entry/RunFlow.h"
#include "scaler_isp/plugins/CCpIsp.h"
#include "scaler_isp/plugins/CCpSignVerify.h"
#include "scaler_isp/plugins/CNxComm.h"
#include "scaler_isp/plugins/DeviceLibrary.h"
#include "scaler_isp/settings/FwPathStore.h"
#include "scaler_isp/settings/ProfileStore.h"
#include "scaler_isp/settings/UiSetting.h"
#include "scaler_isp/sign/CCpDigitalSignArgsHandle.h"

#endif
