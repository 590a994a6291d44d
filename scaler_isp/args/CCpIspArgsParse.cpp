#include "scaler_isp/args/CCpIspArgsParse.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "scaler_isp/abi/NewRecord.h"
#include "scaler_isp/args/CommandFlow.h"
#include "scaler_isp/args/CommandTables.h"
#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/PathResolution.h"

namespace {

/// 1 if the step accepts, else 0. Only here, at the functions that other binaries call, does an
/// exception become a rejection.
template <class Step> int OneIfAccepted(Step &&step) {
    return CatchAll(0, [&] { return step() ? 1 : 0; });
}

std::uint32_t Bits(int mask) {
    return static_cast<std::uint32_t>(mask);
}

ArgsDirectories Directories(const std::string &current) {
    return {current, FindLibraryDirectory()};
}

} // namespace

void FindFile(const std::string &dir, std::vector<std::string> &names, std::string ext) {
    CatchAll([&] {
        const std::vector<std::string> found = ListNames(dir, ext);
        names.insert(names.end(), found.begin(), found.end());
    });
}

void GetDefaultSettingFilePathName(wchar_t *buf, unsigned int size) {
    if (buf == nullptr || size == 0) {
        return;
    }
    *buf = L'\0';
    CatchAll([&] {
        const CCpNxString path = DefaultSettingFile(FindLibraryDirectory());
        if (size > path.size()) {
            buf[path.copy(buf, path.size())] = L'\0';
        }
    });
}

CCpIspArgsParse::CCpIspArgsParse() {
    std::memset(static_cast<void *>(&m_stSetting), 0, sizeof m_stSetting);
    StoreDefaultsInZeroedRecord(m_stSetting);
}

CCpIspArgsParse::CCpIspArgsParse(InZeroedMemory) noexcept {
    StoreDefaultsInZeroedRecord(m_stSetting);
}

void CCpIspArgsParse::SetCurrentDir(const std::string &directory) {
    m_strCurrentDir = directory;
}

std::string CCpIspArgsParse::GetCurrentDir() const {
    return m_strCurrentDir;
}

int CCpIspArgsParse::ParseArgs(int argc, const char *const *argv) {
    return OneIfAccepted([&] { return Parse(argc, argv, FindLibraryDirectory()); });
}

bool CCpIspArgsParse::Parse(int argc, const char *const *argv, const LibraryDirectory &library) {
    // The scan reorders its vector and the caller's may be constant, so it gets a copy of the
    // pointers. The strings are never written to.
    std::vector<char *> arguments;
    if (argv != nullptr && argc > 0) {
        std::transform(argv, argv + argc, std::back_inserter(arguments),
                       [](const char *argument) { return const_cast<char *>(argument); });
    }
    const int count = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    const ArgsDirectories directories{m_strCurrentDir, library};
    RawArgs args;
    return ScanArguments(count, arguments.data(), directories, args, m_mapCommandFw,
                         m_stSetting.wszSettingFile) &&
           ValidateArguments(args, directories, m_mapCommandFw, m_stSetting, m_stDigitalSignArgs);
}

int CCpIspArgsParse::JudgeArgument(STRUCT_CP_ISP_CMD_ARGS &args) {
    return OneIfAccepted([&] {
        return ValidateArguments(args, Directories(m_strCurrentDir), m_mapCommandFw, m_stSetting,
                                 m_stDigitalSignArgs);
    });
}

// Copied as memory, so that padding and the bytes after a terminator are preserved.
void CCpIspArgsParse::SetISPCmdSetting(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &setting) {
    std::memmove(&m_stSetting, &setting, sizeof m_stSetting);
}

STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING CCpIspArgsParse::GetISPCmdSetting() const {
    return m_stSetting;
}

const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &CCpIspArgsParse::Setting() const {
    return m_stSetting;
}

void CCpIspArgsParse::SetDigitalSignArgs(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &args) {
    std::memmove(&m_stDigitalSignArgs, &args, sizeof m_stDigitalSignArgs);
}

STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS CCpIspArgsParse::GetDigitalSignArgs() const {
    return m_stDigitalSignArgs;
}

const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &CCpIspArgsParse::DigitalSignArgs() const {
    return m_stDigitalSignArgs;
}

std::string CCpIspArgsParse::GetOneBootFactoryModeBootFw() const {
    return ReadBounded(m_stSetting.szBootFwPath);
}

int CCpIspArgsParse::InsertCommandFwFile(unsigned int entry, const char *path) {
    return OneIfAccepted(
        [&] { return path != nullptr && AddFirmwareFile(m_mapCommandFw, entry, path); });
}

int CCpIspArgsParse::InsertCommandStartBank(unsigned int entry, std::string value) {
    return OneIfAccepted([&] { return SetStartBank(m_mapCommandFw, entry, value); });
}

int CCpIspArgsParse::JudgeFwMap(FwBankMap &bankMap) {
    return OneIfAccepted(
        [&] { return ExpandFirmwareFiles(m_mapCommandFw, m_stSetting, m_strCurrentDir, bankMap); });
}

