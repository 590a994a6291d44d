#ifndef SCALER_ISP_ARGS_FW_BANK_MAP_H
#define SCALER_ISP_ARGS_FW_BANK_MAP_H

#include <map>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// One entry of the command map (one --fwN/--bankN pair) or of the bank map (one 64 KiB bank).
struct STRUCT_FW_BANK_SETTING {
    unsigned long long ullBankValue = 0; ///< copied to the record; always 0 here
    unsigned int ulFileBank = 0; ///< command map: start bank; bank map: bank inside the file
    CCpNxString strFwPath;       ///< bank map: always absolute
};

/// Ascending order of the keys of both maps. Not std::less: the comparator is part of the mangled
/// names of exported functions.
template <class T> struct sortAscending {
    bool operator()(const T &left, const T &right) const {
        return left < right;
    }
};

/// Command map: key = entry number 0..9. Bank map: key = target bank in flash.
using FwBankMap = std::map<unsigned int, STRUCT_FW_BANK_SETTING, sortAscending<unsigned int>>;

/// Copies a bank map into the record's map, in ascending order. RETURNS 1, or 0 for more than 512
/// entries.
// QUIRK Refused_copy_keeps_the_count: ulFwCount then holds the number that was too large, and the
// arrays are unchanged.
SCALER_ISP_API int CopyMapFwToCStyleStruct(STRUCT_C_STYLE_MAP_FW &record, const FwBankMap &bankMap);

/// Replaces a bank map with the record's. Of several entries with the same target bank the first
/// wins; at most 512 entries are read, whatever the count is.
SCALER_ISP_API void CopyCStyleStructToMapFw(FwBankMap &bankMap,
                                            const STRUCT_C_STYLE_MAP_FW &record);

#endif
