#include <filesystem>
#include <random>

#include "CommandLineModel.h"
#include "OptionList.h"
#include "ParserFixture.h"

/// Random command lines against the model.
class CommandLineModel : public ParserTest {
  protected:
    CommandLineModel() {
        world.library =
            std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + "/";
        world.folder = folder.Path();
    }

    std::size_t Pick(std::size_t limit) {
        return random() % limit;
    }
    std::string One(const std::vector<std::string> &texts) {
        return texts[Pick(texts.size())];
    }

    /// Makes the files of a world and notes them.
    void Furnish(const std::vector<std::pair<std::string, std::uintmax_t>> &sizes,
                 const std::string &searchName, const std::string &prefix) {
        for (const auto &entry : std::filesystem::directory_iterator(folder.Path())) {
            std::filesystem::remove_all(entry);
        }
        world.files.clear();
        for (const auto &[name, size] : sizes) {
            std::filesystem::resize_file(folder.Write(name, ""), size);
            world.files[name] = static_cast<unsigned>((size + 65535) / 65536);
        }
        world.searchName = searchName;
        world.prefix = prefix;
        folder.Write("my.ini", "[ISP_Fw]\nstrFwPrefix=" + prefix + "\n");
        if (!searchName.empty()) {
            folder.Write("IspUserDefined.txt", "[UserDefinedInfo]\nSIName=" + searchName + "\n");
        }
    }

    std::string Number() {
        return One({"0",    "1",   "2",    "3",        "4",         "5",           "6",   "8",
                    "16",   "19",  "20",   "127",      "254",       "255",         "256", "-1",
                    "0x10", "010", "0xff", "0xFFFFF0", "0x1000000", "-2147483648", "",    "abc",
                    "12x",  "08",  "0x",   "-",        " 7",        "7 "});
    }
    std::string SmallNumber() {
        return Pick(4) == 0 ? Number() : One({"1", "2", "3", "4"});
    }
    std::string File() {
        return One({"a.bin", "a.bin", "b.bin", "b.bin", "only.bin", "s.sig", "k.pem", "empty.bin",
                    "big.bin", "none.bin", "", folder.Path("a.bin"), "/nowhere/x.bin"});
    }
    std::string List(char separator) {
        if (Pick(12) == 0) {
            return "bad";
        }
        std::string list;
        const std::size_t longest = Pick(8) == 0 ? 300 : 6;
        for (std::size_t count = Pick(longest); count > 0; --count) {
            list += One({"1", "2", "0x82", "0x81", "255", Pick(40) == 0 ? "256" : "0"});
            list += Pick(10) == 0 ? std::string(2, separator) : std::string(1, separator);
        }
        return list;
    }

    std::string ValueOf(const std::string &name) {
        if (name == "write" || name == "flagdata" || name == "writedata") {
            return List(name == "write" ? '.' : ',');
        }
        if (name.compare(0, 2, "fw") == 0 || name == "boot" || name == "subcert") {
            return File();
        }
        if (name == "signfile") {
            return One({"s.sig", "s.sig", "s.sig", "none.sig", ""});
        }
        if (name == "vkfile" || name == "skfile" || name == "nextvkfile") {
            return One({"k.pem", "k.pem", "none.pem", "", "/nowhere/" + std::string(300, 'k')});
        }
        if (name == "dumpname") {
            return One({"x.bin", "x.txt", ".bin", "longer.name.bin", ""});
        }
        if (name == "settingfile") {
            return One({"my.ini", folder.Path("my.ini"), folder.Path("my.ini"), "/s.ini", ""});
        }
        if (name == "searchfw") {
            return One({"auto", "userdefined", "prefix", "Auto"});
        }
        if (name == "edpmode" || name == "infotype" || name == "mergefwgen" ||
            name == "mergeinfotype" || name == "sendextracmd") {
            return Keyword(name);
        }
        return SmallNumber();
    }

    std::string Keyword(const std::string &name) {
        if (Pick(12) == 0) {
            return One({"", "ISP", "gen", "hp", "none", "isp", "both"});
        }
        return name == "edpmode"         ? One({"isp", "readver"})
               : name == "infotype"      ? One({"hpscaler", "hpfwname", "hpmodelname", "hphwcid"})
               : name == "mergefwgen"    ? One({"gen1", "gen2"})
               : name == "mergeinfotype" ? "hpfriends"
                                         : One({"before", "after", "both"});
    }

    void AddOption(std::vector<std::vector<std::string>> &groups, const std::string &name) {
        for (const ListedOption &option : kListedOptions) {
            if (name != option.name) {
                continue;
            }
            if (!option.takesValue) {
                groups.push_back({"--" + name + (Pick(150) == 0 ? "=x" : "")});
            } else if (Pick(3) == 0) {
                groups.push_back({"--" + name + "=" + ValueOf(name)});
            } else {
                groups.push_back({"--" + name, ValueOf(name)});
            }
        }
    }

