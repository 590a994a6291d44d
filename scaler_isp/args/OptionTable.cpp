#include "scaler_isp/args/OptionTable.h"

#include <array>

#include "scaler_isp/abi/CommandSetting.h"

namespace {

using Args = STRUCT_CP_ISP_CMD_ARGS;
using enum OptionEffect;
using enum OptionGroup;

constexpr OptionKeyword kEdpModes[] = {{"isp", 1}, {"readver", 2}};
constexpr OptionKeyword kInfoTypes[] = {
    {"hpscaler", 1}, {"hpfwname", 2}, {"hpmodelname", 3}, {"hphwcid", 4}};
constexpr OptionKeyword kMergeGenerations[] = {{"gen1", 1}, {"gen2", 2}};
constexpr OptionKeyword kMergeInfoTypes[] = {{"hpfriends", 1}};
constexpr OptionKeyword kExtraCommandModes[] = {{"before", 1}, {"after", 2}, {"both", 3}};

// The kinds of rows, so that a row below says only what is its own.

constexpr OptionRow FlagRow(const char *name, OptionGroup group, int bit, bool takesValue = false) {
    return {name, takesValue, group, bit, Flag};
}

constexpr OptionRow TextRow(const char *name, int id, std::string Args::*text) {
    return {name, true, None, id, Text, text};
}

constexpr OptionRow NumberRow(const char *name, int id, std::uint32_t Args::*number,
                              std::uint32_t value) {
    return {name, false, None, id, Number, nullptr, number, value};
}

constexpr OptionRow KeywordRow(const char *name, int id, std::uint32_t Args::*number,
                               std::span<const OptionKeyword> keywords, const char *error) {
    return {name, true, None, id, Keyword, nullptr, number, 0, keywords, error};
}

constexpr OptionRow EntryRow(const char *name, int id, OptionEffect effect, unsigned int entry) {
    return {name, true, None, id, effect, nullptr, nullptr, 0, {}, nullptr, entry};
}

// Never sort: the order decides which of several abbreviated options is found, and how the others
// are listed.
constexpr std::array<OptionRow, kOptionCount> kOptions = {{
    FlagRow("verify", Action, 0x1),
    FlagRow("sign", Action, 0x2),
    FlagRow("erase", Action, 0x4),
    FlagRow("isp", Action, 0x8),
    FlagRow("ispuser", Action, 0x10),
    FlagRow("ispdiff", Action, 0x20),
    FlagRow("ispcopy", Action, 0x40),
    FlagRow("factoryisp", Action, 0x10000),
    FlagRow("recordver", Action, 0x80),
    FlagRow("srstatus", Action, 0x100),
    FlagRow("flashtype", Action, 0x200),
    FlagRow("readsr", Action, 0x400),
    FlagRow("writesr", Action, 0x800),
    FlagRow("readsafeguard", Action, 0x1000),
    FlagRow("writesafeguard", Action, 0x2000),
    FlagRow("resetmcu", Action, 0x4000),
    FlagRow("dumpflash", Action, 0x8000),
    FlagRow("getstatus", Action, 0x20000),
    FlagRow("userdefinedinfo", Action, 0x40000),
    FlagRow("edpisp", Action, 0x80000),
    FlagRow("enterispmode", Action, 0x100000),
    FlagRow("mergefwinfo", Action, 0x200000),
    FlagRow("senduserdefinedinfo", Action, 0x400000),
    FlagRow("i2cwrite", Action, 0x800000),
    FlagRow("getscalertype", Action, 0x1000000),
    TextRow("boot", 42, &Args::strBootFwPath),
    NumberRow("newboot", 40, &Args::ulBootCodeType, SCALER_ISP_NEW_BOOT_CODE),
    NumberRow("ispchannel", 49, &Args::bIspChannel, 1),
    NumberRow("factory", 41, &Args::ulIspMode, SCALER_ISP_MODE_FACTORY),
    FlagRow("sw", SignType, 1),
    FlagRow("hw", SignType, 2),
    TextRow("dsmode", 8, &Args::strDsMode),
    FlagRow("reg", VersionLocation, 0x1),
    FlagRow("ddcci", VersionLocation, 0x2),
    FlagRow("flash", VersionLocation, 0x4),
    FlagRow("fwbin", VersionLocation, 0x8),
    FlagRow("cmd", VersionLocation, 0x10),
    FlagRow("fwbincmd", VersionLocation, 0x20),
    FlagRow("copydiffer", VersionLocation, 0x40),
    FlagRow("userdefined", VersionLocation, 0x80, true),
    TextRow("veraddr", 44, &Args::strVerAddr),
    TextRow("totalverlen", 45, &Args::strTotalVerLen),
    TextRow("majorverlen", 46, &Args::strMajorVerLen),
    TextRow("subverlen", 47, &Args::strSubVerLen),
    TextRow("recordvermode", 48, &Args::strRecordVerMode),
    TextRow("dumpaddr", 50, &Args::strDumpAddr),
    TextRow("dumplen", 51, &Args::strDumpLen),
    TextRow("dumpname", 52, &Args::strDumpName),
    TextRow("comm", 15, &Args::strComm),
    EntryRow("fw", 1, Firmware, 0),
    TextRow("signfile", 2, &Args::strSignFile),
    TextRow("keypair", 3, &Args::strKeyPair),
    TextRow("vkfile", 4, &Args::strVkFile),
    TextRow("skfile", 5, &Args::strSkFile),
    TextRow("subcert", 6, &Args::strSubCert),
    TextRow("nextvkfile", 7, &Args::strNextVkFile),
    EntryRow("bank", 16, Bank, 0),
    TextRow("settingfile", 53, &Args::strSettingFile),
    EntryRow("fw1", 17, Firmware, 1),
    EntryRow("bank1", 18, Bank, 1),
    EntryRow("fw2", 19, Firmware, 2),
    EntryRow("bank2", 20, Bank, 2),
    EntryRow("fw3", 21, Firmware, 3),
    EntryRow("bank3", 22, Bank, 3),
    EntryRow("fw4", 23, Firmware, 4),
    EntryRow("bank4", 24, Bank, 4),
    EntryRow("fw5", 25, Firmware, 5),
    EntryRow("bank5", 26, Bank, 5),
    EntryRow("fw6", 27, Firmware, 6),
    EntryRow("bank6", 28, Bank, 6),
    EntryRow("fw7", 29, Firmware, 7),
    EntryRow("bank7", 30, Bank, 7),
    EntryRow("fw8", 31, Firmware, 8),
    EntryRow("bank8", 32, Bank, 8),
    EntryRow("fw9", 33, Firmware, 9),
    EntryRow("bank9", 34, Bank, 9),
    NumberRow("comparever", 38, &Args::bCompareVersion, 1),
    TextRow("flagaddr", 36, &Args::strFlagAddr),
    TextRow("flagdata", 37, &Args::strFlagData),
    TextRow("slave", 35, &Args::strSlave),
    EntryRow("searchfw", 39, Search, 0),
    KeywordRow("edpmode", 54, &Args::ulEdpIspMode, kEdpModes, "wrong edp isp mode!"),
    FlagRow("read", MergeInfoRw, 1),
    FlagRow("write", MergeInfoRw, 2, true),
    TextRow("writedata", 55, &Args::strWriteData),
    NumberRow("ddccicmd", 56, &Args::bDdcciCmd, 1),
    KeywordRow("infotype", 57, &Args::ulUserDefinedInfoType, kInfoTypes,
               "wrong user defined info type!"),
    KeywordRow("mergefwgen", 60, &Args::ulMergeFwGeneration, kMergeGenerations,
               "wrong merge info generation!"),
    KeywordRow("mergeinfotype", 58, &Args::ulMergeInfoType, kMergeInfoTypes,
               "wrong user defined merge info type!"),
    KeywordRow("sendextracmd", 59, &Args::ulSendExtraCmdMode, kExtraCommandModes,
               "wrong send extra command mode!"),
}};

constexpr std::size_t kIds = 64;

/// Rows by id, made from the table above; two rows with one id do not compile.
constexpr std::array<const OptionRow *, kIds> kRowById = [] {
    std::array<const OptionRow *, kIds> rows{};
    for (const OptionRow &row : kOptions) {
        if (row.enumGroup == None) {
            const OptionRow *&place = rows.at(static_cast<std::size_t>(row.nVal));
            place = place == nullptr ? &row : throw "two options share an id";
        }
    }
    return rows;
}();

} // namespace

std::span<const OptionRow, kOptionCount> OptionTable() {
    return kOptions;
}

const OptionRow *FindOptionById(int id) {
    return id >= 0 && id < static_cast<int>(kIds) ? kRowById[static_cast<std::size_t>(id)]
                                                  : nullptr;
}
