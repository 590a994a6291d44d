#include <filesystem>
#include <functional>
#include <iterator>
#include <span>
#include <sstream>
#include <string_view>

#include "ExpectedRecords.h"
#include "ParserFixture.h"

namespace {

using Records = ExpectedRecords;
using namespace std::string_view_literals;

constexpr auto kSw = ENUM_SIGN_TYPE_SW;
constexpr auto kHw = ENUM_SIGN_TYPE_HW;

/// One command line. "@" stands for the current directory, ending in "/".
struct Line {
    const char *words;
    int result;
    std::string_view out;
    /// What the line stores. Every field that is not mentioned must stay as it was.
    void (*stores)(Records &);
};

void StoresNothing(Records &) {}

/// Refused by the scan: no field is touched, but for the settings file of a search.
constexpr Line kRefusedByScan[] = {
    {"--erase --newboot --edpmode ISP", 0, "wrong edp isp mode!", StoresNothing},
    {"--isp --fw a.bin --fw b.bin", 0, "Parameter has been detected two or more times! --fw0 \n",
     StoresNothing},
    {"--isp --fw a.bin --bank 256", 0, "Parameter out of range 0~255! --bank0 256\n",
     StoresNothing},
    {"--isp --fw a.bin --searchfw auto", 0, "", StoresNothing},
    {"--isp --searchfw auto", 0, "find more than one bin file!\n", StoresNothing},
    {"--isp --searchfw prefix", 0, "Cannot fw prefix setting!\n",
     [](Records &r) { r.DefaultSettingFile(); }},
    {"--isp --settingfile none.ini --searchfw prefix", 0, "Cannot fw prefix setting!\n",
     [](Records &r) { r.SettingFileCharacters(LibraryPath() + "none.ini"); }},
};

constexpr Line kRefusedAction[] = {
    {"--comm 5 --newboot --comparever", 0, "Action type undefined or illegal!\n", StoresNothing},
    {"--verify --erase --newboot", 0, "Action type undefined or more than one type!\n",
     StoresNothing},
    {"--factoryisp --newboot", 0, "Action type undefined or illegal!\n",
     [](Records &r) { r.c.enumActionType = ENUM_ACTION_NONE; }},
    {"--mergefwinfo --write 1.256 --newboot --factory --comm 5", 0,
     "Parameter illegal! --MergeFw --write 1.256 \n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_MERGEFWINFO, Step::Action);
         r.c.enumBootCodeType = 1;
         r.c.enumIspMode = 2;
         r.c.enumMergeFWInfoMode = ENUM_MERGE_INFO_WRITE;
         r.c.stMergeFwInfo = {};
         r.c.stMergeFwInfo.ulMergeDataCount = 1;
         r.c.stMergeFwInfo.ucMergeData[0] = 1;
     }},
};

/// Refused before the signature record says what to do: its action stays as it was.
constexpr Line kRefusedSignatureType[] = {
    {"--isp --fw a.bin --sw --hw --dsmode 2 --boot b.bin", 0,
     "Digital signature type is undefined or more than one type!\n",
     [](Records &r) { r.Plain(ENUM_ACTION_ISP, Step::Action); }},
    {"--isp --fw a.bin --sw --dsmode 5 --boot b.bin", 0,
     "Parameter out of range! --dsmode 5 \nDigital signature mode is illegal!\n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_ISP, Step::Action);
         r.c.enumDigitalSignatureType = kSw;
         r.s.enumDigitalSignatureType = kSw;
     }},
    {"--isp --sw --dsmode 3 --boot b.bin", 0, "Program fw path is undefined!\n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_ISP, Step::Action);
         r.c.enumDigitalSignatureType = kSw;
         r.s.enumDigitalSignatureType = kSw;
         r.s.enumSWDigitalSignatureMode = ENUM_SIGN_SW_MODE_VXM_EXTERNAL;
         r.c.enumSWDigitalSignatureMode = ENUM_SIGN_SW_MODE_VXM_EXTERNAL;
     }},
    {"--erase --sw --fw a.bin --dsmode 2 --boot b.bin --signfile s --keypair 9 --vkfile v "
     "--skfile k --subcert c --nextvkfile n",
     0, "Digital signature type should not be defined only when program fw!\n",
     [](Records &r) {
         r.Signed(ENUM_ACTION_ERASE, kSw, 2);
         Records::Text(r.c.szBootFwPath, "b.bin");
         Records::Text(r.s.szFwFile, "a.bin");
         Records::Text(r.s.szSignatureFile, "s");
         Records::Text(r.s.szKeyPair, "9");
         Records::Text(r.s.szVerifyKeyFile, "v");
         Records::Text(r.s.szSignKeyFile, "k");
         Records::Text(r.s.szSubCertFile, "c");
         Records::Text(r.s.szNextVerifyKeyFile, "n");
     }},
};

