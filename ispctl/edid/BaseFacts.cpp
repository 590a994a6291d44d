#include "edid/BaseFacts.h"

#include <fmt/format.h>

namespace ispctl::edid {
namespace {

constexpr int kFirstYear = 1990;
constexpr std::uint8_t kModelYear = 0xFF; ///< in the byte of the week
constexpr std::uint8_t kLastWeek = 54;
constexpr std::uint8_t kDigital = 0x80;

void Append(std::string &list, std::string_view item) {
    list += (list.empty() ? "" : ", ") + std::string(item);
}

struct NamedBit {
    std::uint8_t mask;
    std::uint8_t value;
    const char *name;
};

template <std::size_t N>
void AppendNamed(std::string &list, unsigned int byte, const NamedBit (&rows)[N]) {
    for (const NamedBit &row : rows) {
        if ((byte & row.mask) == row.value) {
            Append(list, row.name);
        }
    }
}

constexpr NamedBit kDigitalInput14[] = {
    {0x70, 0x10, "6 bits per colour"},
    {0x70, 0x20, "8 bits per colour"},
    {0x70, 0x30, "10 bits per colour"},
    {0x70, 0x40, "12 bits per colour"},
    {0x70, 0x50, "14 bits per colour"},
    {0x70, 0x60, "16 bits per colour"},
    {0x0F, 0x01, "DVI"},
    {0x0F, 0x02, "HDMI-a"},
    {0x0F, 0x03, "HDMI-b"},
    {0x0F, 0x04, "MDDI"},
    {0x0F, 0x05, "DisplayPort"},
};
constexpr NamedBit kDigitalInput13[] = {{0x01, 0x01, "DFP 1.x"}};
constexpr NamedBit kAnalogueInput[] = {
    {0x60, 0x00, "0.700 V / 0.300 V"},       {0x60, 0x20, "0.714 V / 0.286 V"},
    {0x60, 0x40, "1.000 V / 0.400 V"},       {0x60, 0x60, "0.700 V / 0.000 V"},
    {0x10, 0x10, "blank-to-black setup"},    {0x08, 0x08, "separate sync"},
    {0x04, 0x04, "composite sync on hsync"}, {0x02, 0x02, "composite sync on green"},
    {0x01, 0x01, "serrated vsync"},
};

std::string InputText(View edid) {
    const unsigned int byte = edid[20];
    std::string text = (byte & kDigital) != 0 ? "digital" : "analogue";
    if ((byte & kDigital) == 0) {
        AppendNamed(text, byte, kAnalogueInput);
    } else if (IsVersionAtLeast(edid, 1, 4)) {
        AppendNamed(text, byte, kDigitalInput14);
    } else {
        AppendNamed(text, byte, kDigitalInput13);
    }
    return text;
}

std::string SizeText(View edid) {
    const unsigned int width = edid[21];
    const unsigned int height = edid[22];
    if (width != 0 && height != 0) {
        return fmt::format("{} cm x {} cm", width, height);
    }
    if (IsVersionAtLeast(edid, 1, 4) && width != 0) {
        return fmt::format("aspect ratio {:.2f} : 1, landscape", (width + 99) / 100.0);
    }
    if (IsVersionAtLeast(edid, 1, 4) && height != 0) {
        return fmt::format("aspect ratio 1 : {:.2f}, portrait", (height + 99) / 100.0);
    }
    return "unknown";
}

constexpr NamedBit kPowerFeatures[] = {
    {0x80, 0x80, "standby"}, {0x40, 0x40, "suspend"}, {0x20, 0x20, "active off"}};
constexpr NamedBit kEncodings14[] = {
    {0x18, 0x00, "RGB 4:4:4"},
    {0x18, 0x08, "RGB 4:4:4, YCbCr 4:4:4"},
    {0x18, 0x10, "RGB 4:4:4, YCbCr 4:2:2"},
    {0x18, 0x18, "RGB 4:4:4, YCbCr 4:4:4, YCbCr 4:2:2"},
};
constexpr NamedBit kColourTypes[] = {
    {0x18, 0x00, "monochrome"}, {0x18, 0x08, "RGB colour"}, {0x18, 0x10, "non-RGB colour"}};
constexpr NamedBit kOtherFeatures14[] = {{0x04, 0x04, "sRGB is the default"},
                                         {0x02, 0x02, "preferred timing is native"},
                                         {0x01, 0x01, "continuous frequency"}};
constexpr NamedBit kOtherFeatures13[] = {{0x04, 0x04, "sRGB is the default"},
                                         {0x02, 0x02, "first timing is preferred"},
                                         {0x01, 0x01, "default GTF"}};

std::string FeatureText(View edid) {
    const unsigned int byte = edid[kFeaturesOffset];
    const bool isVersion14 = IsVersionAtLeast(edid, 1, 4);
    std::string text;
    AppendNamed(text, byte, kPowerFeatures);
    if (isVersion14 && (edid[20] & kDigital) != 0) {
        AppendNamed(text, byte, kEncodings14);
    } else {
        AppendNamed(text, byte, kColourTypes);
    }
    if (isVersion14) {
        AppendNamed(text, byte, kOtherFeatures14);
    } else {
        AppendNamed(text, byte, kOtherFeatures13);
    }
    return text;
}

// Eight coordinates of 10 bits: the high bits in bytes 27 to 34, the low ones in bytes 25 and 26.
std::string ChromaticityText(View edid) {
    constexpr const char *kNames[] = {"red", "green", "blue", "white"};
    std::string text;
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
        const auto coordinate = [&](std::size_t index) {
            const unsigned int low = edid[25 + index / 4] >> (6 - 2 * (index % 4)) & 3U;
            return (edid[27 + index] * 4U + low) / 1024.0;
        };
        Append(text, fmt::format("{} {:.3f} {:.3f}", kNames[i], coordinate(2 * i),
                                 coordinate(2 * i + 1)));
    }
    return text;
}

std::string GammaText(View edid) {
    return edid[23] == 0xFF ? "not in this block" : fmt::format("{:.2f}", (edid[23] + 100) / 100.0);
}

} // namespace

std::string ManufacturerOf(View edid) {
    const unsigned int packed = edid[8] * 256U + edid[9];
    std::string letters;
    for (const unsigned int shift : {10U, 5U, 0U}) {
        const unsigned int letter = packed >> shift & 0x1FU;
        letters += letter >= 1 && letter <= 26 ? static_cast<char>('A' + letter - 1) : '?';
    }
    return letters;
}

MadeIn MadeInOf(View edid) {
    MadeIn made;
    const int year = kFirstYear + edid[17];
    if (edid[16] == kModelYear) {
        made.modelYear = year;
        return made;
    }
    made.year = year;
    if (edid[16] >= 1 && edid[16] <= kLastWeek) {
        made.week = edid[16];
    }
    return made;
}

std::optional<std::uint32_t> SerialOf(View edid) {
    const std::uint32_t serial = Word(edid, 12) | std::uint32_t{Word(edid, 14)} << 16U;
    return serial == 0 ? std::nullopt : std::optional(serial);
}

std::string VersionOf(View edid) {
    return fmt::format("{}.{}", edid[18], edid[19]);
}

std::vector<Fact> BaseFactsOf(View edid) {
    return {{"input", "input", InputText(edid)},
            {"image_size", "image size", SizeText(edid)},
            {"gamma", "gamma", GammaText(edid)},
            {"features", "features", FeatureText(edid)},
            {"chromaticity", "chromaticity", ChromaticityText(edid)}};
}

} // namespace ispctl::edid