    /// Options that make a good command, and others anywhere between them.
    std::vector<std::string> Words() {
        std::vector<std::vector<std::string>> groups;
        const std::string action =
            One({"isp", "isp", "isp", "ispuser", "ispuser", "ispdiff", "ispcopy", "sign", "sign",
                 "verify", "verify", "recordver", "dumpflash", "i2cwrite", "i2cwrite",
                 "mergefwinfo", "mergefwinfo", "resetmcu", kListedOptions[Pick(25)].name});
        if (Pick(40) != 0) {
            AddOption(groups, action);
        }
        const bool programs = action.compare(0, 3, "isp") == 0;
        if (programs && Pick(5) != 0) {
            AddOption(groups, Pick(6) == 0 ? "searchfw" : "fw");
        }
        if (action == "sign" || action == "verify" || (programs && Pick(2) == 0)) {
            for (const char *name :
                 {"fw", "dsmode", "signfile", "vkfile", "skfile", "nextvkfile"}) {
                if (Pick(5) != 0) {
                    AddOption(groups, name);
                }
            }
            AddOption(groups, Pick(4) == 0 ? "hw" : "sw");
        }
        const std::map<std::string, std::vector<std::string>> own = {
            {"ispuser", {"flagaddr", "flagdata"}},
            {"dumpflash", {"dumpaddr", "dumplen", "dumpname"}},
            {"i2cwrite", {"writedata", Pick(2) == 0 ? "ddccicmd" : "writedata"}},
            {"mergefwinfo", {Pick(3) == 0 ? "read" : "write"}},
            {"recordver", {Pick(2) == 0 ? "fwbin" : "fwbincmd", "fw"}}};
        if (const auto found = own.find(action); found != own.end()) {
            for (const std::string &name : found->second) {
                AddOption(groups, name);
            }
        }
        if (Pick(6) == 0) {
            for (const char *name : {"flash", "veraddr", "totalverlen", "majorverlen"}) {
                AddOption(groups, name);
            }
        }
        for (std::size_t count = Pick(5); count > 0; --count) {
            AddOption(groups, kListedOptions[Pick(3) == 0 ? Pick(90) : 25 + Pick(65)].name);
        }
        if (Pick(15) == 0) {
            groups.push_back({One({"stray", "--bogus", "--bogus=1", "st ray"})});
        }
        if (Pick(4) == 0) {
            std::shuffle(groups.begin(), groups.end(), random);
        }
        std::vector<std::string> words;
        for (const auto &group : groups) {
            words.insert(words.end(), group.begin(), group.end());
        }
        if (Pick(30) == 0 && !words.empty()) {
            words.pop_back();
        }
        return words;
    }

    using Record = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
    void CheckNumbers(const Record &r, const model::Outcome &expected) const;
    void CheckTexts(const Record &r, const model::Outcome &expected) const;
    static void CheckLists(const Record &r, const model::Outcome &expected);
    void Run(int rounds);

    std::mt19937 random{4242};
    model::World world;
    int accepted = 0;
    std::map<std::string, int> messages;
};

void CommandLineModel::CheckNumbers(const Record &r, const model::Outcome &expected) const {
    const auto s = Sign();
    const std::map<std::string, long long> found = {
        {"action", r.enumActionType},
        {"signType", r.enumDigitalSignatureType},
        {"swMode", r.enumSWDigitalSignatureMode},
        {"location", r.enumVersionLocationType},
        {"userVersion", r.enumUserDefinedVersionType},
        {"mergeMode", r.enumMergeFWInfoMode},
        {"mergeType", r.enumMergeFWInfoType},
        {"comm", r.enumCommID},
        {"edpMode", r.enumEdpIspMode},
        {"infoType", r.enumUserDefinedInfoType},
        {"generation", r.enumMergeFWGeneration},
        {"extraMode", r.enumSendExtraCmdMode},
        {"slaveState", r.nSlaveAddressState},
        {"slave", r.ucSlaveAddress},
        {"autoSearch", r.bAutoSearchFW},
        {"compare", r.bCompareVersion},
        {"channel", r.bIspChannel},
        {"bootCode", r.enumBootCodeType},
        {"ispMode", r.enumIspMode},
        {"flagCount", r.stFlagSetting.ulFlagCount},
        {"flagAddr", r.stFlagSetting.ulFlagAddr},
        {"recordMode", r.stReadVersionFromFlash.enumRecordVerMode},
        {"verAddr", r.stReadVersionFromFlash.ulVerAddr},
        {"totalLen", r.stReadVersionFromFlash.ulTotalVerLen},
        {"majorLen", r.stReadVersionFromFlash.ulMajorVerLen},
        {"subLen", r.stReadVersionFromFlash.ulSubVerLen},
        {"dumpAddr", r.stDumpFlash.ulDumpAddr},
        {"dumpLen", r.stDumpFlash.ulDumpLen},
        {"i2cSlave", r.stI2CWrite.ucI2CSlaveAddr},
        {"i2cSub", r.stI2CWrite.ucI2CSubAddr},
        {"i2cLen", r.stI2CWrite.ucI2CDataLen},
        {"ddcci", r.stI2CWrite.bDdcciCmd},
        {"mergeCount", r.stMergeFwInfo.ulMergeDataCount},
        {"bankCount", r.stMapFw.ulFwCount},
        {"signAction", s.enumSignActionType},
        {"signSignType", s.enumDigitalSignatureType},
        {"signSwMode", s.enumSWDigitalSignatureMode},
        {"signHwMode", s.enumHWDigitalSignatureMode},
        {"keyPair", s.nKeyPair}};
    EXPECT_EQ(found, expected.number);
    EXPECT_EQ(r.ulReserved4C + r.ulProgStartBank + r.stFlagSetting.ulFlagReserved +
                  r.stReadUserDefinedVersion.ulUserDefinedVersion,
              0U);
}

