#include "doctor/ImageHeader.h"

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>

#include "doctor/ImageNumber.h"

namespace ispctl::doctor {
namespace {

using Format = ImageHeader::Format;

struct Architecture {
    std::string_view name;
    std::uint32_t elf;   ///< e_machine; 0: none
    std::uint32_t machO; ///< cputype; 0: none
};

constexpr Architecture kArchitectures[] = {
    {"x86-64", 62, 0x01000007}, {"arm64", 183, 0x0100000C}, {"i386", 3, 7},   {"arm", 40, 12},
    {"riscv", 243, 0},          {"ppc64", 21, 0x01000012},  {"s390x", 22, 0}, {"mips", 8, 0},
    {"loongarch", 258, 0},
};

constexpr std::uint32_t kElfSharedObject = 3;
constexpr std::uint32_t kMachOBundle = 8;
constexpr std::uint32_t kMachODylib = 6;
// A class file of Java begins with the same four bytes; its next number is its version, 45 or more.
constexpr std::uint32_t kMostSlices = 40;

std::string NameOfMachine(std::uint32_t Architecture::*number, std::uint32_t value) {
    const auto *row = std::find_if(std::begin(kArchitectures), std::end(kArchitectures),
                                   [&](const Architecture &a) { return a.*number == value; });
    return row != std::end(kArchitectures) && value != 0 ? std::string(row->name)
                                                         : fmt::format("machine 0x{:X}", value);
}

// REQUIRES: the bytes are there, and size is at most 4.
std::uint32_t Number32(std::string_view bytes, std::size_t offset, std::size_t size,
                       ByteOrder order) {
    return static_cast<std::uint32_t>(Number(bytes, offset, size, order));
}

ImageHeader Elf(std::string_view bytes) {
    constexpr std::size_t kDataEncoding = 5;
    constexpr std::size_t kType = 16;
    constexpr std::size_t kMachine = 18;
    constexpr std::size_t kSmallestHeader = 52;
    ImageHeader header;
    if (bytes.size() < kSmallestHeader) {
        header.description = "a truncated ELF file";
        return header;
    }
    header.format = Format::Elf;
    const auto order = bytes[kDataEncoding] == 2 ? ByteOrder::Big : ByteOrder::Little;
    header.architectures = {NameOfMachine(&Architecture::elf, Number32(bytes, kMachine, 2, order))};
    header.isSharedLibrary = Number32(bytes, kType, 2, order) == kElfSharedObject;
    header.description = fmt::format(
        "an ELF {} for {}", header.isSharedLibrary ? "shared library" : "file of another kind",
        header.architectures.front());
    return header;
}

ImageHeader MachO(std::string_view bytes, ByteOrder order) {
    constexpr std::size_t kCpuType = 4;
    constexpr std::size_t kFileType = 12;
    constexpr std::size_t kSmallestHeader = 28;
    ImageHeader header;
    if (bytes.size() < kSmallestHeader) {
        header.description = "a truncated Mach-O file";
        return header;
    }
    header.format = Format::MachO;
    header.architectures = {
        NameOfMachine(&Architecture::machO, Number32(bytes, kCpuType, 4, order))};
    const std::uint32_t type = Number32(bytes, kFileType, 4, order);
    header.isSharedLibrary = type == kMachODylib || type == kMachOBundle;
    header.description = fmt::format(
        "a Mach-O {} for {}", header.isSharedLibrary ? "shared library" : "file of another kind",
        header.architectures.front());
    return header;
}

/// \param entrySize  UNITS: bytes of the entry of a slice
ImageHeader Universal(std::string_view bytes, std::size_t entrySize) {
    constexpr std::size_t kFirstEntry = 8;
    ImageHeader header;
    const std::uint32_t count =
        bytes.size() >= kFirstEntry ? Number32(bytes, 4, 4, ByteOrder::Big) : 0;
    if (count == 0 || count > kMostSlices || bytes.size() < kFirstEntry + count * entrySize) {
        header.description =
            "not a library: neither a universal file nor anything else that is known";
        return header;
    }
    header.format = Format::MachO;
    header.isSharedLibrary = true;
    for (std::size_t i = 0; i < count; ++i) {
        header.architectures.push_back(NameOfMachine(
            &Architecture::machO, Number32(bytes, kFirstEntry + i * entrySize, 4, ByteOrder::Big)));
    }
    header.description =
        fmt::format("a universal Mach-O file for {}", fmt::join(header.architectures, ", "));
    return header;
}

ImageHeader Other(std::string_view description) {
    ImageHeader header;
    header.description = description;
    return header;
}

} // namespace

ImageHeader ReadImageHeader(std::string_view bytes) {
    constexpr std::size_t kMagicBytes = 4;
    if (bytes.empty()) {
        return Other("an empty file");
    }
    if (bytes.starts_with("\x7F"
                          "ELF")) {
        return Elf(bytes);
    }
    if (bytes.starts_with("#!")) {
        return Other("a script");
    }
    if (bytes.starts_with("!<arch>\n")) {
        return Other("a static library");
    }
    const std::uint32_t magic =
        bytes.size() >= kMagicBytes ? Number32(bytes, 0, kMagicBytes, ByteOrder::Big) : 0;
    switch (magic) {
    case 0xFEEDFACE:
    case 0xFEEDFACF:
        return MachO(bytes, ByteOrder::Big);
    case 0xCEFAEDFE:
    case 0xCFFAEDFE:
        return MachO(bytes, ByteOrder::Little);
    case 0xCAFEBABE:
        return Universal(bytes, 20);
    case 0xCAFEBABF:
        return Universal(bytes, 32);
    default:
        return Other("a file of an unknown type");
    }
}

ImageHeader::Format OwnFormat() {
#if defined(__APPLE__)
    return Format::MachO;
#else
    return Format::Elf;
#endif
}

std::string_view OwnArchitecture() {
#if defined(__x86_64__)
    return "x86-64";
#elif defined(__aarch64__)
    return "arm64";
#elif defined(__i386__)
    return "i386";
#elif defined(__arm__)
    return "arm";
#elif defined(__riscv)
    return "riscv";
#elif defined(__powerpc64__)
    return "ppc64";
#elif defined(__s390x__)
    return "s390x";
#else
    return ""; // unknown: the loader alone decides
#endif
}

std::string_view NameOf(ImageHeader::Format format) {
    return format == Format::Elf ? "ELF" : format == Format::MachO ? "Mach-O" : "another format";
}

} // namespace ispctl::doctor
