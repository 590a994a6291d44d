#ifndef SCALER_ISP_TESTS_UNIT_ARGS_OPTION_LIST_H
#define SCALER_ISP_TESTS_UNIT_ARGS_OPTION_LIST_H

/// The options as users know them, written down a second time for the tests;
/// the actions in abi/action_rows.def.
struct ListedOption {
    const char *name;
    bool takesValue;
    char word;       ///< flag word: A action, B signature type, V version, M merge info; - none
    unsigned number; ///< the bit in the flag word, else the option's id
};

// The order decides about abbreviations: never sort.
// clang-format off
constexpr ListedOption kListedOptions[] = {
#define LISTED_ACTION(NAME, BIT, ...) {NAME, false, 'A', BIT},
#include "abi/action_rows.def"
    {"boot", true, '-', 42},
    {"newboot", false, '-', 40},
    {"ispchannel", false, '-', 49},
    {"factory", false, '-', 41},
    {"sw", false, 'B', 1},
    {"hw", false, 'B', 2},
    {"dsmode", true, '-', 8},
    {"reg", false, 'V', 0x1},
    {"ddcci", false, 'V', 0x2},
    {"flash", false, 'V', 0x4},
    {"fwbin", false, 'V', 0x8},
    {"cmd", false, 'V', 0x10},
    {"fwbincmd", false, 'V', 0x20},
    {"copydiffer", false, 'V', 0x40},
    {"userdefined", true, 'V', 0x80},
    {"veraddr", true, '-', 44},
    {"totalverlen", true, '-', 45},
    {"majorverlen", true, '-', 46},
    {"subverlen", true, '-', 47},
    {"recordvermode", true, '-', 48},
    {"dumpaddr", true, '-', 50},
    {"dumplen", true, '-', 51},
    {"dumpname", true, '-', 52},
    {"comm", true, '-', 15},
    {"fw", true, '-', 1},
    {"signfile", true, '-', 2},
    {"keypair", true, '-', 3},
    {"vkfile", true, '-', 4},
    {"skfile", true, '-', 5},
    {"subcert", true, '-', 6},
    {"nextvkfile", true, '-', 7},
    {"bank", true, '-', 16},
    {"settingfile", true, '-', 53},
    {"fw1", true, '-', 17},
    {"bank1", true, '-', 18},
    {"fw2", true, '-', 19},
    {"bank2", true, '-', 20},
    {"fw3", true, '-', 21},
    {"bank3", true, '-', 22},
    {"fw4", true, '-', 23},
    {"bank4", true, '-', 24},
    {"fw5", true, '-', 25},
    {"bank5", true, '-', 26},
    {"fw6", true, '-', 27},
    {"bank6", true, '-', 28},
    {"fw7", true, '-', 29},
    {"bank7", true, '-', 30},
    {"fw8", true, '-', 31},
    {"bank8", true, '-', 32},
    {"fw9", true, '-', 33},
    {"bank9", true, '-', 34},
    {"comparever", false, '-', 38},
    {"flagaddr", true, '-', 36},
    {"flagdata", true, '-', 37},
    {"slave", true, '-', 35},
    {"searchfw", true, '-', 39},
    {"edpmode", true, '-', 54},
    {"read", false, 'M', 1},
    {"write", true, 'M', 2},
    {"writedata", true, '-', 55},
    {"ddccicmd", false, '-', 56},
    {"infotype", true, '-', 57},
    {"mergefwgen", true, '-', 60},
    {"mergeinfotype", true, '-', 58},
    {"sendextracmd", true, '-', 59},
};
// clang-format on

#endif
