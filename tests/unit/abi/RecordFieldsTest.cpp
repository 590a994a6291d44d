#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"
#include "scaler_isp/abi/ResultCodes.h"

namespace {

using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using Sign = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

/// What changed between two images of a record: the first byte and the number of bytes that differ.
template <class Record, class Write> std::pair<std::size_t, std::size_t> Changed(Write write) {
    const auto record = std::make_unique<Record>();
    std::memset(static_cast<void *>(record.get()), 0, sizeof(Record));
    write(*record);
    std::vector<unsigned char> bytes(sizeof(Record));
    std::memcpy(bytes.data(), record.get(), bytes.size());
    std::size_t first = bytes.size();
    std::size_t last = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != 0) {
            first = std::min(first, i);
            last = i + 1;
        }
    }
    return {first, last - first};
}

/// Writing all ones into a field changes exactly its bytes.
#define EXPECT_FIELD(RECORD, MEMBER, OFFSET, WIDTH)                                                \
    EXPECT_EQ(Changed<RECORD>([](RECORD &record) {                                                 \
                  std::memset(&record.MEMBER, 0xFF, sizeof record.MEMBER);                         \
              }),                                                                                  \
              (std::pair<std::size_t, std::size_t>(OFFSET, WIDTH)))                                \
        << #MEMBER

TEST(RecordFields, Fields_of_command_record_have_documented_offsets) {
    EXPECT_FIELD(Command, enumActionType, 0, 4);
    EXPECT_FIELD(Command, enumDigitalSignatureType, 4, 4);
    EXPECT_FIELD(Command, enumSWDigitalSignatureMode, 8, 4);
    EXPECT_FIELD(Command, enumVersionLocationType, 12, 4);
    EXPECT_FIELD(Command, enumUserDefinedVersionType, 16, 4);
    EXPECT_FIELD(Command, enumMergeFWInfoMode, 20, 4);
    EXPECT_FIELD(Command, enumMergeFWInfoType, 24, 4);
    EXPECT_FIELD(Command, enumCommID, 28, 4);
    EXPECT_FIELD(Command, enumEdpIspMode, 32, 4);
    EXPECT_FIELD(Command, enumUserDefinedInfoType, 36, 4);
    EXPECT_FIELD(Command, enumMergeFWGeneration, 40, 4);
    EXPECT_FIELD(Command, enumSendExtraCmdMode, 44, 4);
    EXPECT_FIELD(Command, nSlaveAddressState, 48, 4);
    EXPECT_FIELD(Command, ucSlaveAddress, 52, 1);
    EXPECT_FIELD(Command, bAutoSearchFW, 56, 4);
    EXPECT_FIELD(Command, bCompareVersion, 60, 4);
    EXPECT_FIELD(Command, bIspChannel, 64, 4);
    EXPECT_FIELD(Command, enumBootCodeType, 68, 4);
    EXPECT_FIELD(Command, enumIspMode, 72, 4);
    EXPECT_FIELD(Command, ulReserved4C, 76, 4);
    EXPECT_FIELD(Command, ulProgStartBank, 80, 4);
    EXPECT_FIELD(Command, stMapFw.ulFwCount, 88, 4);
    EXPECT_FIELD(Command, stMapFw.ulTargetBank, 92, 2048);
    EXPECT_FIELD(Command, stMapFw.stFwBank[0].ullBankValue, 2144, 8);
    EXPECT_FIELD(Command, stMapFw.stFwBank[0].ulFileBank, 2152, 4);
    EXPECT_FIELD(Command, stMapFw.stFwBank[0].wszFwPath, 2156, 1040);
    EXPECT_FIELD(Command, stMapFw.stFwBank[1].ullBankValue, 3200, 8);
    EXPECT_FIELD(Command, stMapFw.stFwBank[511].wszFwPath, 541772, 1040);
    EXPECT_FIELD(Command, stFlagSetting.ulFlagCount, 542816, 4);
    EXPECT_FIELD(Command, stFlagSetting.ucFlagData, 542820, 1220);
    EXPECT_FIELD(Command, stFlagSetting.ulFlagAddr, 544040, 4);
    EXPECT_FIELD(Command, stFlagSetting.ulFlagReserved, 544044, 4);
    EXPECT_FIELD(Command, stReadVersionFromFlash.enumRecordVerMode, 544048, 4);
    EXPECT_FIELD(Command, stReadVersionFromFlash.ulVerAddr, 544052, 4);
    EXPECT_FIELD(Command, stReadVersionFromFlash.ulTotalVerLen, 544056, 4);
    EXPECT_FIELD(Command, stReadVersionFromFlash.ulMajorVerLen, 544060, 4);
    EXPECT_FIELD(Command, stReadVersionFromFlash.ulSubVerLen, 544064, 4);
    EXPECT_FIELD(Command, stReadUserDefinedVersion.ulUserDefinedVersion, 544068, 4);
    EXPECT_FIELD(Command, stDumpFlash.ulDumpAddr, 544072, 4);
    EXPECT_FIELD(Command, stDumpFlash.ulDumpLen, 544076, 4);
    EXPECT_FIELD(Command, stDumpFlash.wszDumpFile, 544080, 1040);
    EXPECT_FIELD(Command, stI2CWrite.ucI2CSlaveAddr, 545120, 1);
    EXPECT_FIELD(Command, stI2CWrite.ucI2CSubAddr, 545121, 1);
    EXPECT_FIELD(Command, stI2CWrite.ucI2CDataLen, 545122, 1);
    EXPECT_FIELD(Command, stI2CWrite.ucI2CData, 545123, 256);
    EXPECT_FIELD(Command, stI2CWrite.bDdcciCmd, 545380, 4);
    EXPECT_FIELD(Command, wszSettingFile, 545384, 1040);
    EXPECT_FIELD(Command, szBootFwPath, 546424, 260);
    EXPECT_FIELD(Command, stMergeFwInfo.ulMergeDataCount, 546684, 4);
    EXPECT_FIELD(Command, stMergeFwInfo.ucMergeData, 546688, 16);
}

