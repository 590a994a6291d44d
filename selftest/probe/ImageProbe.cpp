#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "probe/Groups.h"
#include "probe/Scratch.h"

namespace {

constexpr std::uint32_t kUniversal = 0xCAFEBABE; // its numbers are big-endian
constexpr std::uint32_t kMachO64 = 0xFEEDFACF;
constexpr std::uint32_t kCodeSignature = 0x1D;
constexpr std::size_t kMachOHeader = 32;
constexpr std::size_t kUniversalHeader = 8;
constexpr std::size_t kUniversalRow = 20;
constexpr std::size_t kElfMachine = 18;

struct Processor {
    std::uint32_t machO;
    std::uint32_t elf;
    const char *name;
};

constexpr Processor kProcessors[] = {{0x01000007, 62, "x86_64"}, {0x0100000C, 183, "arm64"}};

std::uint32_t Number(const std::string &bytes, std::size_t at, std::size_t size, bool bigEndian) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size && at + i < bytes.size(); ++i) {
        const std::size_t shift = 8 * (bigEndian ? size - 1 - i : i);
        number |= std::uint32_t{static_cast<unsigned char>(bytes[at + i])} << shift;
    }
    return number;
}

std::string NameOf(std::uint32_t number, std::uint32_t Processor::*member) {
    for (const Processor &each : kProcessors) {
        if (each.*member == number) {
            return each.name;
        }
    }
    return "processor " + std::to_string(number);
}

bool HasSignature(const std::string &bytes, std::size_t start) {
    const std::uint32_t count = Number(bytes, start + 16, 4, false);
    std::size_t at = start + kMachOHeader;
    for (std::uint32_t i = 0; i < count && at + 8 <= bytes.size(); ++i) {
        if (Number(bytes, at, 4, false) == kCodeSignature) {
            return true;
        }
        at += Number(bytes, at + 4, 4, false);
    }
    return false;
}

std::string DescribeMachO(const std::string &bytes) {
    std::string text = "Mach-O";
    bool isSigned = true;
    const bool universal = Number(bytes, 0, 4, true) == kUniversal;
    const std::uint32_t slices = universal ? Number(bytes, 4, 4, true) : 1;
    for (std::uint32_t i = 0; i < slices && i < std::size(kProcessors); ++i) {
        const std::size_t row = kUniversalHeader + i * kUniversalRow;
        const std::size_t start = universal ? Number(bytes, row + 8, 4, true) : 0;
        if (Number(bytes, start, 4, false) != kMachO64) {
            return "Mach-O, damaged";
        }
        text += " " + NameOf(Number(bytes, start + 4, 4, false), &Processor::machO);
        isSigned = isSigned && HasSignature(bytes, start);
    }
    return text + (isSigned ? " signed" : " unsigned");
}

std::string Describe(const std::string &bytes) {
    if (Number(bytes, 0, 4, true) == kUniversal || Number(bytes, 0, 4, false) == kMachO64) {
        return DescribeMachO(bytes);
    }
    if (bytes.starts_with("\x7F"
                          "ELF")) {
        return "ELF " + NameOf(Number(bytes, kElfMachine, 2, false), &Processor::elf);
    }
    return "not a program";
}

} // namespace

int DescribeImages(int count, char **paths) {
    for (int i = 0; i < count; ++i) {
        std::printf("%s\n", Describe(ReadFile(paths[i])).c_str());
    }
    return 0;
}
