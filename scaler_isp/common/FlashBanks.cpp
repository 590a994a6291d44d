#include "scaler_isp/common/FlashBanks.h"

#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/FileBanks.h"
#include "scaler_isp/common/TextConversion.h"

namespace {

/// Files below this size have a number of banks that fits into an unsigned int.
constexpr std::uint64_t kCountableBytes = std::uint64_t{1} << 48U;

unsigned int BanksOf(std::uint64_t bytes) {
    return static_cast<unsigned int>(bytes / SCALER_ISP_BANK_BYTES +
                                     (bytes % SCALER_ISP_BANK_BYTES != 0 ? 1 : 0));
}

} // namespace

bool FindEndOfFile(const std::string &path, std::int64_t &position) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        std::printf("File open fail! %s\n", path.c_str());
        return false;
    }
    // An empty name resolves to a directory, whose end depends on the file system. The seek can
    // fail with -1, which is not an error here: as 32 bits it is 4 GiB - 1, or 65,536 banks, and
    // callers see that number.
    position = ::lseek(descriptor, 0, SEEK_END);
    ::close(descriptor);
    return true;
}

// QUIRK File_of_4_GiB_and_a_byte_is_one_bank: the size is truncated to 32 bits.
unsigned int BanksOfCommandFile(std::int64_t endPosition) {
    return BanksOf(static_cast<std::uint32_t>(endPosition));
}

bool CountBanksOfFile(const std::string &path, unsigned int &count) {
    std::int64_t position = 0;
    if (!FindEndOfFile(path, position)) {
        return false;
    }
    const auto bytes = static_cast<std::uint64_t>(position);
    count = bytes < kCountableBytes ? BanksOf(bytes) : BanksOfCommandFile(position);
    return true;
}

int GetFwBankCount(CCpNxString path, unsigned int &count) {
    return CatchAll(0, [&] { return CountBanksOfFile(Utf8FromWide(path), count) ? 1 : 0; });
}
