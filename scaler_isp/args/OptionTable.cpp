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
//
// The comments are the tables of docs/options.md, which tools/doc_tables.py writes: "Options:"
// names the table from there on; then, with " | " between, the value (of a row that takes one and
// has no keywords), the meaning, and what else is needed or excluded. "like --x" joins the row of
// --x.
constexpr std::array<OptionRow, kOptionCount> kOptions = {{
    // Options: actions
    // checks the signature of a firmware file; the device is left alone | --sw, --fw, --signfile
    FlagRow("verify", Action, 0x1),
    // writes the signature of a firmware file; the device is left alone | --sw or --hw, --fw
    FlagRow("sign", Action, 0x2),
    // loads the plug-in, calls nothing of it, always ends with 0x6
    FlagRow("erase", Action, 0x4),
    // programs the firmware files | --fw or --searchfw
    FlagRow("isp", Action, 0x8),
    // programs the firmware files, and hands a user flag to the plug-in | as --isp; --flagaddr
    FlagRow("ispuser", Action, 0x10),
    // programs the firmware files; how it differs from --isp, the plug-in decides | as --isp
    FlagRow("ispdiff", Action, 0x20),
    FlagRow("ispcopy", Action, 0x40), // like --ispdiff
    // always refused: "Action type undefined or illegal!"
    FlagRow("factoryisp", Action, 0x10000),
    // lets the plug-in read the firmware version | a version location
    FlagRow("recordver", Action, 0x80),
    // loads the plug-in, calls nothing of it, ends with success
    FlagRow("srstatus", Action, 0x100),
    FlagRow("flashtype", Action, 0x200),       // like --srstatus
    FlagRow("readsr", Action, 0x400),          // like --srstatus
    FlagRow("writesr", Action, 0x800),         // like --srstatus
    FlagRow("readsafeguard", Action, 0x1000),  // like --srstatus
    FlagRow("writesafeguard", Action, 0x2000), // like --srstatus
    // lets the plug-in reset the MCU
    FlagRow("resetmcu", Action, 0x4000),
    // lets the plug-in read a range of the flash into a file | --dumplen
    FlagRow("dumpflash", Action, 0x8000),
    FlagRow("getstatus", Action, 0x20000), // like --erase
    // lets the plug-in print one piece of information; no "Success" line follows | --infotype
    FlagRow("userdefinedinfo", Action, 0x40000),
    // lets the plug-in work on the eDP EEPROM | --edpmode
    FlagRow("edpisp", Action, 0x80000),
    // lets the plug-in enter the ISP mode
    FlagRow("enterispmode", Action, 0x100000),
    // the merge info: its bytes are checked, then as --erase | --read or --write
    FlagRow("mergefwinfo", Action, 0x200000),
    FlagRow("senduserdefinedinfo", Action, 0x400000), // like --erase
    // an I2C write: its bytes are checked, then as --erase | --writedata
    FlagRow("i2cwrite", Action, 0x800000),
    // lets the plug-in report the scaler type
    FlagRow("getscalertype", Action, 0x1000000),
    // Options: boot code
    // file | boot firmware, programmed from bank 0 on before the action | --factory, --newboot, and
    // --sw or --hw
    TextRow("boot", 42, &Args::strBootFwPath),
    // new boot code; handed to the plug-in, too
    NumberRow("newboot", 40, &Args::ulBootCodeType, SCALER_ISP_NEW_BOOT_CODE),
    // Options: communication
    // handed to the plug-in
    NumberRow("ispchannel", 49, &Args::bIspChannel, 1),
    // Options: boot code
    // factory mode: no signature is checked before programming; handed to the plug-in, too
    NumberRow("factory", 41, &Args::ulIspMode, SCALER_ISP_MODE_FACTORY),
    // Options: signatures
    // software signature; it is checked before programming | --fw or --searchfw; not --hw
    FlagRow("sw", SignType, 1),
    // hardware signature; it is not checked before programming | not --sw, --verify
    FlagRow("hw", SignType, 2),
    // 1 to 4 | key scheme, see below; without it no key of --sw is checked | --sw or --hw
    TextRow("dsmode", 8, &Args::strDsMode),
    // Options: version location
    // hands this location to the plug-in
    FlagRow("reg", VersionLocation, 0x1),
    FlagRow("ddcci", VersionLocation, 0x2), // like --reg
    // hands this location to the plug-in; the place in the flash may be given, too
    FlagRow("flash", VersionLocation, 0x4),
    // hands this location to the plug-in, and the firmware files | --recordver, --fw or --searchfw
    FlagRow("fwbin", VersionLocation, 0x8),
    FlagRow("cmd", VersionLocation, 0x10),        // like --reg
    FlagRow("fwbincmd", VersionLocation, 0x20),   // like --fwbin
    FlagRow("copydiffer", VersionLocation, 0x40), // like --reg
    // 1 to 5 | hands this location and the number to the plug-in
    FlagRow("userdefined", VersionLocation, 0x80, true),
    // number | address of the version; with the length it stays below 0x1000000 | --flash,
    // --totalverlen, --majorverlen
    TextRow("veraddr", 44, &Args::strVerAddr),
    // number | bytes of the whole version, at most 256 | --veraddr
    TextRow("totalverlen", 45, &Args::strTotalVerLen),
    // number | bytes of the major version, at least 1 | --veraddr
    TextRow("majorverlen", 46, &Args::strMajorVerLen),
    // number | bytes of the sub version, else 0; together with the major one at most the whole |
    // --veraddr
    TextRow("subverlen", 47, &Args::strSubVerLen),
    // 0, 1 or 2 | form of the version, handed to the plug-in; anything else is 2 | --veraddr
    TextRow("recordvermode", 48, &Args::strRecordVerMode),
    // Options: dump
    // number | first address, else 0 | --dumpflash
    TextRow("dumpaddr", 50, &Args::strDumpAddr),
    // number | count of bytes, not 0 | --dumpflash
    TextRow("dumplen", 51, &Args::strDumpLen),
    // file | name as typed for the plug-in; dumpFile.bin where it does not end in .bin |
    // --dumpflash
    TextRow("dumpname", 52, &Args::strDumpName),
    // Options: communication
    // 1 to 19 | number of the communication interface, handed to the plug-in
    TextRow("comm", 15, &Args::strComm),
    // Options: firmware files and banks
    // file | first firmware file; given once | not --searchfw
    EntryRow("fw", 1, Firmware, 0),
    // Options: signatures
    // file | the signature; --sign without it writes to the name of the firmware and .sig | --sw or
    // --hw
    TextRow("signfile", 2, &Args::strSignFile),
    // 0 to 4 | internal key pair, else 0 | --sw --dsmode 2
    TextRow("keypair", 3, &Args::strKeyPair),
    // file | verify key | --sw --dsmode 1 or 3
    TextRow("vkfile", 4, &Args::strVkFile),
    // file | sign key | --sign with --sw --dsmode 3 or 4, or with --hw
    TextRow("skfile", 5, &Args::strSkFile),
    // file | sub-certificate, handed to the plug-in as typed; nobody looks whether it exists | --sw
    TextRow("subcert", 6, &Args::strSubCert),
    // file | verify key of the next generation | --sw --dsmode 4, or --hw
    TextRow("nextvkfile", 7, &Args::strNextVkFile),
    // Options: firmware files and banks
    // 0 to 255 | start bank of --fw, else 0; the last one counts
    EntryRow("bank", 16, Bank, 0),
    // Options: firmware search
    // file | settings file instead of IspSetting.ini; handed to the plug-in, too | stands before
    // --searchfw
    TextRow("settingfile", 53, &Args::strSettingFile),
    // Options: firmware files and banks
    // file | further firmware files; each given once
    EntryRow("fw1", 17, Firmware, 1),
    // 0 to 255 | start bank of the firmware file with the same number, else 0 | its file
    EntryRow("bank1", 18, Bank, 1),
    EntryRow("fw2", 19, Firmware, 2), // like --fw1
    EntryRow("bank2", 20, Bank, 2),   // like --bank1
    EntryRow("fw3", 21, Firmware, 3), // like --fw1
    EntryRow("bank3", 22, Bank, 3),   // like --bank1
    EntryRow("fw4", 23, Firmware, 4), // like --fw1
    EntryRow("bank4", 24, Bank, 4),   // like --bank1
    EntryRow("fw5", 25, Firmware, 5), // like --fw1
    EntryRow("bank5", 26, Bank, 5),   // like --bank1
    EntryRow("fw6", 27, Firmware, 6), // like --fw1
    EntryRow("bank6", 28, Bank, 6),   // like --bank1
    EntryRow("fw7", 29, Firmware, 7), // like --fw1
    EntryRow("bank7", 30, Bank, 7),   // like --bank1
    EntryRow("fw8", 31, Firmware, 8), // like --fw1
    EntryRow("bank8", 32, Bank, 8),   // like --bank1
    EntryRow("fw9", 33, Firmware, 9), // like --fw1
    EntryRow("bank9", 34, Bank, 9),   // like --bank1
    // Options: version location
    // tells the plug-in to compare versions
    NumberRow("comparever", 38, &Args::bCompareVersion, 1),
    // Options: user flag
    // number | address of the user flag | --ispuser
    TextRow("flagaddr", 36, &Args::strFlagAddr),
    // bytes, "," between | the user flag; at most 255 bytes, else their count is wrong |
    // --flagaddr
    TextRow("flagdata", 37, &Args::strFlagData),
    // Options: communication
    // 0 to 254 | I2C slave address, handed to the plug-in; 0 is the usual one, 0x94
    TextRow("slave", 35, &Args::strSlave),
    // Options: firmware search
    // `auto`, `prefix`, `userdefined` | takes the firmware from the library's folder, see below |
    // not --fw
    EntryRow("searchfw", 39, Search, 0),
    // Options: information and eDP
    // handed to the plug-in | --edpisp
    KeywordRow("edpmode", 54, &Args::ulEdpIspMode, kEdpModes, "wrong edp isp mode!"),
    // Options: merge info
    // reads; so it is without either and with both | --mergefwinfo
    FlagRow("read", MergeInfoRw, 1),
    // bytes, "." between | writes these bytes, 16 at most | stands behind --mergefwinfo
    FlagRow("write", MergeInfoRw, 2, true),
    // Options: I2C write
    // bytes, "," between | slave address, sub-address and data: 3 to 258 bytes | --i2cwrite
    TextRow("writedata", 55, &Args::strWriteData),
    // the data is a DDC/CI message; byte 3, less its top bit, counts the bytes behind it |
    // --i2cwrite
    NumberRow("ddccicmd", 56, &Args::bDdcciCmd, 1),
    // Options: information and eDP
    // which information; handed to the plug-in | --userdefinedinfo
    KeywordRow("infotype", 57, &Args::ulUserDefinedInfoType, kInfoTypes,
               "wrong user defined info type!"),
    // Options: merge info
    // generation, else gen2; handed to the plug-in
    KeywordRow("mergefwgen", 60, &Args::ulMergeFwGeneration, kMergeGenerations,
               "wrong merge info generation!"),
    // handed to the plug-in
    KeywordRow("mergeinfotype", 58, &Args::ulMergeInfoType, kMergeInfoTypes,
               "wrong user defined merge info type!"),
    // Options: communication
    // when to send extra commands; handed to the plug-in
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