TEST(RecordFields, Fields_of_sign_record_have_documented_offsets) {
    EXPECT_FIELD(Sign, enumSignActionType, 0, 4);
    EXPECT_FIELD(Sign, enumDigitalSignatureType, 4, 4);
    EXPECT_FIELD(Sign, enumSWDigitalSignatureMode, 8, 4);
    EXPECT_FIELD(Sign, enumHWDigitalSignatureMode, 12, 4);
    EXPECT_FIELD(Sign, nKeyPair, 16, 4);
    EXPECT_FIELD(Sign, szFwFile, 20, 260);
    EXPECT_FIELD(Sign, szSignatureFile, 280, 260);
    EXPECT_FIELD(Sign, szKeyPair, 540, 260);
    EXPECT_FIELD(Sign, szVerifyKeyFile, 800, 260);
    EXPECT_FIELD(Sign, szSignKeyFile, 1060, 260);
    EXPECT_FIELD(Sign, szSubCertFile, 1320, 260);
    EXPECT_FIELD(Sign, szNextVerifyKeyFile, 1580, 260);
}

TEST(RecordFields, Numbers_are_little_endian_with_documented_sign) {
    const auto record = std::make_unique<Command>();
    record->enumActionType = ENUM_ACTION_GETSCALERTYPE;
    record->nSlaveAddressState = -1;
    record->stMapFw.stFwBank[0].ullBankValue = 0x0102030405060708ULL;
    unsigned char bytes[2160];
    std::memcpy(bytes, record.get(), sizeof bytes);
    EXPECT_EQ(bytes[0], 25);
    EXPECT_EQ(bytes[1], 0);
    EXPECT_EQ(bytes[2144], 8);
    EXPECT_EQ(bytes[2151], 1);
    EXPECT_LT(record->nSlaveAddressState, 0);
    static_assert(std::is_signed_v<decltype(Command::nSlaveAddressState)>);
    static_assert(std::is_signed_v<decltype(Sign::nKeyPair)>);
    static_assert(std::is_unsigned_v<decltype(Command::ulProgStartBank)>);
    static_assert(
        std::is_same_v<std::remove_all_extents_t<decltype(Command::wszSettingFile)>, wchar_t>);
    static_assert(std::is_same_v<std::remove_all_extents_t<decltype(Command::szBootFwPath)>, char>);
}

