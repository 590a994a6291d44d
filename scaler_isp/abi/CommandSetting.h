#ifndef SCALER_ISP_ABI_COMMAND_SETTING_H
#define SCALER_ISP_ABI_COMMAND_SETTING_H

/// \file
/// The record that passes one validated command to the ISP plug-in: 546,704 bytes, little-endian,
/// no pointers. Its layout is a binary interface: command_setting_fields.def lists every field with
/// its offset and default, and the build fails if the two disagree. Readable as C99 and as C++.

#include <stddef.h>
#include <stdint.h>

#include "scaler_isp/abi/CommTypes.h"
#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/abi/Enumeration.h"
#include "scaler_isp/abi/Export.h"

#define SCALER_ISP_MAX_BANKS 512       ///< entries of the firmware bank map
#define SCALER_ISP_BANK_BYTES 65536    ///< one flash bank, 64 KiB
#define SCALER_ISP_MAX_FLAG_BYTES 1220 ///< bytes of the user flag
#define SCALER_ISP_MAX_MERGE_BYTES 16  ///< bytes of the merge info
#define SCALER_ISP_MAX_I2C_BYTES 256   ///< data bytes of one I2C write
#define SCALER_ISP_MODE_NORMAL 1       ///< enumIspMode
#define SCALER_ISP_MODE_FACTORY 2      ///< enumIspMode
#define SCALER_ISP_NEW_BOOT_CODE 1     ///< enumBootCodeType
#define SCALER_ISP_DEFAULT_SLAVE 0x94  ///< I2C slave address of the scaler's ISP interface

/// The action to perform; one command line option each (--factoryisp converts to no value).
SCALER_ISP_ENUM_TYPE(ENUM_CP_ISPTOOL_ACTION_TYPE);
enum SCALER_ISP_ENUM_VALUES(ENUM_CP_ISPTOOL_ACTION_TYPE) {
    ENUM_ACTION_NONE = 0,
    ENUM_ACTION_VERIFY = 1,
    ENUM_ACTION_SIGN = 2,
    ENUM_ACTION_ERASE = 3,
    ENUM_ACTION_ISP = 4,
    ENUM_ACTION_ISPUSER = 5,
    ENUM_ACTION_ISPDIFF = 6,
    ENUM_ACTION_ISPCOPY = 7,
    ENUM_ACTION_RECORDVER = 8,
    ENUM_ACTION_SRSTATUS = 9,
    ENUM_ACTION_FLASHTYPE = 10,
    ENUM_ACTION_READSR = 11,
    ENUM_ACTION_WRITESR = 12,
    ENUM_ACTION_READSAFEGUARD = 13,
    ENUM_ACTION_WRITESAFEGUARD = 14,
    ENUM_ACTION_RESETMCU = 15,
    ENUM_ACTION_DUMPFLASH = 16,
    ENUM_ACTION_FACTORYISP = 17,
    ENUM_ACTION_GETSTATUS = 18,
    ENUM_ACTION_USERDEFINEDINFO = 19,
    ENUM_ACTION_EDPISP = 20,
    ENUM_ACTION_ENTERISPMODE = 21,
    ENUM_ACTION_MERGEFWINFO = 22,
    ENUM_ACTION_SENDUSERDEFINEDINFO = 23,
    ENUM_ACTION_I2CWRITE = 24,
    ENUM_ACTION_GETSCALERTYPE = 25
};

/// Where the firmware version is read from.
SCALER_ISP_ENUM_TYPE(ENUM_VERSION_LOCATION_TYPE);
enum SCALER_ISP_ENUM_VALUES(ENUM_VERSION_LOCATION_TYPE) {
    ENUM_VER_LOC_NONE = 0,
    ENUM_VER_LOC_REG = 1,
    ENUM_VER_LOC_DDCCI = 2,
    ENUM_VER_LOC_FLASH = 3,
    ENUM_VER_LOC_FWBIN = 4,
    ENUM_VER_LOC_CMD = 5,
    ENUM_VER_LOC_FWBINCMD = 6,
    ENUM_VER_LOC_COPYDIFFER = 7,
    ENUM_VER_LOC_USERDEFINED = 8
};

/// Mode of --userdefined, 1..5; the plug-in gives the numbers their meaning.
SCALER_ISP_ENUM_TYPE(ENUM_USER_DEFINED_VERSION_TYPE);
enum SCALER_ISP_ENUM_VALUES(ENUM_USER_DEFINED_VERSION_TYPE) {
    ENUM_USER_DEFINED_VERSION_NONE = 0,
    ENUM_USER_DEFINED_VERSION_1 = 1,
    ENUM_USER_DEFINED_VERSION_2 = 2,
    ENUM_USER_DEFINED_VERSION_3 = 3,
    ENUM_USER_DEFINED_VERSION_4 = 4,
    ENUM_USER_DEFINED_VERSION_5 = 5
};