int CCpIspArgsParse::GetFwBankCount(std::string &path, unsigned int &count) {
    return OneIfAccepted([&] { return CountFirmwareBanks(path, m_strCurrentDir, count); });
}

int CCpIspArgsParse::GetBinNameFromPrefixSetting(std::string &fwName, std::string settingFile) {
    return OneIfAccepted([&] {
        return FindFirmwareByPrefix(Directories(m_strCurrentDir), settingFile,
                                    m_stSetting.wszSettingFile, fwName);
    });
}

int CCpIspArgsParse::GetUserDefinedInfoFromTxt(STRUCT_CP_GET_USER_DEFINED_BIN_INFO &info) {
    return OneIfAccepted([&] { return ReadUserDefinedInfo(Directories(m_strCurrentDir), info); });
}

int CCpIspArgsParse::FindBinUseVersionInfo(std::vector<std::string> &matches,
                                           const std::vector<std::string> &candidates,
                                           ENUM_FIND_BIN_MODE_USE_VER_MODE &mode,
                                           const std::string &version,
                                           const std::string &capability) {
    return OneIfAccepted(
        [&] { return FilterByVersion(matches, candidates, mode, version, capability); });
}

int CCpIspArgsParse::GetUserDefinedBinNameFromTxt(std::string &fwName) {
    return OneIfAccepted([&] { return FindFirmwareByInfo(Directories(m_strCurrentDir), fwName); });
}

int CCpIspArgsParse::JudgeUniqueAttribute(int mask) {
    return IsOneBit(Bits(mask)) ? 1 : 0;
}

void CCpIspArgsParse::GetActionType(int mask, ENUM_CP_ISPTOOL_ACTION_TYPE &action) {
    action = ActionOfBit(Bits(mask));
}

void CCpIspArgsParse::GetDigitalSignatureType(int mask, ENUM_CP_DIGITAL_SIGNATURE_TYPE &type) {
    type = SignatureTypeOfBit(Bits(mask));
}

int CCpIspArgsParse::GetDigitalSignatureSwMode(std::string text,
                                               ENUM_CP_DIGITAL_SIGNATURE_SW_MODE &mode) {
    return OneIfAccepted([&] { return ConvertSignatureMode(text, mode); });
}

int CCpIspArgsParse::GetDigitalSignatureHwMode(std::string text,
                                               ENUM_CP_DIGITAL_SIGNATURE_HW_MODE &mode) {
    return OneIfAccepted([&] { return ConvertSignatureMode(text, mode); });
}

void CCpIspArgsParse::GetMergeFwInfoMode(int mask, ENUM_CP_MERGE_FW_INFO_MODE &mode) {
    mode = MergeModeOfMask(Bits(mask));
}

int CCpIspArgsParse::GetMergeFwInfoCmd(std::string text, STRUCT_MERGE_FW_INFO_SETTING &setting) {
    return OneIfAccepted([&] { return ConvertMergeInfo(text, setting); });
}

int CCpIspArgsParse::GetVersionType(int mask, ENUM_VERSION_LOCATION_TYPE &location,
                                    ENUM_USER_DEFINED_VERSION_TYPE &mode, std::string text) {
    return OneIfAccepted([&] { return ConvertVersionLocation(Bits(mask), text, location, mode); });
}

int CCpIspArgsParse::GetReadVersionFromFlashSetting(
    STRUCT_CP_ISP_CMD_ARGS &args, STRUCT_READ_VERSION_FROM_FLASH_SETTING &setting) {
    return OneIfAccepted([&] { return ConvertFlashVersion(args, setting); });
}

int CCpIspArgsParse::GetCommID(std::string text, STRUCT_ENUM_COMM_ID &id) {
    return OneIfAccepted([&] { return ConvertCommId(text, id); });
}

int CCpIspArgsParse::GetSlaveAddress(std::string text, int &state, unsigned char &address) {
    return OneIfAccepted([&] { return ConvertSlaveAddress(text, state, address); });
}

int CCpIspArgsParse::GetUserFlag(std::string addr, std::string data, STRUCT_FLAG_SETTING &setting) {
    return OneIfAccepted([&] { return ConvertUserFlag(addr, data, setting); });
}

int CCpIspArgsParse::GetDumpFlashCmd(STRUCT_CP_ISP_CMD_ARGS &args,
                                     STRUCT_DUMP_FLASH_SETTING &setting) {
    return OneIfAccepted([&] { return ConvertDumpRange(args, setting); });
}

int CCpIspArgsParse::GetI2CCmdFromString(std::vector<unsigned char> &bytes, std::string text) {
    return OneIfAccepted([&] { return ConvertI2CBytes(text, bytes); });
}

int CCpIspArgsParse::GetI2CWriteActionTypeSetting(STRUCT_CP_ISP_CMD_ARGS &args,
                                                  STRUCT_I2C_WRITE_ACTION_TYPE_SETTING &setting) {
    return OneIfAccepted([&] { return ConvertI2CWrite(args, setting); });
}
