#include "scaler_isp/args/CCpIspArgsParse.h"

#include <cstring>

#include "scaler_isp/abi/RecordGaps.h"
#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/BoundedCopy.h"

CCpIspArgsParse::CCpIspArgsParse() {
    ClearGaps(m_stSetting);
}

void CCpIspArgsParse::SetCurrentDir(const std::string &directory) {
    NothingOnThrow([&] { m_strCurrentDir = directory; });
}

std::string CCpIspArgsParse::GetCurrentDir() const {
    return m_strCurrentDir;
}

// Copied as memory, so that padding and the bytes behind a terminator arrive too.
void CCpIspArgsParse::SetISPCmdSetting(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &setting) {
    std::memmove(&m_stSetting, &setting, sizeof m_stSetting);
}

STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING CCpIspArgsParse::GetISPCmdSetting() const {
    return m_stSetting;
}

void CCpIspArgsParse::SetDigitalSignArgs(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &args) {
    std::memmove(&m_stDigitalSignArgs, &args, sizeof m_stDigitalSignArgs);
}

STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS CCpIspArgsParse::GetDigitalSignArgs() const {
    return m_stDigitalSignArgs;
}

std::string CCpIspArgsParse::GetOneBootFactoryModeBootFw() const {
    return ReadBounded(m_stSetting.szBootFwPath);
}