/// Direction of --mergefwinfo.
SCALER_ISP_ENUM_TYPE(ENUM_CP_MERGE_FW_INFO_MODE);
enum SCALER_ISP_ENUM_VALUES(ENUM_CP_MERGE_FW_INFO_MODE) {
    ENUM_MERGE_INFO_READ = 0,
    ENUM_MERGE_INFO_WRITE = 1
};

/// One 64 KiB bank of a firmware file. 1,056 bytes.
typedef struct STRUCT_C_STYLE_FW_BANK_SETTING {
    uint64_t ullBankValue; ///< reserved for the plug-in; this library leaves it 0
    uint32_t ulFileBank;   ///< index of the bank inside its file, 0 first
    wchar_t wszFwPath[SCALER_ISP_PATH_CHARS]; ///< absolute path; no terminator at 260 characters

#ifdef __cplusplus
    /// Everything zero.
    SCALER_ISP_API STRUCT_C_STYLE_FW_BANK_SETTING();
#endif
} STRUCT_C_STYLE_FW_BANK_SETTING;

/// The firmware bank map: entry i goes to flash bank ulTargetBank[i]. 542,728 bytes.
/// Only the first ulFwCount entries are meaningful.
typedef struct STRUCT_C_STYLE_MAP_FW {
    uint32_t ulFwCount;                          ///< 0..512; above 512 after a rejected copy
    uint32_t ulTargetBank[SCALER_ISP_MAX_BANKS]; ///< bank numbers, ascending
    STRUCT_C_STYLE_FW_BANK_SETTING stFwBank[SCALER_ISP_MAX_BANKS];

#ifdef __cplusplus
    /// Sets the count to 0 and the entries to their defaults; clears only the first 128 target
    /// banks.
    SCALER_ISP_API STRUCT_C_STYLE_MAP_FW();
#endif
} STRUCT_C_STYLE_MAP_FW;

/// User flag of action "ispuser". 1,232 bytes.
typedef struct STRUCT_FLAG_SETTING {
    uint32_t ulFlagCount;                          ///< number of flag bytes given, modulo 256
    uint8_t ucFlagData[SCALER_ISP_MAX_FLAG_BYTES]; ///< unused bytes are 0xFF
    uint32_t ulFlagAddr;                           ///< flash address of the flag
    uint32_t ulFlagReserved;                       ///< reserved, 0

#ifdef __cplusplus
    SCALER_ISP_API STRUCT_FLAG_SETTING();
#endif
} STRUCT_FLAG_SETTING;

/// Location of the version in flash. 20 bytes. UNITS: bytes.
typedef struct STRUCT_READ_VERSION_FROM_FLASH_SETTING {
    uint32_t enumRecordVerMode; ///< 0, 1 or 2
    uint32_t ulVerAddr;         ///< flash address, below 16 MiB
    uint32_t ulTotalVerLen;     ///< bytes of the complete version, 1..256
    uint32_t ulMajorVerLen;     ///< bytes of the major version
    uint32_t ulSubVerLen;       ///< bytes of the sub version

#ifdef __cplusplus
    SCALER_ISP_API STRUCT_READ_VERSION_FROM_FLASH_SETTING();
#endif
} STRUCT_READ_VERSION_FROM_FLASH_SETTING;

/// Reserved for the plug-in; the command line never sets it. 4 bytes.
typedef struct STRUCT_READ_USER_DEFINED_VERSION_SETTING {
    uint32_t ulUserDefinedVersion; ///< reserved for the plug-in, 0

#ifdef __cplusplus
    SCALER_ISP_API STRUCT_READ_USER_DEFINED_VERSION_SETTING();
#endif
} STRUCT_READ_USER_DEFINED_VERSION_SETTING;

/// Range and file of action "dumpflash". 1,048 bytes. UNITS: bytes.
typedef struct STRUCT_DUMP_FLASH_SETTING {
    uint32_t ulDumpAddr;                        ///< first address
    uint32_t ulDumpLen;                         ///< number of bytes
    wchar_t wszDumpFile[SCALER_ISP_PATH_CHARS]; ///< exactly as given, ends in ".bin"

#ifdef __cplusplus
    SCALER_ISP_API STRUCT_DUMP_FLASH_SETTING();
#endif
} STRUCT_DUMP_FLASH_SETTING;

/// One I2C write of action "i2cwrite". 264 bytes.
typedef struct STRUCT_I2C_WRITE_ACTION_TYPE_SETTING {
    uint8_t ucI2CSlaveAddr;                      ///< slave address
    uint8_t ucI2CSubAddr;                        ///< register address
    uint8_t ucI2CDataLen;                        ///< number of data bytes; 0 means 256
    uint8_t ucI2CData[SCALER_ISP_MAX_I2C_BYTES]; ///< unused bytes are 0xFF
    uint32_t bDdcciCmd;                          ///< 1: the data is a DDC/CI message

#ifdef __cplusplus
    SCALER_ISP_API STRUCT_I2C_WRITE_ACTION_TYPE_SETTING();
#endif
} STRUCT_I2C_WRITE_ACTION_TYPE_SETTING;

