#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"

namespace {

using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using Bank = STRUCT_C_STYLE_FW_BANK_SETTING;
using Sign = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

// Checks the tables against the records: a field that moves stops the build.
#define SCALER_ISP_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT)                                     \
    static_assert(offsetof(Command, MEMBER) == (OFFSET), #MEMBER);                                 \
    static_assert(sizeof(std::declval<Command &>().MEMBER) == (WIDTH), #MEMBER);
#define SCALER_ISP_BANK_ENTRIES(OFFSET, WIDTH)                                                     \
    static_assert(offsetof(Command, stMapFw.stFwBank) == (OFFSET));                                \
    static_assert(sizeof(std::declval<Command &>().stMapFw.stFwBank) == (WIDTH));
#define SCALER_ISP_BANK_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT)                                \
    static_assert(offsetof(Bank, MEMBER) == (OFFSET), #MEMBER);                                    \
    static_assert(sizeof(std::declval<Bank &>().MEMBER) == (WIDTH), #MEMBER);
#include "scaler_isp/abi/command_setting_fields.def"

#define SCALER_ISP_SIGN_FIELD(KIND, MEMBER, OFFSET, WIDTH)                                         \
    static_assert(offsetof(Sign, MEMBER) == (OFFSET), #MEMBER);                                    \
    static_assert(sizeof(std::declval<Sign &>().MEMBER) == (WIDTH), #MEMBER);
#include "scaler_isp/abi/digital_sign_fields.def"

// Fields and padding together cover the record, so no field is missing from the table.
constexpr std::size_t kFieldBytes = 0
#define SCALER_ISP_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT) +(WIDTH)
#define SCALER_ISP_PADDING(OFFSET, WIDTH) +(WIDTH)
#define SCALER_ISP_BANK_ENTRIES(OFFSET, WIDTH) +(WIDTH)
#include "scaler_isp/abi/command_setting_fields.def"
    ;
static_assert(kFieldBytes == sizeof(Command));

static_assert(sizeof(wchar_t) == 4, "wide characters are 32 bits in every record");
static_assert(sizeof(Command) == 546704 && alignof(Command) == 8);
static_assert(sizeof(Bank) == 1056 && alignof(Bank) == 8);
static_assert(sizeof(STRUCT_C_STYLE_MAP_FW) == 542728);
static_assert(sizeof(STRUCT_FLAG_SETTING) == 1232);
static_assert(sizeof(STRUCT_READ_VERSION_FROM_FLASH_SETTING) == 20);
static_assert(sizeof(STRUCT_READ_USER_DEFINED_VERSION_SETTING) == 4);
static_assert(sizeof(STRUCT_DUMP_FLASH_SETTING) == 1048);
static_assert(sizeof(STRUCT_I2C_WRITE_ACTION_TYPE_SETTING) == 264);
static_assert(sizeof(STRUCT_MERGE_FW_INFO_SETTING) == 20);
static_assert(sizeof(Sign) == 1840);
static_assert(std::is_trivially_copyable_v<Command> && std::is_standard_layout_v<Command>);
static_assert(std::is_trivially_copyable_v<Sign> && std::is_standard_layout_v<Sign>);

} // namespace

STRUCT_C_STYLE_FW_BANK_SETTING::STRUCT_C_STYLE_FW_BANK_SETTING()
    : ullBankValue(0), ulFileBank(0), wszFwPath{} {}

// QUIRK Map_constructor_clears_only_128_target_banks: a new record clears the first 128 of the 512
// target banks; the others stay uninitialised. Only the first ulFwCount entries are meaningful.
STRUCT_C_STYLE_MAP_FW::STRUCT_C_STYLE_MAP_FW() : ulFwCount(0) { // NOLINT(*-member-init)
    constexpr std::size_t kClearedEntries = 512 / sizeof ulTargetBank[0];
    std::fill_n(ulTargetBank, kClearedEntries, 0U);
}

STRUCT_FLAG_SETTING::STRUCT_FLAG_SETTING() // NOLINT(*-member-init)
    : ulFlagCount(0), ulFlagAddr(0), ulFlagReserved(0) {
    std::memset(ucFlagData, 0xFF, sizeof ucFlagData);
}

STRUCT_READ_VERSION_FROM_FLASH_SETTING::STRUCT_READ_VERSION_FROM_FLASH_SETTING()
    : enumRecordVerMode(0), ulVerAddr(0), ulTotalVerLen(0), ulMajorVerLen(0), ulSubVerLen(0) {}

STRUCT_READ_USER_DEFINED_VERSION_SETTING::STRUCT_READ_USER_DEFINED_VERSION_SETTING()
    : ulUserDefinedVersion(0) {}

STRUCT_DUMP_FLASH_SETTING::STRUCT_DUMP_FLASH_SETTING()
    : ulDumpAddr(0), ulDumpLen(0), wszDumpFile{} {}

// NOLINTNEXTLINE(*-member-init)
STRUCT_I2C_WRITE_ACTION_TYPE_SETTING::STRUCT_I2C_WRITE_ACTION_TYPE_SETTING()
    : ucI2CSlaveAddr(0xFF), ucI2CSubAddr(0xFF), ucI2CDataLen(1), bDdcciCmd(0) {
    std::memset(ucI2CData, 0xFF, sizeof ucI2CData);
}

STRUCT_MERGE_FW_INFO_SETTING::STRUCT_MERGE_FW_INFO_SETTING() : ulMergeDataCount(0), ucMergeData{} {}

STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING::STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING()
    : enumActionType(ENUM_ACTION_NONE), enumDigitalSignatureType(ENUM_SIGN_TYPE_NONE),
      enumSWDigitalSignatureMode(ENUM_SIGN_SW_MODE_NONE), enumVersionLocationType(ENUM_VER_LOC_REG),
      enumUserDefinedVersionType(ENUM_USER_DEFINED_VERSION_NONE),
      enumMergeFWInfoMode(ENUM_MERGE_INFO_READ), enumMergeFWInfoType(0), enumCommID(COMM_ID_NONE),
      enumEdpIspMode(0), enumUserDefinedInfoType(0), enumMergeFWGeneration(2),
      enumSendExtraCmdMode(0), nSlaveAddressState(-1), ucSlaveAddress(SCALER_ISP_DEFAULT_SLAVE),
      bAutoSearchFW(0), bCompareVersion(0), bIspChannel(0), enumBootCodeType(0), enumIspMode(0),
      ulReserved4C(0), ulProgStartBank(0), wszSettingFile{}, szBootFwPath{} {}

STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS::STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS()
    : enumSignActionType(ENUM_SIGN_ACTION_NONE), enumDigitalSignatureType(ENUM_SIGN_TYPE_NONE),
      enumSWDigitalSignatureMode(ENUM_SIGN_SW_MODE_NONE),
      enumHWDigitalSignatureMode(ENUM_SIGN_HW_MODE_NONE),
      nKeyPair(0), szFwFile{}, szSignatureFile{}, szKeyPair{}, szVerifyKeyFile{}, szSignKeyFile{},
      szSubCertFile{}, szNextVerifyKeyFile{} {}