/// Refused by a check of the signature files: those before it are stored as absolute paths.
constexpr Line kRefusedSignatureFiles[] = {
    {"--sign --sw --dsmode 1 --fw a.bin", 0,
     "Digital signature: Lenovo digital signature can not support sign function!\n",
     [](Records &r) {
         r.Signed(ENUM_ACTION_SIGN, kSw, 1);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_SIGN;
         Records::Text(r.s.szFwFile, "a.bin");
     }},
    {"--verify --hw --dsmode 2 --fw a.bin", 0,
     "Digital signature: Hw digital signature can not support verify function!\n",
     [](Records &r) {
         r.Signed(ENUM_ACTION_VERIFY, kHw, 2);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
         Records::Text(r.s.szFwFile, "a.bin");
     }},
    {"--verify --sw --dsmode 3 --fw gone.bin --signfile s.sig", 0,
     "Digital signature: fw file is not exist! @gone.bin\n",
     [](Records &r) {
         r.Signed(ENUM_ACTION_VERIFY, kSw, 3);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
         Records::Text(r.s.szFwFile, "gone.bin");
         Records::Text(r.s.szSignatureFile, "s.sig");
     }},
    {"--verify --sw --dsmode 3 --fw a.bin --vkfile k.pem", 0,
     "Digital signature: Signature file is missing!\n",
     [](Records &r) {
         r.Signed(ENUM_ACTION_VERIFY, kSw, 3);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
         Records::Text(r.s.szFwFile, r.Full("a.bin"));
         Records::Text(r.s.szVerifyKeyFile, "k.pem");
     }},
    {"--isp --sw --dsmode 3 --fw a.bin --signfile s.sig --skfile k.pem --comm 5", 0,
     "Digital signature: Vxm external verify key file should not be empty!\n",
     [](Records &r) {
         r.Signed(ENUM_ACTION_ISP, kSw, 3);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
         Records::Text(r.s.szFwFile, r.Full("a.bin"));
         Records::Text(r.s.szSignatureFile, r.Full("s.sig"));
         Records::Text(r.s.szSignKeyFile, "k.pem");
     }},
    {"--verify --sw --dsmode 1 --fw a.bin --signfile s.sig --vkfile gone.pem", 0,
     "Digital signature: Lenovo verify key file is not exist! @gone.pem\n",
     [](Records &r) {
         r.Signed(ENUM_ACTION_VERIFY, kSw, 1);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
         Records::Text(r.s.szFwFile, r.Full("a.bin"));
         Records::Text(r.s.szSignatureFile, r.Full("s.sig"));
         Records::Text(r.s.szVerifyKeyFile, "gone.pem");
     }},
    {"--sign --sw --dsmode 2 --fw a.bin --keypair 5", 0,
     "Digital signature: Vxm Key Pair out if range! --keypair 5\n",
     [](Records &r) {
         r.Signed(ENUM_ACTION_SIGN, kSw, 2);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_SIGN;
         r.s.nKeyPair = 0;
         Records::Text(r.s.szKeyPair, "5");
         Records::Text(r.s.szFwFile, r.Full("a.bin"));
         Records::Text(r.s.szSignatureFile, r.Full("a.bin.sig"));
     }},
    {"--sign --sw --dsmode 4 --fw a.bin --nextvkfile k.pem --skfile gone.pem", 0,
     "Digital signature: Vxm external sign key file is not exist! @gone.pem\n",
     [](Records &r) {
         r.Signed(ENUM_ACTION_SIGN, kSw, 4);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_SIGN;
         Records::Text(r.s.szFwFile, r.Full("a.bin"));
         Records::Text(r.s.szSignatureFile, r.Full("a.bin.sig"));
         Records::Text(r.s.szNextVerifyKeyFile, r.Full("k.pem"));
         Records::Text(r.s.szSignKeyFile, "gone.pem");
     }},
    {"--sign --hw --dsmode 1 --fw gone.bin --skfile k.pem", 0,
     "Digital signature: Vxm hw next verify key file should not be empty!\n",
     [](Records &r) {
         r.Signed(ENUM_ACTION_SIGN, kHw, 1);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_SIGN;
         Records::Text(r.s.szFwFile, r.Full("gone.bin"));
         Records::Text(r.s.szSignatureFile, r.Full("gone.bin.sig"));
         Records::Text(r.s.szSignKeyFile, r.Full("k.pem"));
     }},
};

