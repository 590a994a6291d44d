#ifndef SCALER_ISP_ARGS_CCP_ISP_ARGS_PARSE_H
#define SCALER_ISP_ARGS_CCP_ISP_ARGS_PARSE_H

#include <string>
#include <vector>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/abi/Export.h"
#include "scaler_isp/args/ArgsFwSearch.h"
#include "scaler_isp/args/FwBankMap.h"
#include "scaler_isp/args/RawArgs.h"
#include "scaler_isp/common/CCpTransform.h"

struct LibraryDirectory;

/// Turns one command line into the two records that the plug-ins receive.
///
/// ParseArgs scans the arguments into a raw record, collects the firmware files and validates
/// everything. The other operations are its parts. Unless said otherwise an operation returns 1 for
/// accepted and 0 for refused, and PRINTS its message to standard output before it refuses; what
/// was stored before stays stored. 0 without a message may also mean that the system failed (no
/// memory, no descriptor, an I/O error): never does such a failure leave an empty or default value
/// in a record that was accepted.
///
/// A parser is made for one line. Used again, it keeps what earlier lines have left: the firmware
/// files and start banks (so a second --fw is refused), and every field of the records that the new
/// line does not set.
///
/// The object holds a command record: keep it on the heap.
class SCALER_ISP_API CCpIspArgsParse {
  public:
    CCpIspArgsParse();

    /// The folder, ending in "/", against which relative names are made full and which --searchfw
    /// searches. UTF-8.
    void SetCurrentDir(const std::string &directory);
    std::string GetCurrentDir() const;

    /// Scans and judges a whole command line. argv[0] is the program's name; argv is not changed.
    /// After a refused line both records hold what was stored until then.
    /// `--searchfw prefix` stores the path of the settings file in the command record as soon as it
    /// is scanned, even if the line is refused later.
    int ParseArgs(int argc, const char *const *argv);

    /// The same for the library itself, with its directory as the call has found it. Throws what
    /// ParseArgs turns into 0.
    SCALER_ISP_INTERNAL bool Parse(int argc, const char *const *argv,
                                   const LibraryDirectory &library);

    /// Checks the raw record step by step and fills both records.
    int JudgeArgument(STRUCT_CP_ISP_CMD_ARGS &args);

    /// Whole copies, byte for byte.
    void SetISPCmdSetting(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &setting);
    STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING GetISPCmdSetting() const;
    void SetDigitalSignArgs(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &args);
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS GetDigitalSignArgs() const;

    /// szBootFwPath of the command record.
    std::string GetOneBootFactoryModeBootFw() const;

    // Firmware files and banks

    /// Notes the firmware file of an entry; refuses a second one, and null.
    int InsertCommandFwFile(unsigned int entry, const char *path);

    /// Notes the start bank of an entry, 0..255.
    // QUIRK Repeated_bank_keeps_the_last_value: a repeated --bankN replaces the value silently,
    // while a repeated --fwN is refused.
    int InsertCommandStartBank(unsigned int entry, std::string value);

    /// Expands the noted files into 64 KiB banks; refuses overlaps and unreadable files. Actions
    /// that need no firmware are accepted with an empty map.
    int JudgeFwMap(FwBankMap &bankMap);

    /// Number of 64 KiB banks of a file; makes `path` full first.
    int GetFwBankCount(std::string &path, unsigned int &count);

    // Firmware search

    /// The one file whose name begins with the prefix in the settings file. Stores the path of the
    /// settings file in the command record first if there is any firmware file.
    /// \param settingFile  empty: IspSetting.ini in the library's directory.
    int GetBinNameFromPrefixSetting(std::string &fwName, std::string settingFile);

    int GetUserDefinedInfoFromTxt(STRUCT_CP_GET_USER_DEFINED_BIN_INFO &info);
    int FindBinUseVersionInfo(std::vector<std::string> &matches,
                              const std::vector<std::string> &candidates,
                              ENUM_FIND_BIN_MODE_USE_VER_MODE &mode, const std::string &version,
                              const std::string &capability);

    /// The one file whose name matches IspUserDefined.txt.
    int GetUserDefinedBinNameFromTxt(std::string &fwName);

    // Strings to values. An empty string is accepted and leaves the value alone, with these
    // exceptions: GetCommID stores COMM_ID_NONE; GetVersionType and GetUserFlag's `data` take it as
    // 0 and as no bytes (0 is no mode of user-defined versions, so it is refused there); and
    // GetI2CCmdFromString refuses it. GetReadVersionFromFlashSetting, GetDumpFlashCmd,
    // GetI2CCmdFromString and GetI2CWriteActionTypeSetting refuse without a message. The first of
    // these accepts `args` without any of its values, and the second takes an absent address as 0.

    int JudgeUniqueAttribute(int mask); ///< 1 when exactly one bit is set
    void GetActionType(int mask, ENUM_CP_ISPTOOL_ACTION_TYPE &action);
    void GetDigitalSignatureType(int mask, ENUM_CP_DIGITAL_SIGNATURE_TYPE &type);
    int GetDigitalSignatureSwMode(std::string text, ENUM_CP_DIGITAL_SIGNATURE_SW_MODE &mode);
    int GetDigitalSignatureHwMode(std::string text, ENUM_CP_DIGITAL_SIGNATURE_HW_MODE &mode);
    void GetMergeFwInfoMode(int mask, ENUM_CP_MERGE_FW_INFO_MODE &mode);
    int GetMergeFwInfoCmd(std::string text, STRUCT_MERGE_FW_INFO_SETTING &setting);
    int GetVersionType(int mask, ENUM_VERSION_LOCATION_TYPE &location,
                       ENUM_USER_DEFINED_VERSION_TYPE &mode, std::string text);
    int GetReadVersionFromFlashSetting(STRUCT_CP_ISP_CMD_ARGS &args,
                                       STRUCT_READ_VERSION_FROM_FLASH_SETTING &setting);
    int GetCommID(std::string text, STRUCT_ENUM_COMM_ID &id);
    int GetSlaveAddress(std::string text, int &state, unsigned char &address);
    int GetUserFlag(std::string addr, std::string data, STRUCT_FLAG_SETTING &setting);
    int GetDumpFlashCmd(STRUCT_CP_ISP_CMD_ARGS &args, STRUCT_DUMP_FLASH_SETTING &setting);
    int GetI2CWriteActionTypeSetting(STRUCT_CP_ISP_CMD_ARGS &args,
                                     STRUCT_I2C_WRITE_ACTION_TYPE_SETTING &setting);
    int GetI2CCmdFromString(std::vector<unsigned char> &bytes, std::string text);

  private:
    std::string m_strCurrentDir;
    FwBankMap m_mapCommandFw;
    CCpTransform m_transform; // part of the class's layout, which hosts compile in
    STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING m_stSetting;
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS m_stDigitalSignArgs; // directly behind the command record
};

#endif
