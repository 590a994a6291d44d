#ifndef SCALER_ISP_TESTS_UNIT_ARGS_COMMAND_LINE_MODEL_H
#define SCALER_ISP_TESTS_UNIT_ARGS_COMMAND_LINE_MODEL_H

#include <map>
#include <string>
#include <utility>
#include <vector>

/// A second, slow and obvious judgement of whole command lines. It shares no code with the library
/// and predicts what a parse answers, prints and stores.
namespace model {

/// The files of one run.
struct World {
    std::string folder;                    ///< current folder, ending in "/"
    std::string library;                   ///< the library's folder, ending in "/"
    std::map<std::string, unsigned> files; ///< name in the current folder: 64 KiB banks
    std::string searchName;                ///< SIName of IspUserDefined.txt; empty: no such file
    std::string prefix; ///< strFwPrefix of every settings file given by a full path
};

/// Everything a parse leaves behind; the defaults are those of fresh records.
struct Outcome {
    int result = 0;
    bool dependsOnFileSystem =
        false; ///< a folder is counted as firmware: nothing else is predicted
    std::string out;
    std::string err;
    /// Numbers of the command record by name, arrays as name[i].
    std::map<std::string, long long> number = {
        {"action", 0},      {"signType", 0},   {"swMode", 0},     {"location", 1},
        {"userVersion", 0}, {"mergeMode", 0},  {"mergeType", 0},  {"comm", 0},
        {"edpMode", 0},     {"infoType", 0},   {"generation", 2}, {"extraMode", 0},
        {"slaveState", -1}, {"slave", 0x94},   {"autoSearch", 0}, {"compare", 0},
        {"channel", 0},     {"bootCode", 0},   {"ispMode", 0},    {"flagCount", 0},
        {"flagAddr", 0},    {"recordMode", 0}, {"verAddr", 0},    {"totalLen", 0},
        {"majorLen", 0},    {"subLen", 0},     {"dumpAddr", 0},   {"dumpLen", 0},
        {"i2cSlave", 0xFF}, {"i2cSub", 0xFF},  {"i2cLen", 1},     {"ddcci", 0},
        {"mergeCount", 0},  {"bankCount", 0},  {"signAction", 0}, {"signSignType", 0},
        {"signSwMode", 0},  {"signHwMode", 0}, {"keyPair", 0}};
    std::vector<unsigned> flagData;  ///< the bytes before the 0xFF
    std::vector<unsigned> i2cData;   ///< the bytes before the 0xFF
    std::vector<unsigned> mergeData; ///< the bytes before the zeroes
    std::string dumpFile;
    std::string settingFile;
    std::string bootPath;
    std::string fw, signature, keyPairText, verifyKey, signKey, subCert, nextKey;
    /// target bank: bank inside the file, full path
    std::map<unsigned, std::pair<unsigned, std::string>> banks;
};

/// \param words  what stands behind the program's name "tool".
Outcome Predict(const World &world, const std::vector<std::string> &words);

} // namespace model

#endif
