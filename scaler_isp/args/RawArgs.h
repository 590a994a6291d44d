#ifndef SCALER_ISP_ARGS_RAW_ARGS_H
#define SCALER_ISP_ARGS_RAW_ARGS_H

#include <cstdint>
#include <string>

/// The values of one command line, verbatim and not yet validated. Strings are UTF-8, and empty if
/// the option was not given.
struct STRUCT_CP_ISP_CMD_ARGS {
    std::uint32_t ulActionMask = 0;      ///< one bit per action option
    std::uint32_t ulSignTypeMask = 0;    ///< --sw 1, --hw 2
    std::uint32_t ulVerLocMask = 0;      ///< one bit per version location
    std::uint32_t ulMergeInfoRwMask = 0; ///< --read 1, --write 2
    std::string strUserDefinedVerMode;   ///< --userdefined
    std::string strComm;
    std::string strFwPath; ///< --fw, or the file that --searchfw found
    std::string strSignFile;
    std::string strKeyPair;
    std::string strVkFile;
    std::string strSkFile;
    std::string strSubCert;
    std::string strNextVkFile;
    std::string strSlave;
    std::string strMergeWriteData; ///< --write, while the only action so far is --mergefwinfo
    std::string strVerAddr;
    std::string strTotalVerLen;
    std::string strMajorVerLen;
    std::string strSubVerLen;
    std::string strRecordVerMode;
    std::string strDumpAddr;
    std::string strDumpLen;
    std::string strDumpName;
    std::string strSettingFile;
    std::string strSearchFwMode;
    std::uint32_t bIspChannel = 0;
    std::uint32_t bCompareVersion = 0;
    std::uint32_t bSearchFw = 0;
    std::uint32_t bFwGiven = 0;
    std::uint32_t bDdcciCmd = 0;
    std::string strFlagAddr;
    std::string strFlagData;
    std::uint32_t ulBootCodeType = 0;
    std::uint32_t ulIspMode = 1;
    std::string strDsMode;
    std::string strBootFwPath;
    std::uint32_t ulEdpIspMode = 0;
    std::uint32_t ulUserDefinedInfoType = 0;
    std::uint32_t ulMergeFwGeneration = 2;
    std::uint32_t ulMergeInfoType = 0;
    std::uint32_t ulSendExtraCmdMode = 0;
    std::string strWriteData;
};

#endif
