#include "chip.h"

#include "codes.h"

namespace {

constexpr const char *kFile = "chip.bin";
constexpr unsigned char kErased = 0xFF;

void Seek(std::FILE *file, std::uint32_t address) {
    if (std::fseek(file, static_cast<long>(address), SEEK_SET) != 0) {
        throw Failure{kNoChip};
    }
}

} // namespace

Chip::Chip() : m_file(std::fopen(kFile, "r+b")) {
    if (!m_file) {
        m_file.reset(std::fopen(kFile, "w+b"));
    }
    if (!m_file) {
        throw Failure{kNoChip};
    }
}

void Chip::WriteBank(std::uint32_t bank, const std::vector<unsigned char> &bytes) {
    Seek(m_file.get(), bank * kBankBytes);
    if (std::fwrite(bytes.data(), 1, bytes.size(), m_file.get()) != bytes.size() ||
        std::fflush(m_file.get()) != 0) {
        throw Failure{kNoChip};
    }
}

std::vector<unsigned char> Chip::Read(std::uint32_t address, std::uint32_t count) {
    // Past the end of the file the flash is erased.
    std::vector<unsigned char> bytes(count, kErased);
    Seek(m_file.get(), address);
    if (std::fread(bytes.data(), 1, count, m_file.get()) < count &&
        std::ferror(m_file.get()) != 0) {
        throw Failure{kNoChip};
    }
    return bytes;
}