constexpr Line kRefusedVersionOrChannel[] = {
    {"--resetmcu --reg --ddcci --comm 5", 0,
     "Get version location type undefined or more than one type!\n",
     [](Records &r) { r.Plain(ENUM_ACTION_RESETMCU, Step::Signature); }},
    {"--resetmcu --userdefined 6", 0,
     "Get user defined version mode fail, mode is: 6\nGet version type fail\n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_RESETMCU, Step::Signature);
         r.c.enumVersionLocationType = ENUM_VER_LOC_USERDEFINED;
     }},
    {"--resetmcu --flash --veraddr 16 --totalverlen 257 --majorverlen 1", 0,
     "Version location type flash setting is illegal\n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_RESETMCU, Step::Signature);
         r.c.enumVersionLocationType = ENUM_VER_LOC_FLASH;
         auto &flash = r.c.stReadVersionFromFlash;
         flash.enumRecordVerMode = 2;
         flash.ulVerAddr = 16;
         flash.ulTotalVerLen = 257;
         flash.ulMajorVerLen = 1;
         flash.ulSubVerLen = 0;
     }},
    {"--resetmcu --comm 20 --slave 4", 0, "Parameter out of range! --comm 20\n",
     [](Records &r) { r.Plain(ENUM_ACTION_RESETMCU, Step::Channel); }},
    {"--resetmcu --comm 19 --slave 255 --comparever", 0, "Parameter out of range! --slave 255 \n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_RESETMCU, Step::Channel);
         r.c.enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(19);
         r.c.nSlaveAddressState = 0;
     }},
};

/// The switch of the automatic search is stored before the firmware files are looked at.
constexpr Line kRefusedFirmware[] = {
    {"--isp --comparever", 0, "Program fw bin path should not be empty!\n",
     [](Records &r) { r.Plain(ENUM_ACTION_ISP, Step::AutoSearch); }},
    {"--recordver --fwbin --fw gone.bin --comparever", 0, "File open fail! @gone.bin\n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_RECORDVER, Step::AutoSearch);
         r.c.enumVersionLocationType = ENUM_VER_LOC_FWBIN;
     }},
    {"--ispdiff --searchfw userdefined --fw1 gone.bin --comparever", 0,
     "File open fail! @gone.bin\n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_ISPDIFF, Step::AutoSearch);
         r.c.bAutoSearchFW = 1;
     }},
    {"--ispcopy --fw b.bin --fw1 a.bin --bank1 2 --ispchannel", 0, "Program fw bank duplicate!\n",
     [](Records &r) { r.Plain(ENUM_ACTION_ISPCOPY, Step::AutoSearch); }},
    {"--isp --fw big.bin --comparever", 0, "Total bank count exceeds 512!\n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_ISP, Step::AutoSearch);
         r.c.stMapFw.ulFwCount = 513;
     }},
};

