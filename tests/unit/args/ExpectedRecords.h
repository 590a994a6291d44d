#ifndef SCALER_ISP_TESTS_UNIT_ARGS_EXPECTED_RECORDS_H
#define SCALER_ISP_TESTS_UNIT_ARGS_EXPECTED_RECORDS_H

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "scaler_isp/ScalerIsp.h"

/// The steps of the validation that store something in every line, in their order.
enum class Step { Action, Signature, Location, Channel, AutoSearch, Banks, Switches, All };

/// Both records of a parser: as they are, or, after the operations below, as a line must leave
/// them.
class ExpectedRecords {
  public:
    using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
    using Sign = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

    /// \param directory  current directory of the parser, ending in "/".
    ExpectedRecords(const CCpIspArgsParse &parser, std::string directory);

    /// What a line with this action and no other option stores, up to and including a step.
    void Plain(ENUM_CP_ISPTOOL_ACTION_TYPE action, Step last);
    /// What a signature type stores, with the steps before it. A mode of 0: no --dsmode.
    void Signed(ENUM_CP_ISPTOOL_ACTION_TYPE action, ENUM_CP_DIGITAL_SIGNATURE_TYPE type, int mode);
    /// The bank map has one more entry.
    void Bank(unsigned target, unsigned fileBank, const std::string &file);
    void FlagData(const std::vector<unsigned char> &bytes);
    void DefaultSettingFile();
    /// None of the options with a keyword.
    void NoKeywords();
    /// The characters of a path over what the field holds, without a terminator.
    void SettingFileCharacters(const std::string &path);
    std::string Full(const std::string &file) const {
        return m_directory + file;
    }

    /// A bounded copy: the rest of the field becomes zero.
    template <class Char, std::size_t N>
    static void Text(Char (&field)[N], const std::string &text) {
        std::fill(std::copy_n(text.begin(), std::min(text.size(), N), field), field + N, Char{});
    }

    /// The fields that differ from the parser's, by name.
    std::vector<std::string> FieldsThatDiffer(const CCpIspArgsParse &parser) const;

  private:
    std::unique_ptr<Command> m_command;
    Sign m_sign;
    std::string m_directory;

  public:
    Command &c = *m_command; ///< the command record
    Sign &s = m_sign;        ///< the signature record
};

/// Gives every field of both records bytes that no option stores.
void FillRecords(CCpIspArgsParse &parser);

/// Directory of the library, ending in "/": here of the test program.
std::string LibraryPath();

#endif
