// The splitter of command lines against the rules written down letter by letter.

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "scaler_isp/entry/CommandLineSplit.h"
#include "unit/entry/CommandLineSplitModel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr std::size_t kLongest = 400; // the model is slow
    if (size > kLongest) {
        return -1;
    }
    const std::string line = FuzzInput(data, size).Rest();
    const auto expected = model::SplitTokens(line);
    std::vector<std::string> tokens;
    const int accepted = ParseCommandLineParameter(tokens, line);
    FUZZ_CHECK(accepted == (expected ? 1 : 0), line);
    FUZZ_CHECK(!expected || tokens == *expected, line);
    return 0;
}
