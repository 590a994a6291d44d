#include "scaler_isp/abi/ZeroUninitializedBytes.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>

namespace {

template <class Record> void ClearBytes(Record &record, std::size_t offset, std::size_t width) {
    std::memset(reinterpret_cast<unsigned char *>(&record) + offset, 0, width);
}

} // namespace

void ZeroUninitializedBytes(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING &record) {
    std::fill(std::begin(record.stMapFw.ulTargetBank), std::end(record.stMapFw.ulTargetBank), 0U);
#define SCALER_ISP_PADDING(OFFSET, WIDTH) ClearBytes(record, OFFSET, WIDTH);
#define SCALER_ISP_BANK_PADDING(OFFSET, WIDTH)                                                     \
    for (STRUCT_C_STYLE_FW_BANK_SETTING & bank : record.stMapFw.stFwBank) {                        \
        ClearBytes(bank, OFFSET, WIDTH);                                                           \
    }
#include "scaler_isp/abi/command_setting_fields.def"
}
