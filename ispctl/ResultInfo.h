#ifndef ISPCTL_RESULT_INFO_H
#define ISPCTL_RESULT_INFO_H

#include <string>
#include <string_view>

#include "RunOutcome.h"

namespace ispctl {

/// What is known about a result code.
struct ResultInfo {
    std::string_view name; ///< the name in abi/ResultCodes.h; empty for a code of a plug-in
    std::string_view meaning;
};

/// \param pluginCalled  false: it is certain that no function of a plug-in was called
ResultInfo DescribeResult(int code, bool pluginCalled = false);

/// RETURNS the code as the library prints it: "0x" and upper-case hexadecimal digits.
std::string FormatResultCode(int code);

/// RETURNS "SIGSEGV", or "signal 64" for one without a name.
std::string NameOfSignal(int signal);

/// RETURNS " (exit status 3)" or " (SIGSEGV)" for a status of waitpid.
std::string WordsOfStatus(int status);

/// RETURNS what the run came to, in words: the meaning of the result, or what ended the process.
std::string MeaningOf(const RunOutcome &outcome);

/// RETURNS what is known of the device after a run that is no success: "nothing was done", or "the
/// state of the device is unknown".
std::string_view DeviceAfter(const RunOutcome &outcome);

/// RETURNS the whole sentence: whether it failed, with what, at which progress, and the device.
std::string SentenceOf(const RunOutcome &outcome);

} // namespace ispctl

#endif
