// How long a library is at least, by headers that are written here byte by byte.

#include "doctor/ImageExtent.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

namespace {

using ispctl::doctor::LeastFileSize;

enum class Order { Little, Big };

/// Appends a number of so many bytes.
void Put(std::string &bytes, std::uint64_t value, std::size_t size, Order order) {
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t shift = 8 * (order == Order::Big ? size - 1 - i : i);
        bytes += static_cast<char>(value >> shift & 0xFF);
    }
}

struct Segment {
    std::uint64_t type, offset, size;
};

/// An ELF file with a program header for each segment, which follow the header.
std::string Elf(std::size_t addressBytes, Order order, const std::vector<Segment> &segments) {
    const bool isWide = addressBytes == 8;
    const std::size_t headerBytes = isWide ? 64 : 52;
    std::string bytes("\x7F"
                      "ELF");
    bytes += isWide ? '\2' : '\1';
    bytes += order == Order::Big ? '\2' : '\1';
    bytes.resize(isWide ? 32 : 28, '\0');
    Put(bytes, headerBytes, addressBytes, order);
    bytes.resize(isWide ? 54 : 42, '\0');
    Put(bytes, isWide ? 56 : 32, 2, order);
    Put(bytes, segments.size(), 2, order);
    bytes.resize(headerBytes, '\0');
    for (const Segment &segment : segments) {
        const std::size_t begin = bytes.size();
        Put(bytes, segment.type, 4, order);
        bytes.resize(begin + (isWide ? 8 : 4), '\0');
        Put(bytes, segment.offset, addressBytes, order);
        bytes.resize(begin + (isWide ? 32 : 16), '\0');
        Put(bytes, segment.size, addressBytes, order);
        bytes.resize(begin + (isWide ? 56 : 32), '\0');
    }
    return bytes;
}

/// A Mach-O file with a command for each segment.
std::string MachO(std::size_t addressBytes, Order order, const std::vector<Segment> &segments) {
    const bool isWide = addressBytes == 8;
    const std::uint64_t commandBytes = isWide ? 72 : 56;
    std::string bytes;
    Put(bytes, isWide ? 0xFEEDFACF : 0xFEEDFACE, 4, order);
    bytes.resize(16, '\0');
    Put(bytes, segments.size(), 4, order);
    bytes.resize(isWide ? 32 : 28, '\0');
    for (const Segment &segment : segments) {
        const std::size_t begin = bytes.size();
        Put(bytes, segment.type, 4, order);
        Put(bytes, commandBytes, 4, order);
        bytes.resize(begin + (isWide ? 40 : 32), '\0');
        Put(bytes, segment.offset, addressBytes, order);
        Put(bytes, segment.size, addressBytes, order);
        bytes.resize(begin + commandBytes, '\0');
    }
    return bytes;
}

TEST(ImageExtent, Elf_file_reaches_to_end_of_last_loaded_segment) {
    for (const std::size_t addressBytes : {std::size_t{4}, std::size_t{8}}) {
        for (const Order order : {Order::Little, Order::Big}) {
            EXPECT_EQ(LeastFileSize(Elf(addressBytes, order, {{1, 0x3000, 0x45}, {1, 0, 0x2000}})),
                      0x3045U);
            // Only what is loaded counts.
            EXPECT_EQ(LeastFileSize(Elf(addressBytes, order, {{1, 0, 0x2000}, {4, 0x9000, 1}})),
                      0x2000U);
        }
    }
}

TEST(ImageExtent, Elf_file_holds_its_header_and_program_headers) {
    const std::string bytes = Elf(8, Order::Little, {{1, 0, 1}, {1, 0, 1}});
    EXPECT_EQ(LeastFileSize(bytes), bytes.size());
    EXPECT_EQ(LeastFileSize(bytes.substr(0, 64)), bytes.size());
    EXPECT_EQ(LeastFileSize(bytes.substr(0, 10)), 64U);
}

TEST(ImageExtent, Hostile_numbers_are_the_largest_size) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(LeastFileSize(Elf(8, Order::Little, {{1, kMost, 2}})), kMost);
    EXPECT_EQ(LeastFileSize(MachO(8, Order::Little, {{0x19, 2, kMost}})), kMost);
    std::string bytes = Elf(8, Order::Little, {{1, 0, 0x2000}});
    bytes.replace(32, 8, 8, '\xFF'); // where the program headers are
    EXPECT_EQ(LeastFileSize(bytes), kMost);
}

TEST(ImageExtent, Mach_O_file_reaches_to_end_of_last_segment) {
    for (const Order order : {Order::Little, Order::Big}) {
        EXPECT_EQ(LeastFileSize(MachO(8, order, {{0x19, 0x200, 0x1000}, {0x1B, 0x9000, 1}})),
                  0x1200U);
        EXPECT_EQ(LeastFileSize(MachO(4, order, {{0x1, 0x300, 0x1000}, {0x1, 0, 1}})), 0x1300U);
    }
    std::string endless = MachO(8, Order::Little, {{0x19, 0, 1}, {0x19, 0, 2}});
    endless.replace(36, 4, 4, '\0'); // the length of the first command
    EXPECT_EQ(LeastFileSize(endless), 1U);
    EXPECT_EQ(LeastFileSize(endless.substr(0, 20)), 32U);
}

TEST(ImageExtent, Universal_file_reaches_to_end_of_last_slice) {
    for (const std::size_t addressBytes : {std::size_t{4}, std::size_t{8}}) {
        std::string bytes;
        Put(bytes, addressBytes == 8 ? 0xCAFEBABF : 0xCAFEBABE, 4, Order::Big);
        Put(bytes, 2, 4, Order::Big);
        for (const std::uint64_t offset : {std::uint64_t{0x8000}, std::uint64_t{0x4000}}) {
            Put(bytes, 0x0100000C, 8, Order::Big);
            Put(bytes, offset, addressBytes, Order::Big);
            Put(bytes, 0x1234, addressBytes, Order::Big);
            Put(bytes, 14, addressBytes, Order::Big);
        }
        EXPECT_EQ(LeastFileSize(bytes), 0x9234U);
        EXPECT_EQ(LeastFileSize(bytes.substr(0, 6)), 0U);
    }
}

TEST(ImageExtent, Other_files_have_any_size) {
    for (const char *bytes : {"", "#!", "#!/bin/sh\n", "!<arch>\n"}) {
        EXPECT_EQ(LeastFileSize(bytes), 0U);
    }
}

} // namespace