void CommandLineModel::CheckTexts(const Record &r, const model::Outcome &expected) const {
    const auto s = Sign();
    EXPECT_EQ(TextOf(r.stDumpFlash.wszDumpFile), Wide(expected.dumpFile));
    EXPECT_EQ(TextOf(r.wszSettingFile), Wide(expected.settingFile));
    EXPECT_EQ(TextOf(r.szBootFwPath), expected.bootPath);
    EXPECT_EQ(TextOf(s.szFwFile), expected.fw);
    EXPECT_EQ(TextOf(s.szSignatureFile), expected.signature);
    EXPECT_EQ(TextOf(s.szKeyPair), expected.keyPairText);
    EXPECT_EQ(TextOf(s.szVerifyKeyFile), expected.verifyKey);
    EXPECT_EQ(TextOf(s.szSignKeyFile), expected.signKey);
    EXPECT_EQ(TextOf(s.szSubCertFile), expected.subCert);
    EXPECT_EQ(TextOf(s.szNextVerifyKeyFile), expected.nextKey);
}

void CommandLineModel::CheckLists(const Record &r, const model::Outcome &expected) {
    const auto padded = [](std::vector<unsigned> list, std::size_t size, unsigned filler) {
        list.resize(size, filler);
        return list;
    };
    const auto &flags = r.stFlagSetting.ucFlagData;
    EXPECT_EQ(std::vector<unsigned>(std::begin(flags), std::end(flags)),
              padded(expected.flagData, 1220, 0xFF));
    const auto &i2c = r.stI2CWrite.ucI2CData;
    EXPECT_EQ(std::vector<unsigned>(std::begin(i2c), std::end(i2c)),
              padded(expected.i2cData, 256, 0xFF));
    const auto &merge = r.stMergeFwInfo.ucMergeData;
    EXPECT_EQ(std::vector<unsigned>(std::begin(merge), std::end(merge)),
              padded(expected.mergeData, 16, 0));
    std::size_t i = 0;
    for (const auto &[bank, place] : expected.banks) {
        ASSERT_EQ(r.stMapFw.ulTargetBank[i], bank);
        ASSERT_EQ(r.stMapFw.stFwBank[i].ulFileBank, place.first);
        ASSERT_EQ(r.stMapFw.stFwBank[i].ullBankValue, 0U);
        ASSERT_EQ(TextOf(r.stMapFw.stFwBank[i].wszFwPath), Wide(place.second));
        ++i;
    }
}

void CommandLineModel::Run(int rounds) {
    for (int round = 0; round < rounds; ++round) {
        const std::vector<std::string> words = Words();
        const model::Outcome expected = model::Predict(world, words);
        if (expected.dependsOnFileSystem) {
            continue;
        }
        std::string shown;
        for (const std::string &word : words) {
            shown += " [" + word + "]";
        }
        SCOPED_TRACE(shown);
        const Answer answer = ParseFresh(words);
        EXPECT_EQ(answer.result, expected.result);
        EXPECT_EQ(answer.out, expected.out);
        EXPECT_EQ(answer.err, expected.err);
        const auto record = Setting();
        CheckNumbers(*record, expected);
        CheckTexts(*record, expected);
        CheckLists(*record, expected);
        if (HasFailure()) {
            return;
        }
        accepted += expected.result;
        ++messages[expected.out.substr(0, expected.out.find_first_of("-/'0123456789"))];
    }
    EXPECT_GT(accepted, rounds / 8);
    EXPECT_GT(messages.size(), 25U);
}

TEST_F(CommandLineModel, Folder_with_many_files) {
    Furnish({{"a.bin", 10},
             {"b.bin", 65536 * 3},
             {"big.bin", 65536 * 513},
             {"empty.bin", 0},
             {"s.sig", 1},
             {"k.pem", 1}},
            "a", "big");
    Run(6000);
}

TEST_F(CommandLineModel, Folder_with_one_firmware) {
    Furnish({{"only.bin", 65537}, {"s.sig", 1}, {"k.pem", 1}}, "only", "on");
    Run(2000);
}

TEST_F(CommandLineModel, Folder_without_firmware) {
    Furnish({{"s.sig", 1}, {"k.pem", 1}}, "", "on");
    Run(1500);
}
