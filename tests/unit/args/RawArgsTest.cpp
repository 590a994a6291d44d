#include "scaler_isp/args/RawArgs.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include <gtest/gtest.h>

namespace {

TEST(RawArgs, Fields_of_raw_record_have_documented_order) {
    const STRUCT_CP_ISP_CMD_ARGS args;
    const void *const fields[] = {&args.ulActionMask,
                                  &args.ulSignTypeMask,
                                  &args.ulVerLocMask,
                                  &args.ulMergeInfoRwMask,
                                  &args.strUserDefinedVerMode,
                                  &args.strComm,
                                  &args.strFwPath,
                                  &args.strSignFile,
                                  &args.strKeyPair,
                                  &args.strVkFile,
                                  &args.strSkFile,
                                  &args.strSubCert,
                                  &args.strNextVkFile,
                                  &args.strSlave,
                                  &args.strMergeWriteData,
                                  &args.strVerAddr,
                                  &args.strTotalVerLen,
                                  &args.strMajorVerLen,
                                  &args.strSubVerLen,
                                  &args.strRecordVerMode,
                                  &args.strDumpAddr,
                                  &args.strDumpLen,
                                  &args.strDumpName,
                                  &args.strSettingFile,
                                  &args.strSearchFwMode,
                                  &args.bIspChannel,
                                  &args.bCompareVersion,
                                  &args.bSearchFw,
                                  &args.bFwGiven,
                                  &args.bDdcciCmd,
                                  &args.strFlagAddr,
                                  &args.strFlagData,
                                  &args.ulBootCodeType,
                                  &args.ulIspMode,
                                  &args.strDsMode,
                                  &args.strBootFwPath,
                                  &args.ulEdpIspMode,
                                  &args.ulUserDefinedInfoType,
                                  &args.ulMergeFwGeneration,
                                  &args.ulMergeInfoType,
                                  &args.ulSendExtraCmdMode,
                                  &args.strWriteData};
    EXPECT_TRUE(std::is_sorted(std::begin(fields), std::end(fields), std::less<const void *>()));
    EXPECT_EQ(fields[0], &args);
}

} // namespace
