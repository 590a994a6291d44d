#ifndef ISPCTL_RESULT_WORDS_H
#define ISPCTL_RESULT_WORDS_H

#include <string>
#include <string_view>

namespace ispctl {

/// What is known about a result code.
struct ResultWords {
    std::string_view name; ///< the name in abi/ResultCodes.h; empty for a code of a plug-in
    std::string_view meaning;
};

ResultWords WordsOfResult(int code);

/// RETURNS the code as the library prints it: "0x" and upper-case hexadecimal digits.
std::string HexOfResult(int code);

} // namespace ispctl

#endif