constexpr Line kRefusedActionArguments[] = {
    {"--ispuser --fw a.bin --bank 7 --comparever --flagaddr x --flagdata 1 --edpmode isp", 0,
     "Parameter illegal! --flagaddr x \n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_ISPUSER, Step::Switches);
         r.Bank(7, 0, "a.bin");
         r.c.bCompareVersion = 1;
     }},
    {"--ispuser --fw a.bin --ispchannel --flagaddr 16 --flagdata 1,256,2 --settingfile /s.ini", 0,
     "Parameter illegal! --flagdata 1,256,2 \n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_ISPUSER, Step::Switches);
         r.Bank(0, 0, "a.bin");
         r.c.bIspChannel = 1;
         r.c.stFlagSetting.ulFlagAddr = 16;
         r.FlagData({1});
     }},
    {"--dumpflash --dumpname x.bin", 0, "",
     [](Records &r) { r.Plain(ENUM_ACTION_DUMPFLASH, Step::Switches); }},
    {"--dumpflash --dumpaddr 16 --dumpname x.bin", 0, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_DUMPFLASH, Step::Switches);
         r.c.stDumpFlash.ulDumpAddr = 16;
         r.c.stDumpFlash.ulDumpLen = 0;
     }},
    {"--i2cwrite --writedata 110 --sendextracmd both", 0, "",
     [](Records &r) { r.Plain(ENUM_ACTION_I2CWRITE, Step::Switches); }},
    {"--i2cwrite --writedata 110,81,0x82,1 --ddccicmd", 0, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_I2CWRITE, Step::Switches);
         r.c.stI2CWrite.bDdcciCmd = 1;
         r.c.stI2CWrite.ucI2CSlaveAddr = 110;
         r.c.stI2CWrite.ucI2CSubAddr = 81;
         r.c.stI2CWrite.ucI2CDataLen = 2;
     }},
};

/// Lines that end at the signature, and those that continue after it.
constexpr Line kAcceptedSignatures[] = {
    {"--verify --sw --dsmode 3 --fw a.bin --signfile s.sig --vkfile k.pem --subcert gone --comm 5",
     1, "",
     [](Records &r) {
         r.Signed(ENUM_ACTION_VERIFY, kSw, 3);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
         Records::Text(r.s.szFwFile, r.Full("a.bin"));
         Records::Text(r.s.szSignatureFile, r.Full("s.sig"));
         Records::Text(r.s.szVerifyKeyFile, r.Full("k.pem"));
         Records::Text(r.s.szSubCertFile, "gone");
     }},
    {"--sign --sw --dsmode 2 --fw a.bin --keypair 0x4 --signfile out.sig", 1, "",
     [](Records &r) {
         r.Signed(ENUM_ACTION_SIGN, kSw, 2);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_SIGN;
         r.s.nKeyPair = 4;
         Records::Text(r.s.szKeyPair, "0x4");
         Records::Text(r.s.szFwFile, r.Full("a.bin"));
         Records::Text(r.s.szSignatureFile, r.Full("out.sig"));
     }},
    {"--isp --sw --dsmode 4 --fw a.bin", 1, "Digital signature: Signature file is missing!\n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_ISP, Step::All);
         r.Signed(ENUM_ACTION_ISP, kSw, 4);
         r.s.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
         Records::Text(r.s.szFwFile, r.Full("a.bin"));
         r.Bank(0, 0, "a.bin");
     }},
    {"--isp --factory --sw --dsmode 3 --fw a.bin --boot b.bin", 1, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_ISP, Step::All);
         r.Signed(ENUM_ACTION_ISP, kSw, 3);
         r.c.enumIspMode = 2;
         r.s.enumSignActionType = ENUM_SIGN_ACTION_VERIFY;
         Records::Text(r.c.szBootFwPath, "b.bin");
         Records::Text(r.s.szFwFile, "a.bin");
         r.Bank(0, 0, "a.bin");
     }},
    {"--isp --hw --fw a.bin --dsmode 2", 1, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_ISP, Step::All);
         r.Signed(ENUM_ACTION_ISP, kHw, 2);
         Records::Text(r.s.szFwFile, "a.bin");
         r.Bank(0, 0, "a.bin");
     }},
};

