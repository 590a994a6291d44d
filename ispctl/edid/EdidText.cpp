#include "edid/EdidText.h"

#include <algorithm>
#include <fmt/format.h>

namespace ispctl {
namespace {

constexpr std::string_view kHeader("\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00", 8);
constexpr std::string_view kWhitespace = " \t\r\n";
constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
constexpr std::size_t kBlockBytes = 128;
constexpr std::size_t kBytesPerLine = 16;

bool IsNonTextByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 || byte == 0x7F) && kWhitespace.find(c) == std::string_view::npos;
}

} // namespace

EdidForm DetectEdidFormat(std::string_view bytes) {
    if (bytes.starts_with(kHeader) || std::any_of(bytes.begin(), bytes.end(), IsNonTextByte)) {
        return EdidForm::Binary;
    }
    const bool hex = std::all_of(bytes.begin(), bytes.end(), [](char c) {
        return kHexDigits.find(c) != std::string_view::npos ||
               kWhitespace.find(c) != std::string_view::npos;
    });
    return hex ? EdidForm::Hex : EdidForm::ByteList;
}

std::optional<std::string> ByteListOfEdid(std::string_view bytes, EdidForm form) {
    if (form == EdidForm::ByteList) {
        return std::string(bytes);
    }
    std::string list;
    if (form == EdidForm::Binary) {
        for (const char c : bytes) {
            list += fmt::format("0x{:02X},", static_cast<unsigned char>(c));
        }
        return list;
    }
    bool first = true;
    for (const char c : bytes) {
        if (kWhitespace.find(c) == std::string_view::npos) {
            list += first ? "0x" : "";
            list += c;
            list += first ? "" : ",";
            first = !first;
        }
    }
    return first ? std::optional<std::string>(list) : std::nullopt;
}

std::string WriteEdidText(std::span<const std::uint8_t> edid) {
    std::string text;
    for (std::size_t i = 0; i < edid.size(); ++i) {
        if (i % kBlockBytes == 0) {
            text += fmt::format("// block {}\n", i / kBlockBytes);
        }
        text += fmt::format("0x{:02X},{}", edid[i], (i + 1) % kBytesPerLine == 0 ? "\n" : " ");
    }
    return text;
}

} // namespace ispctl
