#ifndef SCALER_ISP_TESTS_UNIT_ARGS_COMMAND_LINE_MODEL_PARTS_H
#define SCALER_ISP_TESTS_UNIT_ARGS_COMMAND_LINE_MODEL_PARTS_H

#include "CommandLineModel.h"

namespace model {

/// One command line as typed.
struct Raw {
    unsigned A = 0, B = 0, V = 0, M = 0;     ///< the four masks
    std::map<std::string, std::string> text; ///< option name: last value
    std::map<std::string, bool> given;       ///< switches
    std::string userMode, mergeData, firmware;
    std::map<unsigned, std::pair<unsigned, std::string>> entries; ///< entry: start bank, file
};

/// A refusal; its text has been added to the outcome before.
struct Refused {};

[[noreturn]] void Refuse(Outcome &outcome, const std::string &message);

/// Whether a whole text is a number; no value is larger than 32 bits here.
bool IsNumber(const std::string &text, long long &value);
std::vector<std::string> Pieces(const std::string &text, char separator);

std::string FullPath(const World &world, const std::string &name);
bool Exists(const World &world, const std::string &fullPath);

/// Reads the words; throws Refused where an option ends the command.
Raw Scan(const World &world, const std::vector<std::string> &words, Outcome &outcome);

/// Judges what was read; throws Refused.
void Judge(const World &world, const Raw &raw, Outcome &outcome);
/// The part about signatures. RETURNS true when the judgement ends there, accepted.
bool JudgeSignature(const World &world, const Raw &raw, Outcome &outcome);

void SetSettingFileField(const World &world, const std::string &name, Outcome &outcome);

} // namespace model

#endif
