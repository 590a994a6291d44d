#include "scaler_isp/args/RawArgs.h"

#include <cstddef>

#include <gtest/gtest.h>

namespace {

using Args = STRUCT_CP_ISP_CMD_ARGS;

/// A member and its default; a string is empty by default.
struct Field {
    std::uint32_t Args::*number;
    std::string Args::*text;
    std::uint32_t byDefault;

    constexpr Field(std::uint32_t Args::*member, std::uint32_t value = 0)
        : number(member), text(nullptr), byDefault(value) {}
    constexpr Field(std::string Args::*member) : number(nullptr), text(member), byDefault(0) {}

    std::size_t Size() const {
        return text != nullptr ? sizeof(std::string) : sizeof(std::uint32_t);
    }
    std::size_t Alignment() const {
        return text != nullptr ? alignof(std::string) : alignof(std::uint32_t);
    }
    std::size_t OffsetIn(const Args &args) const {
        const void *member =
            text != nullptr ? static_cast<const void *>(&(args.*text)) : &(args.*number);
        return static_cast<std::size_t>(static_cast<const char *>(member) -
                                        reinterpret_cast<const char *>(&args));
    }
};

// Hosts read and write the record by these positions: a new member goes to the end.
constexpr Field kFields[] = {
    &Args::ulActionMask,
    &Args::ulSignTypeMask,
    &Args::ulVerLocMask,
    &Args::ulMergeInfoRwMask,
    &Args::strUserDefinedVerMode,
    &Args::strComm,
    &Args::strFwPath,
    &Args::strSignFile,
    &Args::strKeyPair,
    &Args::strVkFile,
    &Args::strSkFile,
    &Args::strSubCert,
    &Args::strNextVkFile,
    &Args::strSlave,
    &Args::strMergeWriteData,
    &Args::strVerAddr,
    &Args::strTotalVerLen,
    &Args::strMajorVerLen,
    &Args::strSubVerLen,
    &Args::strRecordVerMode,
    &Args::strDumpAddr,
    &Args::strDumpLen,
    &Args::strDumpName,
    &Args::strSettingFile,
    &Args::strSearchFwMode,
    &Args::bIspChannel,
    &Args::bCompareVersion,
    &Args::bSearchFw,
    &Args::bFwGiven,
    &Args::bDdcciCmd,
    &Args::strFlagAddr,
    &Args::strFlagData,
    &Args::ulBootCodeType,
    {&Args::ulIspMode, 1},
    &Args::strDsMode,
    &Args::strBootFwPath,
    &Args::ulEdpIspMode,
    &Args::ulUserDefinedInfoType,
    {&Args::ulMergeFwGeneration, 2},
    &Args::ulMergeInfoType,
    &Args::ulSendExtraCmdMode,
    &Args::strWriteData,
};

std::size_t RoundedUp(std::size_t offset, std::size_t alignment) {
    return (offset + alignment - 1) / alignment * alignment;
}

TEST(RawArgs, Fields_follow_each_other_in_documented_order) {
    const Args args;
    std::size_t end = 0;
    for (const Field &field : kFields) {
        EXPECT_EQ(field.OffsetIn(args), RoundedUp(end, field.Alignment()))
            << "field " << &field - kFields;
        end = field.OffsetIn(args) + field.Size();
    }
    EXPECT_EQ(sizeof args, RoundedUp(end, alignof(Args)));
}

TEST(RawArgs, Fields_have_documented_defaults) {
    const Args args;
    for (const Field &field : kFields) {
        if (field.text != nullptr) {
            EXPECT_EQ(args.*field.text, "") << "field " << &field - kFields;
        } else {
            EXPECT_EQ(args.*field.number, field.byDefault) << "field " << &field - kFields;
        }
    }
}

} // namespace
