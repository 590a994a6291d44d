#ifndef SCALER_ISP_SETTINGS_PROFILE_BATCH_H
#define SCALER_ISP_SETTINGS_PROFILE_BATCH_H

#include <vector>

#include "scaler_isp/settings/ProfileEdit.h"

/// Writes many keys with one rewrite of the file. Its final bytes and what is printed are those of
/// CpNxWritePrivateProfileStringW called for one key after the other; the cost grows linearly with
/// the number of keys, and no crash can come between two of them.
/// REQUIRES: texts without NUL that live through the call.
/// RETURNS 1 when every key was written, and for an empty list, which touches nothing; else 0. A key
/// that cannot be expressed in the file's encoding is left out alone.
/// PRINTS "Open file error \n" for every key when the file cannot be opened.
int WriteProfileBatchW(const std::vector<KeyWrite<wchar_t>> &writes, const wchar_t *fileName);

#endif
