#ifndef SCALER_ISP_SETTINGS_FW_BANK_STORE_H
#define SCALER_ISP_SETTINGS_FW_BANK_STORE_H

#include <string>

#include "scaler_isp/settings/FwBankKeys.h"

/// Writes the keys of a firmware map with one rewrite of the file. Its final bytes and what is
/// printed are those of CpNxWritePrivateProfileStringW called for one key after the other, but no
/// crash can come between two of them. A path that cannot be expressed in the file's encoding is
/// left out alone.
/// PRINTS "Open file error \n" for every key when the file cannot be opened.
void WriteFwBankKeys(const FwBankKeys &keys, const std::wstring &iniFile);

#endif
