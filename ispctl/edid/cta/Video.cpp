#include "edid/cta/Video.h"

#include <cmath>
#include <fmt/format.h>

namespace ispctl::edid {
namespace {

constexpr bool P = false;
constexpr bool I = true;

struct VideoFormat {
    std::uint8_t vic;
    std::uint16_t width, height;
    bool interlaced;
    std::uint8_t rate;
    const char *aspect;
};
constexpr VideoFormat kVideoFormats[] = {
#define ISPCTL_VIDEO_FORMAT(VIC, WIDTH, HEIGHT, SCAN, RATE, ASPECT)                                \
    {VIC, WIDTH, HEIGHT, SCAN, RATE, ASPECT},
#include "edid/cta/video_formats.def"
};

constexpr PayloadBit kColorimetry[] = {
    {0, 0, "xvYCC601"},    {0, 1, "xvYCC709"},    {0, 2, "sYCC601"},    {0, 3, "opYCC601"},
    {0, 4, "opRGB"},       {0, 5, "BT.2020cYCC"}, {0, 6, "BT.2020YCC"}, {0, 7, "BT.2020RGB"},
    {1, 4, "default RGB"}, {1, 5, "sRGB"},        {1, 6, "ICtCp"},      {1, 7, "DCI-P3"},
    {1, 0, "metadata 0"},  {1, 1, "metadata 1"},  {1, 2, "metadata 2"}, {1, 3, "metadata 3"},
};
constexpr PayloadBit kHdrCurves[] = {
    {0, 0, "SDR gamma"}, {0, 1, "HDR gamma"},         {0, 2, "PQ (SMPTE ST 2084)"},
    {0, 3, "HLG"},       {1, 0, "static metadata 1"},
};
constexpr PayloadBit kQuantization[] = {
    {0, 7, "YCC quantization selectable"},
    {0, 6, "RGB quantization selectable"},
};
constexpr const char *kScan[] = {"", "always overscanned", "always underscanned",
                                 "overscanned or underscanned"};

} // namespace

std::string DescribeVic(unsigned int vic) {
    for (const VideoFormat &row : kVideoFormats) {
        if (row.vic == vic) {
            return fmt::format("VIC {}, {} x {}{} at {} Hz, {}", vic, row.width, row.height,
                               row.interlaced ? " interlaced" : "", row.rate, row.aspect);
        }
    }
    return fmt::format("VIC {}, unknown", vic);
}

// Codes up to 64 have a native bit; above 192 all eight bits are the code.
std::string DescribeShortVideo(std::uint8_t descriptor) {
    const bool native = descriptor > 128 && descriptor <= 192;
    return DescribeVic(native ? descriptor & 0x7FU : descriptor) + (native ? ", native" : "");
}

Lines DescribeVideo(View payload) {
    Lines lines;
    for (const std::uint8_t descriptor : payload) {
        lines.push_back(DescribeShortVideo(descriptor));
    }
    return lines;
}

Lines DescribeVideoCapability(View payload) {
    Lines lines = NamesOfBits(payload, kQuantization);
    constexpr const char *kVideos[] = {"CE video", "IT video", "preferred video"};
    for (unsigned int i = 0; i < std::size(kVideos); ++i) {
        const char *scan = kScan[ByteOr0(payload, 0) >> (2 * i) & 3U];
        if (*scan != 0) {
            lines.push_back(fmt::format("{} {}", kVideos[i], scan));
        }
    }
    return lines;
}

Lines DescribeColorimetry(View payload) {
    return NamesOfBits(payload, kColorimetry);
}

Lines DescribeHdrStatic(View payload) {
    Lines lines = NamesOfBits(payload, kHdrCurves);
    const auto luminance = [&](std::size_t index) {
        return 50 * std::pow(2, ByteOr0(payload, index) / 32.0);
    };
    if (ByteOr0(payload, 2) != 0) {
        lines.push_back(fmt::format("at most {:.0f} cd/m2", luminance(2)));
    }
    if (ByteOr0(payload, 3) != 0) {
        lines.push_back(fmt::format("frame average at most {:.0f} cd/m2", luminance(3)));
    }
    if (ByteOr0(payload, 2) != 0 && ByteOr0(payload, 4) != 0) {
        const double fraction = payload[4] / 255.0;
        lines.push_back(
            fmt::format("at least {:.3f} cd/m2", luminance(2) * fraction * fraction / 100));
    }
    return lines;
}

Lines DescribePreference(View payload) {
    Lines lines;
    for (const std::uint8_t code : payload) {
        if (code >= 129 && code <= 144) {
            lines.push_back(fmt::format("detailed timing {}", code - 128));
        } else if (code >= 145 && code <= 160) {
            lines.push_back(fmt::format("DisplayID timing {}", code - 144));
        } else if ((code >= 1 && code <= 127) || (code >= 193 && code <= 253)) {
            lines.push_back(DescribeVic(code));
        } // the others are reserved
    }
    return lines;
}

Lines DescribeYcbcr420Map(View payload, const Bytes &video) {
    if (payload.empty()) {
        return {"all video formats of this block"};
    }
    Lines lines;
    for (std::size_t i = 0; i < video.size() && i / 8 < payload.size(); ++i) {
        if ((payload[i / 8] >> (i % 8) & 1U) != 0) {
            lines.push_back(DescribeShortVideo(video[i]));
        }
    }
    return lines;
}

} // namespace ispctl::edid
