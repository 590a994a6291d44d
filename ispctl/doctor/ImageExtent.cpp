#include "doctor/ImageExtent.h"

#include <algorithm>
#include <limits>

#include "doctor/ImageNumber.h"

namespace ispctl::doctor {
namespace {

/// The offsets of what is read, which differ with the width of addresses.
struct ElfLayout {
    std::size_t tableOffset, entrySize, entryCount; ///< of the program headers, in the ELF header
    std::size_t segmentOffset, segmentSize;         ///< in a program header
    std::size_t entryBytes;
    std::size_t addressBytes;
};
constexpr ElfLayout kElf32{28, 42, 44, 4, 16, 32, 4};
constexpr ElfLayout kElf64{32, 54, 56, 8, 32, 56, 8};
constexpr std::size_t kElfClass = 4;
constexpr char kElfClass64 = 2;
constexpr std::size_t kElfDataEncoding = 5;
constexpr char kElfBigEndian = 2;
constexpr std::size_t kSmallestElfHeader = 64;
constexpr std::uint64_t kElfLoad = 1;

struct MachOLayout {
    std::uint32_t magic;
    std::size_t headerBytes;
    std::uint64_t segmentCommand;
    std::size_t segmentOffset, segmentSize; ///< in a segment command
    std::size_t addressBytes;
};
constexpr MachOLayout kMachO[] = {{0xFEEDFACE, 28, 0x1, 32, 36, 4},
                                  {0xFEEDFACF, 32, 0x19, 40, 48, 8}};
constexpr std::size_t kMachOCommandCount = 16;

struct UniversalLayout {
    std::uint32_t magic;
    std::size_t entryBytes;
    std::size_t addressBytes;
};
constexpr UniversalLayout kUniversal[] = {{0xCAFEBABE, 20, 4}, {0xCAFEBABF, 32, 8}};
constexpr std::size_t kUniversalHeader = 8;
constexpr std::size_t kSliceOffset = 8;

std::uint64_t EndOf(std::uint64_t offset, std::uint64_t size) {
    return size > std::numeric_limits<std::uint64_t>::max() - offset
               ? std::numeric_limits<std::uint64_t>::max()
               : offset + size;
}

std::uint64_t OfElf(std::string_view bytes) {
    if (bytes.size() < kSmallestElfHeader) {
        return kSmallestElfHeader;
    }
    const ByteOrder order =
        bytes[kElfDataEncoding] == kElfBigEndian ? ByteOrder::Big : ByteOrder::Little;
    const ElfLayout &layout = bytes[kElfClass] == kElfClass64 ? kElf64 : kElf32;
    const std::uint64_t table = Number(bytes, layout.tableOffset, layout.addressBytes, order);
    const std::uint64_t entryBytes = Number(bytes, layout.entrySize, 2, order);
    const std::uint64_t count = Number(bytes, layout.entryCount, 2, order);
    std::uint64_t least = EndOf(table, entryBytes * count);
    for (std::uint64_t i = 0; i < count && entryBytes >= layout.entryBytes; ++i) {
        const std::uint64_t begin = EndOf(table, i * entryBytes);
        if (begin >= bytes.size() || bytes.size() - begin < layout.entryBytes) {
            break;
        }
        const std::string_view entry = bytes.substr(static_cast<std::size_t>(begin));
        if (Number(entry, 0, 4, order) == kElfLoad) {
            least = std::max(least,
                             EndOf(Number(entry, layout.segmentOffset, layout.addressBytes, order),
                                   Number(entry, layout.segmentSize, layout.addressBytes, order)));
        }
    }
    return least;
}

std::uint64_t OfMachO(std::string_view bytes, const MachOLayout &layout, ByteOrder order) {
    if (bytes.size() < layout.headerBytes) {
        return layout.headerBytes;
    }
    std::uint64_t least = 0;
    const std::uint64_t count = Number(bytes, kMachOCommandCount, 4, order);
    std::string_view rest = bytes.substr(layout.headerBytes);
    const std::size_t segmentEnd = layout.segmentSize + layout.addressBytes;
    for (std::uint64_t i = 0; i < count && rest.size() >= segmentEnd; ++i) {
        if (Number(rest, 0, 4, order) == layout.segmentCommand) {
            least = std::max(least,
                             EndOf(Number(rest, layout.segmentOffset, layout.addressBytes, order),
                                   Number(rest, layout.segmentSize, layout.addressBytes, order)));
        }
        const std::uint64_t length = Number(rest, 4, 4, order);
        if (length == 0) {
            break;
        }
        rest.remove_prefix(std::min<std::uint64_t>(length, rest.size()));
    }
    return least;
}

std::uint64_t OfUniversal(std::string_view bytes, const UniversalLayout &layout) {
    std::uint64_t least = 0;
    const std::uint64_t count =
        bytes.size() < kUniversalHeader ? 0 : Number(bytes, 4, 4, ByteOrder::Big);
    std::string_view rest = bytes.substr(std::min(kUniversalHeader, bytes.size()));
    for (std::uint64_t i = 0; i < count && rest.size() >= layout.entryBytes; ++i) {
        const std::size_t size = kSliceOffset + layout.addressBytes;
        least =
            std::max(least, EndOf(Number(rest, kSliceOffset, layout.addressBytes, ByteOrder::Big),
                                  Number(rest, size, layout.addressBytes, ByteOrder::Big)));
        rest.remove_prefix(layout.entryBytes);
    }
    return least;
}

} // namespace

std::uint64_t LeastFileSize(std::string_view bytes) {
    if (bytes.starts_with("\x7F"
                          "ELF")) {
        return OfElf(bytes);
    }
    constexpr std::size_t kMagicBytes = 4;
    if (bytes.size() < kMagicBytes) {
        return 0;
    }
    for (const ByteOrder order : {ByteOrder::Big, ByteOrder::Little}) {
        for (const MachOLayout &layout : kMachO) {
            if (Number(bytes, 0, kMagicBytes, order) == layout.magic) {
                return OfMachO(bytes, layout, order);
            }
        }
    }
    for (const UniversalLayout &layout : kUniversal) {
        if (Number(bytes, 0, kMagicBytes, ByteOrder::Big) == layout.magic) {
            return OfUniversal(bytes, layout);
        }
    }
    return 0;
}

} // namespace ispctl::doctor
