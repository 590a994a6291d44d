#include "ResultWords.h"

#include <fmt/format.h>

#include "scaler_isp/abi/ResultCodes.h"

namespace ispctl {

ResultWords WordsOfResult(int code) {
    switch (code) {
#define ISPCTL_RESULT_CASE(NAME, VALUE, MEANING)                                                   \
    case VALUE:                                                                                    \
        return {#NAME, MEANING};
        SCALER_ISP_RESULT_CODES(ISPCTL_RESULT_CASE)
#undef ISPCTL_RESULT_CASE
    default:
        return {"", "from the plug-in"};
    }
}

std::string HexOfResult(int code) {
    return fmt::format("0x{:X}", static_cast<unsigned>(code));
}

} // namespace ispctl
