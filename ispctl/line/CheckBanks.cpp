#include "line/Checks.h"

#include <algorithm>
#include <fmt/format.h>

#include "line/NamedFile.h"
#include "line/NumberText.h"

namespace ispctl {
namespace {

using ScalerIspFacts::Kind;

/// One firmware file in the flash.
struct Placed {
    const GivenArgument *file = nullptr;
    const GivenArgument *bank = nullptr; ///< its start bank; null: 0 by default
    std::uintmax_t first = 0;
    std::uintmax_t count = 0;

    std::uintmax_t Last() const {
        return first + count - 1;
    }
    std::string Banks() const {
        return count == 1 ? fmt::format("bank {}", first)
                          : fmt::format("banks {} to {}", first, Last());
    }
};

const GivenArgument *BankOf(const LineUnderCheck &line, unsigned int entry) {
    const GivenArgument *bank = nullptr;
    for (const GivenArgument *given : line.Options()) {
        const auto &effect = given->option->effect;
        bank = effect.kind == Kind::Bank && effect.entry == entry ? given : bank;
    }
    return bank;
}

/// All files with a known place, in the order in which the library places them.
std::vector<Placed> PlacedFiles(const LineUnderCheck &line) {
    std::vector<Placed> files;
    for (const GivenArgument *given : line.Options()) {
        if (given->option->effect.kind != Kind::Firmware) {
            continue;
        }
        const NamedFile file = FileOf(*given, line.Context());
        Placed placed{given, BankOf(line, given->option->effect.entry), 0, file.Banks()};
        bool isKnown = file.IsFile() && placed.count > 0 && placed.count <= kFlashBanks;
        if (placed.bank != nullptr) {
            const NumberText number = ReadNumberText(*placed.bank->value);
            isKnown = isKnown && number.isComplete && number.stored >= 0 && number.stored < 256;
            placed.first = isKnown ? static_cast<std::uintmax_t>(number.stored) : 0;
        }
        if (isKnown && line.Find(given->option->name) == given) {
            files.push_back(placed);
        }
    }
    std::stable_sort(files.begin(), files.end(), [](const Placed &a, const Placed &b) {
        return a.file->option->effect.entry < b.file->option->effect.entry;
    });
    return files;
}

bool Overlap(const Placed &a, const Placed &b) {
    return a.first <= b.Last() && b.first <= a.Last();
}

std::string NameOfBank(const Placed &placed) {
    for (const auto &option : ScalerIspFacts::kOptions) {
        if (option.effect.kind == Kind::Bank &&
            option.effect.entry == placed.file->option->effect.entry) {
            return "--" + std::string(option.name);
        }
    }
    return "";
}

/// ARGS with another start bank of this file.
ArgumentList WithBank(const LineUnderCheck &line, const Placed &placed, std::uintmax_t bank) {
    return placed.bank != nullptr ? WithValue(line.Arguments(), *placed.bank, std::to_string(bank))
                                  : WithAfter(line.Arguments(), *placed.file,
                                              {NameOfBank(placed), std::to_string(bank)});
}

/// The first bank from which on this file fits between the others; kFlashBanks if there is none.
std::uintmax_t FreeBank(const std::vector<Placed> &files, std::size_t index) {
    Placed moved = files[index];
    for (moved.first = 0; moved.Last() < kFlashBanks; ++moved.first) {
        bool isFree = true;
        for (std::size_t i = 0; i < files.size(); ++i) {
            isFree = isFree && (i == index || !Overlap(files[i], moved));
        }
        if (isFree) {
            return moved.first;
        }
    }
    return kFlashBanks;
}

void CheckOverlap(LineUnderCheck &line, const std::vector<Placed> &files, std::size_t index) {
    const Placed &placed = files[index];
    for (std::size_t i = 0; i < index; ++i) {
        if (!Overlap(files[i], placed)) {
            continue;
        }
        const std::uintmax_t free = FreeBank(files, index);
        FindingWords words{.option = placed.file->typed,
                           .value = placed.Banks(),
                           .other = files[i].file->typed,
                           .detail = files[i].Banks()};
        ArgumentList corrected;
        if (free < kFlashBanks) {
            words.example = fmt::format("{} {}", NameOfBank(placed), free);
            corrected = WithBank(line, placed, free);
        }
        const bool hasBank = placed.bank != nullptr;
        line.Report("bank-overlap", hasBank ? *placed.bank : *placed.file, Underline::Value, words)
            .corrected = corrected;
        return;
    }
}

void CheckEnd(LineUnderCheck &line, const Placed &placed) {
    if (placed.Last() < kFlashBanks) {
        return;
    }
    const std::uintmax_t largest = kFlashBanks - placed.count;
    const FindingWords words{
        .option = placed.file->typed,
        .value = std::to_string(placed.first),
        .example = fmt::format("{} {} or less", NameOfBank(placed), largest),
        .detail = std::to_string(placed.Last()),
    };
    // Only a start bank can push a file of at most 256 banks beyond the end.
    line.Report("bank-beyond-flash", *placed.bank, Underline::Value, words);
}

} // namespace

void CheckBanks(LineUnderCheck &line) {
    if (!line.Holds("BANK_MAP")) {
        return;
    }
    const std::vector<Placed> files = PlacedFiles(line);
    for (std::size_t i = 0; i < files.size(); ++i) {
        CheckOverlap(line, files, i);
        CheckEnd(line, files[i]);
    }
}

} // namespace ispctl
