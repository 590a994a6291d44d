#include "isp/Plan.h"

#include <algorithm>
#include <cerrno>

#include <fcntl.h>

#include "common/Files.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {
namespace {

void RequireBankInside(std::uint32_t bank, const MemoryFile &memory) {
    if (bank >= memory.Size() / kBankBytes) {
        throw Failure{VIRTUAL_ISP_OUTSIDE, Format("Bank %u lies outside: there are %u banks", bank,
                                                  memory.Size() / kBankBytes)};
    }
}

Bytes ReadFileBank(const std::string &path, std::uint32_t fileBank) {
    const Descriptor file(OpenRegular(path, O_RDONLY));
    Bytes bytes(kBankBytes, kErased);
    const std::int64_t got = file.IsOpen() ? ReadUpTo(file.Get(), bytes.data(), bytes.size(),
                                                      std::uint64_t{fileBank} * kBankBytes)
                                           : -1;
    if (got < 0) {
        throw Failure{
            VIRTUAL_ISP_NO_FIRMWARE_FILE,
            Format("The firmware file cannot be read: %s: %s", path.c_str(), ErrorText(errno))};
    }
    if (got == 0) {
        throw Failure{
            VIRTUAL_ISP_SHORT_FIRMWARE,
            Format("The firmware file ends before its bank %u: %s", fileBank, path.c_str())};
    }
    return bytes;
}

const BankImage *FindBank(const Plan &plan, std::uint32_t bank) {
    // The last one, because later images overwrite earlier ones.
    const auto found = std::find_if(plan.rbegin(), plan.rend(),
                                    [bank](const BankImage &image) { return image.bank == bank; });
    return found == plan.rend() ? nullptr : &*found;
}

BankImage &BankToPatch(Plan &plan, std::uint32_t bank, const MemoryFile &memory) {
    if (const BankImage *planned = FindBank(plan, bank)) {
        BankImage &image = plan[static_cast<std::size_t>(planned - plan.data())];
        image.source += " and user flag";
        return image;
    }
    plan.push_back({bank, "user flag", memory.Read(bank * kBankBytes, kBankBytes)});
    return plan.back();
}

/// Splits a range at bank boundaries: part(bank, offset in the bank, offset in the range, count).
template <class Function>
void ForEachBankPart(std::uint32_t address, std::uint32_t count, Function &&part) {
    for (std::uint32_t done = 0; done < count;) {
        const std::uint32_t offset = (address + done) % kBankBytes;
        const std::uint32_t here = std::min(count - done, kBankBytes - offset);
        part((address + done) / kBankBytes, offset, done, here);
        done += here;
    }
}

} // namespace

Plan LoadPlan(const STRUCT_C_STYLE_MAP_FW &map, const MemoryFile &memory) {
    if (map.ulFwCount > SCALER_ISP_MAX_BANKS) {
        throw Failure{VIRTUAL_ISP_BAD_RECORD,
                      Format("The bank map holds %u banks, more than 512", map.ulFwCount)};
    }
    for (std::uint32_t i = 0; i < map.ulFwCount; ++i) {
        RequireBankInside(map.ulTargetBank[i], memory);
    }
    Plan plan;
    for (std::uint32_t i = 0; i < map.ulFwCount; ++i) {
        const auto &entry = map.stFwBank[i];
        const std::string path = FromWide(entry.wszFwPath, SCALER_ISP_PATH_CHARS);
        plan.push_back({map.ulTargetBank[i], Format("%s, bank %u", path.c_str(), entry.ulFileBank),
                        ReadFileBank(path, entry.ulFileBank)});
    }
    return plan;
}

void AddCopies(Plan &plan, std::uint32_t offset, const MemoryFile &memory) {
    Plan copies = plan;
    for (BankImage &copy : copies) {
        copy.bank += offset;
        copy.source += ", copy";
        RequireBankInside(copy.bank, memory);
    }
    plan.insert(plan.end(), copies.begin(), copies.end());
}

void AddBytes(Plan &plan, std::uint32_t address, const Bytes &bytes, const MemoryFile &memory) {
    const auto count = static_cast<std::uint32_t>(bytes.size());
    memory.RequireInside(address, count);
    ForEachBankPart(
        address, count,
        [&](std::uint32_t bank, std::uint32_t offset, std::uint32_t done, std::uint32_t here) {
            BankImage &image = BankToPatch(plan, bank, memory);
            std::copy_n(bytes.begin() + done, here, image.bytes.begin() + offset);
        });
}

std::optional<Bytes> PlannedBytes(const Plan &plan, std::uint32_t address, std::uint32_t count) {
    Bytes bytes(count, kErased);
    bool covered = true;
    ForEachBankPart(
        address, count,
        [&](std::uint32_t bank, std::uint32_t offset, std::uint32_t done, std::uint32_t here) {
            const BankImage *image = FindBank(plan, bank);
            covered = covered && image != nullptr;
            if (image != nullptr) {
                std::copy_n(image->bytes.begin() + offset, here, bytes.begin() + done);
            }
        });
    return covered ? std::optional<Bytes>(std::move(bytes)) : std::nullopt;
}

} // namespace virtual_scaler
