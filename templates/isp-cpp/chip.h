#ifndef CHIP_H
#define CHIP_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

constexpr std::uint32_t kBankBytes = 65536;
constexpr std::uint32_t kBanks = 256;

/// A failure with the result code that the user gets.
struct Failure {
    int code;
};

/// An open chip. chip.cpp plays one with the file chip.bin in the working directory; put your bus
/// access there instead. Functions throw Failure.
class Chip {
  public:
    Chip();
    /// Erases a bank and writes kBankBytes bytes. REQUIRES: bank < kBanks.
    void WriteBank(std::uint32_t bank, const std::vector<unsigned char> &bytes);
    /// REQUIRES: address + count <= kBanks * kBankBytes.
    std::vector<unsigned char> Read(std::uint32_t address, std::uint32_t count);

  private:
    struct Closer {
        void operator()(std::FILE *file) const {
            std::fclose(file);
        }
    };
    std::unique_ptr<std::FILE, Closer> m_file;
};

#endif