TEST(RecordFields, Enumerations_hold_any_32_bit_number) {
    const auto record = std::make_unique<Command>();
    record->enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(0xFFFFFFFFU);
    EXPECT_EQ(static_cast<std::uint32_t>(record->enumCommID), 0xFFFFFFFFU);
    static_assert(sizeof(ENUM_CP_ISPTOOL_ACTION_TYPE) == 4 &&
                  sizeof(ENUM_VERSION_LOCATION_TYPE) == 4);
    static_assert(sizeof(ENUM_USER_DEFINED_VERSION_TYPE) == 4 && sizeof(STRUCT_ENUM_COMM_ID) == 4);
    static_assert(sizeof(ENUM_CP_MERGE_FW_INFO_MODE) == 4);
    static_assert(sizeof(ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE) == 4);
    static_assert(sizeof(ENUM_CP_DIGITAL_SIGNATURE_TYPE) == 4);
    static_assert(sizeof(ENUM_CP_DIGITAL_SIGNATURE_SW_MODE) == 4);
    static_assert(sizeof(ENUM_CP_DIGITAL_SIGNATURE_HW_MODE) == 4);
}

TEST(RecordFields, Signature_enumerators_have_documented_values) {
    EXPECT_EQ(ENUM_SIGN_ACTION_SIGN, 1U);
    EXPECT_EQ(ENUM_SIGN_ACTION_VERIFY, 2U);
    EXPECT_EQ(ENUM_SIGN_TYPE_SW, 1U);
    EXPECT_EQ(ENUM_SIGN_TYPE_HW, 2U);
    EXPECT_EQ(ENUM_SIGN_SW_MODE_LENOVO, 1U);
    EXPECT_EQ(ENUM_SIGN_SW_MODE_VXM_INTERNAL, 2U);
    EXPECT_EQ(ENUM_SIGN_SW_MODE_VXM_EXTERNAL, 3U);
    EXPECT_EQ(ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT, 4U);
    EXPECT_EQ(ENUM_SIGN_HW_MODE_1, 1U);
    EXPECT_EQ(ENUM_SIGN_HW_MODE_4, 4U);
}

/// The field table that plug-in authors expand.
TEST(RecordFields, Field_tables_cover_every_byte_once) {
    std::vector<int> times(546704, 0);
    const auto cover = [&](std::size_t offset, std::size_t width) {
        for (std::size_t i = offset; i < offset + width; ++i) {
            ++times.at(i);
        }
    };
#define SCALER_ISP_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT) cover(OFFSET, WIDTH);
#define SCALER_ISP_PADDING(OFFSET, WIDTH) cover(OFFSET, WIDTH);
#define SCALER_ISP_BANK_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT)                                \
    for (std::size_t bank = 0; bank < 512; ++bank) {                                               \
        cover(2144 + 1056 * bank + (OFFSET), WIDTH);                                               \
    }
#define SCALER_ISP_BANK_PADDING(OFFSET, WIDTH)                                                     \
    for (std::size_t bank = 0; bank < 512; ++bank) {                                               \
        cover(2144 + 1056 * bank + (OFFSET), WIDTH);                                               \
    }
#include "scaler_isp/abi/command_setting_fields.def"
    EXPECT_EQ(times, std::vector<int>(546704, 1));
}

TEST(RecordFields, Field_table_contains_defaults_of_constructor) {
    const auto record = std::make_unique<Command>();
    const auto check = [](const char *name, const auto &field, long long value) {
        if constexpr (std::is_array_v<std::remove_reference_t<decltype(field)>>) {
            EXPECT_EQ(static_cast<long long>(field[0]), value) << name;
        } else {
            EXPECT_EQ(static_cast<long long>(field), value) << name;
        }
    };
#define SCALER_ISP_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT)                                     \
    check(#MEMBER, record->MEMBER, DEFAULT);
#define SCALER_ISP_BANK_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT)                                \
    check(#MEMBER, record->stMapFw.stFwBank[0].MEMBER, DEFAULT);
#include "scaler_isp/abi/command_setting_fields.def"
}

TEST(RecordFields, Result_codes_have_documented_values) {
    EXPECT_EQ(SCALER_ISP_SUCCESS, 0);
    EXPECT_EQ(SCALER_ISP_REFUSED, -1);
    EXPECT_EQ(SCALER_ISP_FUNCTION_MISSING, 6);
    EXPECT_EQ(SCALER_ISP_PLUGIN_NOT_LOADED, 3431);
    EXPECT_EQ(SCALER_ISP_NO_WORKING_COPY, 3433);
    EXPECT_EQ(SCALER_ISP_BOOT_MAP_TOO_LARGE, 3488);
    EXPECT_EQ(SCALER_ISP_NO_HUB_DEVICE, 11021);
    EXPECT_EQ(SCALER_ISP_SIGNING_FAILED, 16386);
    EXPECT_EQ(SCALER_ISP_BAD_SIGNATURE, 16387);
    EXPECT_EQ(SCALER_ISP_SIGN_PLUGIN_MISSING, 16388);
}

} // namespace
