#ifndef SCALER_ISP_SETTINGS_FW_BANK_EDIT_H
#define SCALER_ISP_SETTINGS_FW_BANK_EDIT_H

#include <cstddef>
#include <string>

#include "scaler_isp/settings/FwBankKeys.h"
#include "scaler_isp/settings/ProfileEncoding.h"

/// The bytes of a settings file after all keys were written, one after the other, as if each had
/// read the file anew. The cost grows linearly with the number of keys, but for files that need
/// care (a section twice in a row, lines at the limit, encodings that do not contain ASCII).
/// RETURNS how many of the keys could be expressed in the encoding; the others change nothing.
std::size_t EditFwBanks(NativeEncoding &encoding, const std::string &before, const FwBankKeys &keys,
                        std::string &after);

/// How many of the keys the file would take, each tried on the file as it is.
std::size_t CountPossibleFwBanks(NativeEncoding &encoding, const std::string &before,
                                 const FwBankKeys &keys);

#endif