constexpr Line kAccepted[] = {
    {"--resetmcu --slave 0 --boot b.bin --signfile s.sig", 1, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_RESETMCU, Step::All);
         r.c.nSlaveAddressState = 1;
     }},
    {"--isp --fw a.bin --bank 10 --bank1 2 --fw1 b.bin --fw2 empty.bin --bank2 3", 1, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_ISP, Step::All);
         r.Bank(2, 0, "b.bin");
         r.Bank(3, 1, "b.bin");
         r.Bank(4, 2, "b.bin");
         r.Bank(10, 0, "a.bin");
     }},
    {"--recordver --fwbincmd --searchfw userdefined --settingfile /s.ini", 1, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_RECORDVER, Step::Switches);
         r.SettingFileCharacters("/s.ini");
         r.NoKeywords();
         r.c.enumVersionLocationType = ENUM_VER_LOC_FWBINCMD;
         r.c.bAutoSearchFW = 1;
         r.Bank(0, 0, "a.bin");
     }},
    {"--dumpflash --dumplen 0x20 --dumpname x.txt --comm 0x13 --slave 254", 1, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_DUMPFLASH, Step::All);
         r.c.enumCommID = static_cast<STRUCT_ENUM_COMM_ID>(19);
         r.c.nSlaveAddressState = 0;
         r.c.ucSlaveAddress = 254;
         r.c.stDumpFlash.ulDumpAddr = 0;
         r.c.stDumpFlash.ulDumpLen = 32;
         Records::Text(r.c.stDumpFlash.wszDumpFile, "dumpFile.bin");
     }},
    {"--i2cwrite --writedata 110,81,1", 1, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_I2CWRITE, Step::All);
         auto &write = r.c.stI2CWrite;
         write.bDdcciCmd = 0;
         write.ucI2CSlaveAddr = 110;
         write.ucI2CSubAddr = 81;
         write.ucI2CDataLen = 1;
         write.ucI2CData[0] = 1;
     }},
    {"--mergefwinfo --read --edpmode readver --infotype hphwcid --mergefwgen gen1 "
     "--mergeinfotype hpfriends --sendextracmd both --comparever --ispchannel --newboot",
     1, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_MERGEFWINFO, Step::All);
         r.c.enumBootCodeType = 1;
         r.c.enumMergeFWInfoMode = ENUM_MERGE_INFO_READ;
         r.c.bCompareVersion = 1;
         r.c.bIspChannel = 1;
         r.c.enumEdpIspMode = 2;
         r.c.enumUserDefinedInfoType = 4;
         r.c.enumMergeFWGeneration = 1;
         r.c.enumMergeFWInfoType = 1;
         r.c.enumSendExtraCmdMode = 3;
     }},
    {"--resetmcu --flash --veraddr 0x10 --totalverlen 4 --majorverlen 2 --subverlen 1 "
     "--recordvermode 1",
     1, "",
     [](Records &r) {
         r.Plain(ENUM_ACTION_RESETMCU, Step::All);
         r.c.enumVersionLocationType = ENUM_VER_LOC_FLASH;
         auto &flash = r.c.stReadVersionFromFlash;
         flash.enumRecordVerMode = 1;
         flash.ulVerAddr = 16;
         flash.ulTotalVerLen = 4;
         flash.ulMajorVerLen = 2;
         flash.ulSubVerLen = 1;
     }},
    {"--resetmcu --userdefined 5 stray", 1, "non-option ARGV-elements: stray \n",
     [](Records &r) {
         r.Plain(ENUM_ACTION_RESETMCU, Step::All);
         r.c.enumVersionLocationType = ENUM_VER_LOC_USERDEFINED;
         r.c.enumUserDefinedVersionType = ENUM_USER_DEFINED_VERSION_5;
     }},
};

