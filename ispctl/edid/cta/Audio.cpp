#include "edid/cta/Audio.h"

#include <fmt/format.h>

namespace ispctl::edid {
namespace {

constexpr std::size_t kDescriptorBytes = 3;
constexpr unsigned int kLpcm = 1;
constexpr unsigned int kFirstCompressed = 2;
constexpr unsigned int kLastWithBitRate = 8;
constexpr unsigned int kExtended = 15;

struct Format {
    std::uint8_t code;
    const char *name;
};
constexpr Format kFormats[] = {
    {1, "LPCM"},    {2, "AC-3"}, {3, "MPEG-1"}, {4, "MP3"},           {5, "MPEG-2"},
    {6, "AAC LC"},  {7, "DTS"},  {8, "ATRAC"},  {9, "One Bit Audio"}, {10, "Enhanced AC-3"},
    {11, "DTS-HD"}, {12, "MAT"}, {13, "DST"},   {14, "WMA Pro"},
};
constexpr Format kExtendedFormats[] = {
    {4, "MPEG-4 HE AAC"},
    {5, "MPEG-4 HE AAC v2"},
    {6, "MPEG-4 AAC LC"},
    {7, "DRA"},
    {8, "MPEG-4 HE AAC and MPEG Surround"},
    {10, "MPEG-4 AAC LC and MPEG Surround"},
    {11, "MPEG-H 3D Audio"},
    {12, "AC-4"},
    {13, "LPCM 3D Audio"},
};

constexpr PayloadBit kRates[] = {
    {1, 0, "32"}, {1, 1, "44.1"},  {1, 2, "48"},  {1, 3, "88.2"},
    {1, 4, "96"}, {1, 5, "176.4"}, {1, 6, "192"},
};
constexpr PayloadBit kSampleBits[] = {{2, 0, "16"}, {2, 1, "20"}, {2, 2, "24"}};

constexpr PayloadBit kSpeakers[] = {
    {0, 0, "front left/right"},
    {0, 1, "low frequency"},
    {0, 2, "front centre"},
    {0, 3, "back left/right"},
    {0, 4, "back centre"},
    {0, 5, "front left/right of centre"},
    {0, 6, "rear left/right of centre"},
    {0, 7, "front left/right wide"},
    {1, 0, "top front left/right"},
    {1, 1, "top centre"},
    {1, 2, "top front centre"},
    {1, 3, "left/right surround"},
    {1, 4, "low frequency 2"},
    {1, 5, "top back centre"},
    {1, 6, "side left/right"},
    {1, 7, "top side left/right"},
    {2, 0, "top back left/right"},
    {2, 1, "bottom front centre"},
    {2, 2, "bottom front left/right"},
    {2, 3, "top left/right surround"},
};

template <std::size_t N> std::string NameOfFormat(unsigned int code, const Format (&rows)[N]) {
    for (const Format &row : rows) {
        if (row.code == code) {
            return row.name;
        }
    }
    return fmt::format("format {}", code);
}

std::string DescribeFormat(View d) {
    const unsigned int code = d[0] >> 3U & 15U;
    std::string text = code == kExtended ? NameOfFormat(d[2] >> 3U, kExtendedFormats)
                                         : NameOfFormat(code, kFormats);
    text += fmt::format(", {} channel{}", (d[0] & 7U) + 1, (d[0] & 7U) == 0 ? "" : "s");
    if (const Lines rates = NamesOfBits(d, kRates); !rates.empty()) {
        text += fmt::format(", {} kHz", fmt::join(rates, "/"));
    }
    if (code == kLpcm) {
        text += fmt::format(", {} bits", fmt::join(NamesOfBits(d, kSampleBits), "/"));
    } else if (code >= kFirstCompressed && code <= kLastWithBitRate) {
        text += fmt::format(", at most {} kbit/s", d[2] * 8);
    }
    return text;
}

} // namespace

Lines DescribeAudio(View payload) {
    Lines lines;
    for (std::size_t i = 0; i + kDescriptorBytes <= payload.size(); i += kDescriptorBytes) {
        lines.push_back(DescribeFormat(payload.subspan(i, kDescriptorBytes)));
    }
    return lines;
}

Lines DescribeSpeakers(View payload) {
    return NamesOfBits(payload, kSpeakers);
}

} // namespace ispctl::edid
