#include "FuzzCheck.h"

#include <cstdlib>
#include <unistd.h>

namespace {

// Before the fuzzer or the replay closes the standard streams.
const int g_report = ::dup(STDERR_FILENO);

} // namespace

void FailFuzzCheck(const char *file, int line, const char *condition, const std::string &detail) {
    const std::string text = std::string(file) + ":" + std::to_string(line) +
                             ": does not hold: " + condition + "\n" + detail + "\n";
    if (::write(g_report, text.data(), text.size()) < 0) {
        std::abort(); // nowhere to report to; the status says it
    }
    std::abort();
}
