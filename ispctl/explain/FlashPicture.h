#ifndef ISPCTL_EXPLAIN_FLASH_PICTURE_H
#define ISPCTL_EXPLAIN_FLASH_PICTURE_H

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ispctl {

/// The flash that a line can address: 16 MiB.
inline constexpr std::size_t kFlashBanks = 256;
inline constexpr std::size_t kPictureColumns = 16;
/// UNITS: bytes.
inline constexpr std::uint32_t kBankSize = 65536;

/// One bank of one firmware file and the flash bank that it goes to.
struct BankUse {
    std::string file; ///< valid UTF-8
    std::uint32_t bank = 0;
    std::uint32_t fileBank = 0; ///< index of the bank within the file
    bool boot = false;          ///< programmed in a pass of its own, before all others
};

/// One file of the picture.
struct FlashFile {
    std::string name;
    char letter = '?';
    std::size_t colour = 0; ///< index; the first file has 0
    bool boot = false;
    std::vector<std::uint32_t> banks; ///< ascending
};

/// 16 x 16 cells, one per bank, and what does not fit into them.
struct FlashPicture {
    /// Indexes into files, in the order of the uses; two or more: an overlap.
    std::array<std::vector<std::size_t>, kFlashBanks> cells;
    std::vector<FlashFile> files;         ///< in the order of their first use
    std::vector<std::uint32_t> overlaps;  ///< banks with more than one use, ascending
    std::vector<std::uint32_t> beyondEnd; ///< banks in use that the flash does not have, ascending
};

FlashPicture DrawFlash(const std::vector<BankUse> &uses);

/// The banks in use of a command record.
std::vector<BankUse> BankUsesOf(std::string_view commandRecord);

/// "." for a free cell, the file's letter, or "#" for an overlap.
char LetterOf(const FlashPicture &picture, std::size_t bank);

/// "bank 3, 0x030000-0x03FFFF" or "banks 0-2, 7, 0x000000-0x07FFFF": from the first to the last.
std::string DescribeBanks(const std::vector<std::uint32_t> &banks);

/// What the picture cannot show: one sentence each, such as "bank 3 is used more than once".
std::vector<std::string> RemarksOf(const FlashPicture &picture);

} // namespace ispctl

#endif
