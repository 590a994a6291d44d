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
/// The steps from a command line to the two records, in their order:
///
///     arguments --scan--> RawArgs, firmware files --validate--> both records
///
/// Each step receives what it needs and returns whether the line is still accepted; a step that
/// rejects the line has printed its message, and what was stored before stays stored. A failure of
/// the system (no memory, an I/O error) throws. Nothing here depends on CCpIspArgsParse, the class
/// that offers these steps to hosts.

using RawArgs = STRUCT_CP_ISP_CMD_ARGS;
using CommandRecord = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using SignRecord = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;
using PathField = wchar_t[SCALER_ISP_PATH_CHARS];

/// The directories against which relative paths are resolved.
struct ArgsDirectories {
    std::string strCurrent;     ///< for firmware and keys; searched for firmware; ends in "/"
    LibraryDirectory stLibrary; ///< for settings files

    /// Directory of IspUserDefined.txt. An empty current directory would mean the working directory
    /// of the process; if it is empty only because the name of the library's directory cannot be
    /// expressed, the directory's bytes are used instead.
    const std::string &OfUserDefinedFile() const {
        const bool inexpressible = stLibrary.strName.IsEmpty() && stLibrary.IsKnown();
        return strCurrent.empty() && inexpressible ? stLibrary.strBytes : strCurrent;
    }
};

// ScanArguments.cpp

/// Reads all options into the raw record and collects the firmware files and start banks. Options
/// take effect one at a time, because a second --fw or a bank that is not a number ends the scan as
/// soon as it is reached.
/// \param settingFile  the field of the command record, which a firmware search by prefix fills and
///                     reads.
bool ScanArguments(int argc, char **argv, const ArgsDirectories &directories, RawArgs &args,
                   FwBankMap &files, PathField &settingFile);

// FirmwareFiles.cpp

/// Stores the firmware file of an entry; rejects a second one.
bool AddFirmwareFile(FwBankMap &files, unsigned int entry, const std::string &path);

/// Stores the start bank of an entry.
bool SetStartBank(FwBankMap &files, unsigned int entry, const std::string &value);

/// Expands the files into 64 KiB banks if the record's action needs them.
bool ExpandFirmwareFiles(const FwBankMap &files, const CommandRecord &setting,
                         const std::string &directory, FwBankMap &bankMap);

/// Resolves the path and counts the banks of the file.
bool CountFirmwareBanks(std::string &path, const std::string &directory, unsigned int &count);

// FirmwareSearch.cpp

/// Finds the only .bin file in the current directory.
bool FindOnlyFirmware(const ArgsDirectories &directories, std::string &name);

/// Finds the only one whose name begins with the prefix in the settings file, and stores the path
/// of that file in the field.
/// \param givenFile  as given on the command line; empty: IspSetting.ini
bool FindFirmwareByPrefix(const ArgsDirectories &directories, std::string givenFile,
                          PathField &settingFile, std::string &name);

/// Finds the only one whose name matches IspUserDefined.txt.
bool FindFirmwareByInfo(const ArgsDirectories &directories, std::string &name);
bool ReadUserDefinedInfo(const ArgsDirectories &directories,
                         STRUCT_CP_GET_USER_DEFINED_BIN_INFO &info);
bool FilterByVersion(std::vector<std::string> &matches, const std::vector<std::string> &candidates,
                     ENUM_FIND_BIN_MODE_USE_VER_MODE mode, const std::string &version,
                     const std::string &capability);

// ValidateArguments.cpp

/// Validates the raw record in a fixed sequence of steps and fills both records.
bool ValidateArguments(RawArgs &args, const ArgsDirectories &directories, const FwBankMap &files,
                       CommandRecord &setting, SignRecord &sign);

/// Stores the path of the given settings file, or of the default one, in the record.
/// \param givenFile  becomes an absolute path unless it is empty
void SetSettingFileField(const ArgsDirectories &directories, std::string &givenFile,
                         PathField &field);

// ConvertArguments.cpp: strings to values. An empty string is accepted and leaves the value
// unchanged, unless stated otherwise.

bool IsOneBit(std::uint32_t mask);
ENUM_CP_DIGITAL_SIGNATURE_TYPE SignatureTypeOfBit(std::uint32_t bit);
/// Reading wins if both bits are set.
ENUM_CP_MERGE_FW_INFO_MODE MergeModeOfMask(std::uint32_t mask);
bool ConvertSignatureMode(const std::string &text, ENUM_CP_DIGITAL_SIGNATURE_SW_MODE &mode);
bool ConvertSignatureMode(const std::string &text, ENUM_CP_DIGITAL_SIGNATURE_HW_MODE &mode);
bool ConvertMergeInfo(const std::string &text, STRUCT_MERGE_FW_INFO_SETTING &setting);
bool ConvertVersionLocation(std::uint32_t bit, const std::string &modeText,
                            ENUM_VERSION_LOCATION_TYPE &location,
                            ENUM_USER_DEFINED_VERSION_TYPE &mode);
/// Rejects without a message.
bool ConvertFlashVersion(const RawArgs &args, STRUCT_READ_VERSION_FROM_FLASH_SETTING &setting);
/// An empty string gives COMM_ID_NONE.
bool ConvertCommId(const std::string &text, STRUCT_ENUM_COMM_ID &id);
bool ConvertSlaveAddress(const std::string &text, int &state, unsigned char &address);
bool ConvertUserFlag(const std::string &address, const std::string &data,
                     STRUCT_FLAG_SETTING &setting);
/// The next three reject without a message; they also reject an empty string.
bool ConvertDumpRange(const RawArgs &args, STRUCT_DUMP_FLASH_SETTING &setting);
bool ConvertI2CBytes(const std::string &text, std::vector<unsigned char> &bytes);
bool ConvertI2CWrite(const RawArgs &args, STRUCT_I2C_WRITE_ACTION_TYPE_SETTING &setting);

#endif
