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

struct InZeroedMemory;
struct LibraryDirectory;

/// Turns one command line into the two records that the plug-ins receive.
///
/// ParseArgs scans the arguments into a raw record, collects the firmware files and validates
/// everything. The other operations are its parts. Unless stated otherwise an operation returns 1
/// if it accepts its input. If not, it PRINTS a message to standard output and returns 0; what was
/// stored before stays stored. 0 without a message may also mean that the system failed (no memory,
/// no descriptor, an I/O error): such a failure never leaves an empty or default value in an
/// accepted record.
///
/// A parser is made for one line. If it is used again, the state of earlier lines remains: the
/// firmware files and start banks (so a second --fw is rejected), and every field of the records
/// that the new line does not set.
///
/// Keep the object on the heap: it holds a command record of 546,704 bytes.
class SCALER_ISP_API CCpIspArgsParse {
  public:
    CCpIspArgsParse();

    /// The same for the library itself, without touching memory that is zero already.
    SCALER_ISP_INTERNAL explicit CCpIspArgsParse(InZeroedMemory) noexcept;

    /// The directory, ending in "/", against which relative paths are resolved and which --searchfw
    /// searches. UTF-8.
    void SetCurrentDir(const std::string &directory);
    std::string GetCurrentDir() const;

    /// Scans and validates a complete command line. argv[0] is the program's name; argv is not
    /// changed. After a rejected line both records hold what was stored until then. `--searchfw
    /// prefix` stores the path of the settings file in the command record as soon as it is scanned,
    /// even if the line is rejected later.
    int ParseArgs(int argc, const char *const *argv);

    /// The same for the library itself: uses the library directory that the caller has already
    /// found, and throws what ParseArgs turns into 0.
    SCALER_ISP_INTERNAL bool Parse(int argc, const char *const *argv,
                                   const LibraryDirectory &library);

    /// The records themselves, which the getters copy.
    SCALER_ISP_INTERNAL const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &Setting() const;
    SCALER_ISP_INTERNAL const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &DigitalSignArgs() const;

    /// Validates the raw record and fills both records.
    int JudgeArgument(STRUCT_CP_ISP_CMD_ARGS &args);

    /// Copies of the complete records, byte for byte.
    void SetISPCmdSetting(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &setting);
    STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING GetISPCmdSetting() const;
    void SetDigitalSignArgs(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS &args);
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS GetDigitalSignArgs() const;

    /// szBootFwPath of the command record.
    std::string GetOneBootFactoryModeBootFw() const;

    // Firmware files and banks

    /// Stores the firmware file of an entry; rejects a second one, and null.
    int InsertCommandFwFile(unsigned int entry, const char *path);

    /// Stores the start bank of an entry, 0..255.
    // QUIRK Repeated_bank_keeps_the_last_value: a repeated --bankN replaces the value silently,
    // whereas a repeated --fwN is rejected.
    int InsertCommandStartBank(unsigned int entry, std::string value);

    /// Expands the stored files into 64 KiB banks; rejects overlaps and unreadable files. For an
    /// action that needs no firmware the map stays empty, which is accepted.
    int JudgeFwMap(FwBankMap &bankMap);

    /// Counts the 64 KiB banks of a file; resolves `path` first.
    int GetFwBankCount(std::string &path, unsigned int &count);

    // Firmware search

    /// Finds the only file whose name begins with the prefix in the settings file. If there is any
    /// firmware file, stores the path of the settings file in the command record first.
    /// \param settingFile  empty: IspSetting.ini in the library's directory.
    int GetBinNameFromPrefixSetting(std::string &fwName, std::string settingFile);

    int GetUserDefinedInfoFromTxt(STRUCT_CP_GET_USER_DEFINED_BIN_INFO &info);
    int FindBinUseVersionInfo(std::vector<std::string> &matches,
                              const std::vector<std::string> &candidates,
                              ENUM_FIND_BIN_MODE_USE_VER_MODE &mode, const std::string &version,
                              const std::string &capability);

    /// Finds the only file whose name matches IspUserDefined.txt.
    int GetUserDefinedBinNameFromTxt(std::string &fwName);

    // Strings to values. An empty string is accepted and leaves the value unchanged, with these
    // exceptions: GetCommID stores COMM_ID_NONE; GetVersionType reads it as 0, which is not a mode
    // of user-defined versions and is therefore rejected; GetUserFlag reads empty `data` as no
    // bytes; GetI2CCmdFromString rejects it. GetReadVersionFromFlashSetting, GetDumpFlashCmd,
    // GetI2CCmdFromString and GetI2CWriteActionTypeSetting reject without a message. The first of
    // these accepts `args` without any of its values; the second reads an absent address as 0.

    int JudgeUniqueAttribute(int mask); ///< 1 if exactly one bit is set
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
    CCpTransform m_transform; // unused, but part of the layout that hosts compile in
    union {                   // so that a constructor need not write all of it
        STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING m_stSetting;
    };
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS m_stDigitalSignArgs; // directly after the command record
};

#endif
