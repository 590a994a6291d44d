#include "edid/Descriptors.h"

namespace ispctl::edid {
namespace {

constexpr std::size_t kFirstDescriptor = 54;
constexpr std::size_t kTextOffset = 5;

struct TextKind {
    std::uint8_t tag;
    const char *kind;
};
constexpr TextKind kTextKinds[] = {{kNameTag, "name"}, {kSerialTag, "serial"}, {kTextTag, "text"}};

// A newline ends the string; displays that end it with a zero byte are common.
std::string ReadText(View descriptor) {
    std::string text;
    for (const std::uint8_t byte : descriptor.subspan(kTextOffset)) {
        if (byte == '\n' || byte == 0) {
            break;
        }
        if (byte < 0x80) {
            text += static_cast<char>(byte);
        } else {
            text += static_cast<char>(0xC0U | byte >> 6U);
            text += static_cast<char>(0x80U | (byte & 0x3FU));
        }
    }
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

} // namespace

std::array<View, kDescriptors> DescriptorsOf(View edid) {
    std::array<View, kDescriptors> descriptors;
    for (std::size_t i = 0; i < kDescriptors; ++i) {
        descriptors[i] = edid.subspan(kFirstDescriptor + i * kDescriptorBytes, kDescriptorBytes);
    }
    return descriptors;
}

bool IsTiming(View descriptor) {
    return Word(descriptor, 0) != 0;
}

std::optional<View> FindDescriptor(View edid, DescriptorTag tag) {
    for (const View descriptor : DescriptorsOf(edid)) {
        if (!IsTiming(descriptor) && descriptor[3] == tag) {
            return descriptor;
        }
    }
    return std::nullopt;
}

std::vector<EdidText> TextsOf(View edid) {
    std::vector<EdidText> texts;
    for (const View descriptor : DescriptorsOf(edid)) {
        for (const TextKind &row : kTextKinds) {
            if (!IsTiming(descriptor) && descriptor[3] == row.tag) {
                texts.push_back({row.kind, ReadText(descriptor)});
            }
        }
    }
    return texts;
}

std::string JoinTexts(const std::vector<EdidText> &texts, std::string_view kind) {
    std::string joined;
    for (const EdidText &text : texts) {
        if (text.kind == kind && !text.value.empty()) {
            joined += (joined.empty() ? "" : " ") + text.value;
        }
    }
    return joined;
}

} // namespace ispctl::edid