constexpr std::span<const Line> kTables[] = {
    kRefusedByScan,          kRefusedAction,           kRefusedSignatureType,
    kRefusedSignatureFiles,  kRefusedVersionOrChannel, kRefusedFirmware,
    kRefusedActionArguments, kAcceptedSignatures,      kAccepted};

} // namespace

/// Lines on a parser whose records are known: each is compared whole, field by field.
class LineOutcome : public ParserTest {
  protected:
    LineOutcome() {
        Sparse("a.bin", 10);
        Sparse("b.bin", 65536 * 2 + 1);
        Sparse("big.bin", 65536 * 513);
        Sparse("empty.bin", 0);
        folder.Write("s.sig", "s");
        folder.Write("k.pem", "k");
        folder.Write("IspUserDefined.txt", "[UserDefinedInfo]\nSIName=a.b\n");
    }

    void Sparse(const std::string &name, std::uintmax_t size) const {
        std::filesystem::resize_file(folder.Write(name, ""), size);
    }

    std::string InFolder(std::string_view text) const {
        std::string result;
        for (const char character : text) {
            result += character == '@' ? folder.Path() : std::string(1, character);
        }
        return result;
    }

    static std::vector<std::string> Words(const std::string &line) {
        std::istringstream stream(line);
        return {std::istream_iterator<std::string>(stream), {}};
    }

    /// Parses every line on a parser of its own that was prepared.
    void Check(const std::function<void()> &prepare) {
        for (const std::span<const Line> lines : kTables) {
            for (const Line &line : lines) {
                SCOPED_TRACE(line.words);
                Renew();
                prepare();
                Records expected(*parser, folder.Path());
                line.stores(expected);
                const Answer answer = Parse(Words(InFolder(line.words)));
                EXPECT_EQ(answer.result, line.result);
                EXPECT_EQ(answer.out, InFolder(line.out));
                EXPECT_EQ(answer.err, "");
                EXPECT_THAT(expected.FieldsThatDiffer(*parser), testing::IsEmpty());
            }
        }
    }
};

TEST_F(LineOutcome, Line_changes_exactly_its_fields_of_fresh_parser) {
    Check([] {});
}

TEST_F(LineOutcome, Line_changes_exactly_its_fields_of_used_parser) {
    Check([this] {
        EXPECT_ACCEPTED(Parse(Words("--sign --hw --dsmode 1 --nextvkfile k.pem --skfile k.pem "
                                    "--vkfile old --subcert old --keypair 9 --boot old.bin")));
        EXPECT_ACCEPTED(
            Parse(Words("--i2cwrite --writedata 5,6,0x82,7,8 --ddccicmd --userdefined 4 --comm 3 "
                        "--slave 18 --comparever --ispchannel --newboot --factory --edpmode isp "
                        "--settingfile /a/longer/path/than/any/that/follows/" +
                        std::string(180, 'f') +
                        " --infotype hpfwname --mergefwgen gen1 --mergeinfotype hpfriends "
                        "--sendextracmd after")));
    });
}

TEST_F(LineOutcome, Line_changes_exactly_its_fields_of_records_that_host_filled) {
    Check([this] { FillRecords(*parser); });
}

TEST_F(LineOutcome, Unknown_option_is_reported_and_line_is_accepted) {
    FillRecords(*parser);
    Records expected(*parser, folder.Path());
    expected.Plain(ENUM_ACTION_ERASE, Step::All);
    const Answer answer = Parse({"--bogus", "--erase"});
    EXPECT_EQ(answer.result, 1);
    EXPECT_EQ(answer.out, "illegal option ' \0 '!\n"sv);
    EXPECT_EQ(answer.err, "tool: unrecognized command '--bogus'\n");
    EXPECT_THAT(expected.FieldsThatDiffer(*parser), testing::IsEmpty());
}
