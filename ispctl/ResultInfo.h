#ifndef ISPCTL_RESULT_INFO_H
#define ISPCTL_RESULT_INFO_H

#include <string>
#include <string_view>
#include <vector>

#include "RunOutcome.h"

namespace ispctl {

/// RETURNS "0x" and upper-case hexadecimal digits, as the library prints a code.
std::string FormatResultCode(int code);

/// RETURNS "SIGSEGV", or "signal 64" if the signal has no name.
std::string NameOfSignal(int signal);

/// RETURNS " (exit status 3)" or " (SIGSEGV)" for a status from waitpid.
std::string DescribeStatus(int status);

/// RETURNS the name in abi/ResultCodes.h of a code that the library formed, and of -1; else empty.
/// REQUIRES: there is a code.
std::string_view NameOfCode(const RunOutcome &outcome);

/// RETURNS the name of a code in abi/ResultCodes.h; empty if it is not there.
std::string_view NameInTable(int code);

/// RETURNS what to do after a run, one sentence per line, from the file or function that is missing
/// to the remedy; nothing after a success.
std::vector<std::string> AdviceAfter(const RunOutcome &outcome);

/// RETURNS the meaning of the result, or what ended the process.
std::string MeaningOf(const RunOutcome &outcome);

/// RETURNS the state of the device after a failed run: "nothing was done", "the device was not
/// accessed", or "the state of the device is unknown".
std::string_view DeviceAfter(const RunOutcome &outcome);

/// RETURNS the complete message: success, or the failure, its code, the progress, and the device.
std::string SentenceOf(const RunOutcome &outcome);

} // namespace ispctl

#endif
