#ifndef ISPCTL_LINE_VALUE_FORM_H
#define ISPCTL_LINE_VALUE_FORM_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "scaler_isp/args/CommandFacts.h"

namespace ispctl {

/// What may be written as the value of an option, read from the columns FORM and MEANING.
struct ValueForm {
    enum class Kind { None, Number, Bytes, Keyword, File };
    Kind kind = Kind::None;
    std::int64_t first = 0; ///< of a number
    std::int64_t last = 0;
    bool isBounded = false; ///< the form is a range, not just any number
    char separator = 0;     ///< of bytes
    std::size_t fewest = 0;
    std::size_t most = 0;
    std::vector<std::string_view> keywords;
};

ValueForm FormOf(const ScalerIspFacts::OptionFacts &option);

/// Such as "a number from 0 to 255".
std::string AllowedValue(const ScalerIspFacts::OptionFacts &option);

/// Such as "3".
std::string ExampleValue(const ScalerIspFacts::OptionFacts &option);

/// Such as "--bank 3".
std::string ExampleOf(const ScalerIspFacts::OptionFacts &option);

/// Whether the file of this option reaches the plug-in under the name as typed, so that a relative
/// one begins in the caller's directory.
bool IsPassedAsTyped(const ScalerIspFacts::OptionFacts &option);

/// Words in a sentence: "a, b or c".
std::string JoinWithOr(const std::vector<std::string> &words);

} // namespace ispctl

#endif
