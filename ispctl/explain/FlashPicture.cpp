#include "explain/FlashPicture.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>

#include "explain/FieldValues.h"

namespace ispctl {
namespace {

constexpr std::string_view kLetters =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
constexpr char kFurtherFile = '+';
constexpr char kFree = '.';
constexpr char kOverlap = '#';

std::size_t FileIndex(FlashPicture &picture, const BankUse &use) {
    auto &files = picture.files;
    const auto found = std::find_if(files.begin(), files.end(), [&](const FlashFile &file) {
        return file.name == use.file && file.boot == use.boot;
    });
    const auto index = static_cast<std::size_t>(found - files.begin());
    if (found == files.end()) {
        const char letter = index < kLetters.size() ? kLetters[index] : kFurtherFile;
        files.push_back({use.file, letter, index, use.boot, {}});
    }
    return index;
}

std::string Verb(const std::vector<std::uint32_t> &banks, const char *one, const char *several) {
    return fmt::format("{} {} {}", banks.size() == 1 ? "bank" : "banks", RangesOf(banks),
                       banks.size() == 1 ? one : several);
}

} // namespace

FlashPicture DrawFlash(const std::vector<BankUse> &uses) {
    FlashPicture picture;
    std::map<std::uint32_t, std::size_t> counts;
    for (const BankUse &use : uses) {
        const std::size_t file = FileIndex(picture, use);
        picture.files[file].banks.push_back(use.bank);
        if (use.bank < kFlashBanks) {
            picture.cells[use.bank].push_back(file);
        }
        ++counts[use.bank];
    }
    for (FlashFile &file : picture.files) {
        std::sort(file.banks.begin(), file.banks.end());
        file.banks.erase(std::unique(file.banks.begin(), file.banks.end()), file.banks.end());
    }
    for (const auto &[bank, count] : counts) {
        if (count > 1) {
            picture.overlaps.push_back(bank);
        }
        if (bank >= kFlashBanks) {
            picture.beyondEnd.push_back(bank);
        }
    }
    return picture;
}

std::vector<BankUse> BankUsesOf(std::string_view commandRecord) {
    std::vector<BankUse> uses(UsedBanks(commandRecord));
    for (const FieldValue &field : ReadFields(RecordKind::Command, commandRecord)) {
        if (field.kind == FieldKind::BANKS) {
            const auto banks = ElementsOf(field);
            for (std::size_t i = 0; i < uses.size(); ++i) {
                uses[i].bank = banks[i];
            }
        } else if (field.bankEntry && field.kind == FieldKind::U32) {
            uses[*field.bankEntry].fileBank = static_cast<std::uint32_t>(NumberOf(field));
        } else if (field.bankEntry && field.kind == FieldKind::WIDE) {
            uses[*field.bankEntry].file = StringOf(field).text;
        }
    }
    return uses;
}

char LetterOf(const FlashPicture &picture, std::size_t bank) {
    const auto &uses = picture.cells[bank];
    if (uses.size() > 1) {
        return kOverlap;
    }
    return uses.empty() ? kFree : picture.files[uses.front()].letter;
}

std::string DescribeBanks(const std::vector<std::uint32_t> &banks) {
    if (banks.empty()) {
        return "no bank";
    }
    const std::uint64_t first = std::uint64_t{banks.front()} * kBankSize;
    const std::uint64_t last = std::uint64_t{banks.back()} * kBankSize + kBankSize - 1;
    return fmt::format("{} {}, 0x{:06X}-0x{:06X}", banks.size() == 1 ? "bank" : "banks",
                       RangesOf(banks), first, last);
}

std::vector<std::string> RemarksOf(const FlashPicture &picture) {
    std::vector<std::string> remarks;
    if (!picture.overlaps.empty()) {
        remarks.push_back(
            Verb(picture.overlaps, "is used more than once", "are used more than once"));
    }
    if (!picture.beyondEnd.empty()) {
        remarks.push_back(Verb(picture.beyondEnd, "is", "are") +
                          " after the end of the flash, 0x1000000 (16 MiB)");
    }
    return remarks;
}

} // namespace ispctl
