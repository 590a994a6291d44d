#ifndef SCALER_ISP_ARGS_COMMAND_FLOW_H
#define SCALER_ISP_ARGS_COMMAND_FLOW_H

#include <cstdint>
#include <string>
#include <vector>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/args/ArgsFwSearch.h"
#include "scaler_isp/args/FwBankMap.h"
#include "scaler_isp/args/RawArgs.h"
#include "scaler_isp/common/LibraryDirectory.h"

/// \file
/// How a command line becomes two records, in the order of the flow:
///
///     arguments --scan--> RawArgs, firmware files --validate--> both records
///
/// Each step receives what it needs and returns whether the line is still accepted; the message for
/// a refused line has been printed by then, and what was stored before stays stored. A failure of
/// the system (no memory, an I/O error) throws. Nothing here knows CCpIspArgsParse, the class that
/// offers these steps to hosts.

using RawArgs = STRUCT_CP_ISP_CMD_ARGS;
using CommandRecord = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignRecord = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;
using PathField = wchar_t[SCALER_ISP_PATH_CHARS];

/// Where relative names lead.
struct ArgsDirectories {
    std::string strCurrent;     ///< of firmware and keys, and searched for firmware; ends in "/"
    LibraryDirectory stLibrary; ///< of settings files

    /// Where IspUserDefined.txt is: the current directory, unless that is empty because the name of
    /// the library's directory cannot be expressed.
    const std::string &OfUserDefinedFile() const {
        const bool inexpressible = stLibrary.strName.IsEmpty() && stLibrary.IsKnown();
        return strCurrent.empty() && inexpressible ? stLibrary.strBytes : strCurrent;
    }
};

// ScanArguments.cpp

/// Reads all options into the raw record and collects the firmware files and start banks. One
/// option at a time, because a second --fw or a bank that is not a number ends the scan when it is
/// reached.
/// \param settingFile  the record's field, which a firmware search by prefix fills and reads.
bool ScanArguments(int argc, char **argv, const ArgsDirectories &directories, RawArgs &args,
                   FwBankMap &files, PathField &settingFile);

// FirmwareFiles.cpp

/// Notes the firmware file of an entry; a second one is refused.
bool AddFirmwareFile(FwBankMap &files, unsigned int entry, const std::string &path);

/// Notes the start bank of an entry.
bool SetStartBank(FwBankMap &files, unsigned int entry, const std::string &value);

/// Expands the files into 64 KiB banks if the record's action needs them.
bool ExpandFirmwareFiles(const FwBankMap &files, const CommandRecord &setting,
                         const std::string &directory, FwBankMap &bankMap);

/// Resolves the path and counts the banks of the file.
bool CountFirmwareBanks(std::string &path, const std::string &directory, unsigned int &count);

// FirmwareSearch.cpp

/// The one .bin file in the current directory.
bool FindOnlyFirmware(const ArgsDirectories &directories, std::string &name);

/// The one whose name begins with the prefix in the settings file, whose path goes to the field.
/// \param givenFile  as given on the command line; empty: IspSetting.ini
bool FindFirmwareByPrefix(const ArgsDirectories &directories, std::string givenFile,
                          PathField &settingFile, std::string &name);

/// The one whose name matches IspUserDefined.txt.
bool FindFirmwareByInfo(const ArgsDirectories &directories, std::string &name);
bool ReadUserDefinedInfo(const ArgsDirectories &directories,
                         STRUCT_CP_GET_USER_DEFINED_BIN_INFO &info);
bool FilterByVersion(std::vector<std::string> &matches, const std::vector<std::string> &candidates,
                     ENUM_FIND_BIN_MODE_USE_VER_MODE mode, const std::string &version,
                     const std::string &capability);

// ValidateArguments.cpp

/// Checks the raw record step by step and fills both records.
bool ValidateArguments(RawArgs &args, const ArgsDirectories &directories, const FwBankMap &files,
                       CommandRecord &setting, SignRecord &sign);

/// Stores the path of the settings file that a line gives, or of the default one, in the record.
/// \param givenFile  becomes an absolute path unless it is empty
void SetSettingFileField(const ArgsDirectories &directories, std::string &givenFile,
                         PathField &field);

// ConvertArguments.cpp: strings to values. An empty string is accepted and leaves the value alone,
// unless said otherwise.

bool IsOneBit(std::uint32_t mask);
ENUM_CP_DIGITAL_SIGNATURE_TYPE SignatureTypeOfBit(std::uint32_t bit);
ENUM_CP_MERGE_FW_INFO_MODE MergeModeOfMask(std::uint32_t mask);
bool ConvertSignatureMode(const std::string &text, ENUM_CP_DIGITAL_SIGNATURE_SW_MODE &mode);
bool ConvertSignatureMode(const std::string &text, ENUM_CP_DIGITAL_SIGNATURE_HW_MODE &mode);
bool ConvertMergeInfo(const std::string &text, STRUCT_MERGE_FW_INFO_SETTING &setting);
bool ConvertVersionLocation(std::uint32_t bit, const std::string &modeText,
                            ENUM_VERSION_LOCATION_TYPE &location,
                            ENUM_USER_DEFINED_VERSION_TYPE &mode);
/// Refuses without a message.
bool ConvertFlashVersion(const RawArgs &args, STRUCT_READ_VERSION_FROM_FLASH_SETTING &setting);
/// An empty string is COMM_ID_NONE.
bool ConvertCommId(const std::string &text, STRUCT_ENUM_COMM_ID &id);
bool ConvertSlaveAddress(const std::string &text, int &state, unsigned char &address);
bool ConvertUserFlag(const std::string &address, const std::string &data,
                     STRUCT_FLAG_SETTING &setting);
/// Refuses without a message, an empty string too.
bool ConvertDumpRange(const RawArgs &args, STRUCT_DUMP_FLASH_SETTING &setting);
bool ConvertI2CBytes(const std::string &text, std::vector<unsigned char> &bytes);
bool ConvertI2CWrite(const RawArgs &args, STRUCT_I2C_WRITE_ACTION_TYPE_SETTING &setting);

#endif