/// Bytes of --mergefwinfo --write. 20 bytes.
typedef struct STRUCT_MERGE_FW_INFO_SETTING {
    uint32_t ulMergeDataCount;                       ///< 0..16
    uint8_t ucMergeData[SCALER_ISP_MAX_MERGE_BYTES]; ///< the bytes

#ifdef __cplusplus
    SCALER_ISP_API STRUCT_MERGE_FW_INFO_SETTING();
#endif
} STRUCT_MERGE_FW_INFO_SETTING;

/// One validated command. The plug-in borrows it for the duration of a call. Keep it on the heap:
/// it is too large for the stack of a small thread.
typedef struct STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING {
    ENUM_CP_ISPTOOL_ACTION_TYPE enumActionType;
    ENUM_CP_DIGITAL_SIGNATURE_TYPE enumDigitalSignatureType;
    ENUM_CP_DIGITAL_SIGNATURE_SW_MODE enumSWDigitalSignatureMode;
    ENUM_VERSION_LOCATION_TYPE enumVersionLocationType; ///< 1 by default, 0 if no option was given
    ENUM_USER_DEFINED_VERSION_TYPE enumUserDefinedVersionType;
    ENUM_CP_MERGE_FW_INFO_MODE enumMergeFWInfoMode;
    uint32_t enumMergeFWInfoType; ///< 0 none, 1 "hpfriends"
    STRUCT_ENUM_COMM_ID enumCommID;
    uint32_t enumEdpIspMode;          ///< 0 none, 1 "isp", 2 "readver"
    uint32_t enumUserDefinedInfoType; ///< 0 none, 1 scaler, 2 fw name, 3 model name, 4 hw cid
    uint32_t enumMergeFWGeneration;   ///< 1 or 2
    uint32_t enumSendExtraCmdMode;    ///< 0 none, 1 before, 2 after, 3 both
    int32_t nSlaveAddressState;       ///< -1 not given, 1 the default, 0 see ucSlaveAddress
    uint8_t ucSlaveAddress;           ///< I2C slave address (8-bit form), 1..254 when explicit
    uint32_t bAutoSearchFW;           ///< 1: --searchfw found the first firmware file
    uint32_t bCompareVersion;         ///< 1: compare the versions first (--comparever)
    uint32_t bIspChannel;             ///< 1: --ispchannel was given
    uint32_t enumBootCodeType;        ///< 0 default boot code, 1 new boot code
    uint32_t enumIspMode;             ///< 1 normal, 2 factory
    uint32_t ulReserved4C;            ///< reserved, 0
    uint32_t ulProgStartBank;         ///< from a settings file only
    STRUCT_C_STYLE_MAP_FW stMapFw;
    STRUCT_FLAG_SETTING stFlagSetting;
    STRUCT_READ_VERSION_FROM_FLASH_SETTING stReadVersionFromFlash;
    STRUCT_READ_USER_DEFINED_VERSION_SETTING stReadUserDefinedVersion;
    STRUCT_DUMP_FLASH_SETTING stDumpFlash;
    STRUCT_I2C_WRITE_ACTION_TYPE_SETTING stI2CWrite;
    wchar_t wszSettingFile[SCALER_ISP_PATH_CHARS]; ///< absolute path of the settings file
    char szBootFwPath[SCALER_ISP_PATH_CHARS];      ///< boot firmware (--boot), UTF-8
    STRUCT_MERGE_FW_INFO_SETTING stMergeFwInfo;

#ifdef __cplusplus
    /// Sets the defaults of command_setting_fields.def. Padding and the target banks from entry 128
    /// on stay uninitialised.
    SCALER_ISP_API STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING();

    /// Loads the fields of setting_keys.def from the file wszSettingFile; a missing file, section
    /// or key gives its default. The firmware map is not read, and no range is checked. If a lack
    /// of memory or an I/O error prevents reading, all fields stay unchanged.
    SCALER_ISP_API void LoadSetting();

    /// Writes only the firmware map, to section "ISP_Fw" of the file wszSettingFile. All keys are
    /// written at once; see ProfileStore.h for how a file is replaced.
    /// PRINTS "Open file error \n" once per key if the file cannot be opened for writing.
    SCALER_ISP_API void SaveSetting();

    /// Empties the firmware map: the count, all target banks and bank values become 0, but only the
    /// first entry's file bank and path are cleared.
    SCALER_ISP_API void ClearMapFW();
#endif
} STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

#endif
