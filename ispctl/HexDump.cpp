#include "HexDump.h"

#include <algorithm>
#include <fmt/format.h>

namespace ispctl {

std::string HexDump(std::span<const std::uint8_t> bytes) {
    constexpr std::size_t kBytesPerLine = 16;
    std::string text;
    for (std::size_t offset = 0; offset < bytes.size(); offset += kBytesPerLine) {
        const auto line = bytes.subspan(offset, std::min(kBytesPerLine, bytes.size() - offset));
        std::string numbers;
        std::string characters;
        for (const std::uint8_t byte : line) {
            numbers += fmt::format(" {:02X}", byte);
            characters += byte >= 0x20 && byte < 0x7F ? static_cast<char>(byte) : '.';
        }
        text += fmt::format("{:04X} {:<48}  {}\n", offset, numbers, characters);
    }
    return text;
}

} // namespace ispctl
