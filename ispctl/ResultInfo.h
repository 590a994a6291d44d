#ifndef ISPCTL_RESULT_INFO_H
#define ISPCTL_RESULT_INFO_H

#include <string>
#include <string_view>

#include "RunOutcome.h"

namespace ispctl {

/// Name and meaning of a result code.
struct ResultInfo {
    std::string_view name; ///< its name in abi/ResultCodes.h; empty if it is a plug-in's code
    std::string_view meaning;
};

/// \param pluginCalled  false only if certainly no function of a plug-in was called
ResultInfo DescribeResult(int code, bool pluginCalled = false);

/// RETURNS "0x" and upper-case hexadecimal digits, as the library prints a code.
std::string FormatResultCode(int code);

/// RETURNS "SIGSEGV", or "signal 64" if the signal has no name.
std::string NameOfSignal(int signal);

/// RETURNS " (exit status 3)" or " (SIGSEGV)" for a status from waitpid.
std::string DescribeStatus(int status);

/// RETURNS the meaning of the result, or what ended the process.
std::string MeaningOf(const RunOutcome &outcome);

/// RETURNS the state of the device after a failed run: "nothing was done", or "the state of the
/// device is unknown".
std::string_view DeviceAfter(const RunOutcome &outcome);

/// RETURNS the complete message: success, or the failure, its code, the progress, and the device.
std::string SentenceOf(const RunOutcome &outcome);

} // namespace ispctl

#endif
