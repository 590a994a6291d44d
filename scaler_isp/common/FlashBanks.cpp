#include "scaler_isp/common/FlashBanks.h"

#include <cstdint>
#include <cstdio>
#include <fstream>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/common/Boundary.h"

// KEPT File_of_4_GiB_and_a_byte_is_one_bank: the size is taken as 32 bits.
bool CountFlashBanks(const std::string &path, unsigned int &count) {
    // Opened first and moved to the end then: opening at the end fails on some file systems for the
    // folder that an empty name leads to. A position of -1 counts like any other.
    std::ifstream file(path);
    if (!file.is_open()) {
        return false;
    }
    file.seekg(0, std::ios::end);
    const auto position = static_cast<long long>(file.tellg());
    const auto size = static_cast<std::uint32_t>(position);
    count = size / SCALER_ISP_BANK_BYTES + (size % SCALER_ISP_BANK_BYTES != 0 ? 1 : 0);
    return true;
}

int GetFwBankCount(CCpNxString path, unsigned int &count) {
    return ResultOrOnThrow(0, [&] {
        const std::string narrow = path.GetStringBufferBaseOnOS();
        if (!CountFlashBanks(narrow, count)) {
            std::printf("File open fail! %s\n", narrow.c_str());
            return 0;
        }
        return 1;
    });
}
