#include "edid/cta/Vendor.h"

#include <fmt/format.h>

namespace ispctl::edid {
namespace {

constexpr std::size_t kOuiBytes = 3;

constexpr PayloadBit kHdmiFlags[] = {
    {2, 7, "ACP and ISRC packets"}, {2, 6, "48 bits per pixel"},    {2, 5, "36 bits per pixel"},
    {2, 4, "30 bits per pixel"},    {2, 3, "deep colour in YCbCr"}, {2, 0, "dual-link DVI"},
};
constexpr const char *kHdmiVideo[] = {
    "3840 x 2160 at 30 Hz",
    "3840 x 2160 at 25 Hz",
    "3840 x 2160 at 24 Hz",
    "4096 x 2160 at 24 Hz",
};
constexpr PayloadBit kForumFlags[] = {
    {2, 7, "SCDC"},
    {2, 6, "read requests"},
    {2, 5, "cable status"},
    {2, 4, "colour content bits per component"},
    {2, 3, "scrambling at 340 MHz and below"},
    {2, 2, "3D independent view"},
    {2, 1, "3D dual view"},
    {2, 0, "3D OSD disparity"},
    {3, 3, "UHD VICs"},
    {3, 2, "48 bits per pixel in 4:2:0"},
    {3, 1, "36 bits per pixel in 4:2:0"},
    {3, 0, "30 bits per pixel in 4:2:0"},
    {4, 7, "FAPA end extended"},
    {4, 6, "quick media switching"},
    {4, 5, "M_delta"},
    {4, 4, "cinema VRR"},
    {4, 3, "negative M_VRR"},
    {4, 2, "fast Vactive"},
    {4, 1, "auto low-latency mode"},
    {4, 0, "FAPA after first line"},
    {7, 7, "DSC 1.2a"},
};
constexpr const char *kLinkRates[] = {
    "",
    "3 lanes of 3 Gbit/s",
    "3 lanes of 6 Gbit/s",
    "4 lanes of 6 Gbit/s",
    "4 lanes of 8 Gbit/s",
    "4 lanes of 10 Gbit/s",
    "4 lanes of 12 Gbit/s",
};

/// \param fields  after the two bytes of latencies, if any
void AppendHdmiVideo(View fields, Lines &lines) {
    if ((ByteOr0(fields, 0) & 0x80U) != 0) {
        lines.emplace_back("3D");
    }
    const std::size_t count = ByteOr0(fields, 1) >> 5U;
    for (std::size_t i = 0; i < count && 2 + i < fields.size(); ++i) {
        const unsigned int vic = fields[2 + i];
        lines.push_back(vic >= 1 && vic <= std::size(kHdmiVideo)
                            ? fmt::format("HDMI VIC {}, {}", vic, kHdmiVideo[vic - 1])
                            : fmt::format("HDMI VIC {}, unknown", vic));
    }
}

Lines DescribeHdmi(View fields) {
    Lines lines;
    if (fields.size() >= 2) {
        lines.push_back(fmt::format("physical address {}.{}.{}.{}", fields[0] >> 4U,
                                    fields[0] & 15U, fields[1] >> 4U, fields[1] & 15U));
    }
    const Lines flags = NamesOfBits(fields, kHdmiFlags);
    lines.insert(lines.end(), flags.begin(), flags.end());
    if (ByteOr0(fields, 3) != 0) {
        lines.push_back(fmt::format("TMDS clock at most {} MHz", fields[3] * 5));
    }
    const unsigned int present = ByteOr0(fields, 4);
    const std::size_t video =
        5 + ((present & 0x80U) != 0 ? 2U : 0U) + ((present & 0x40U) != 0 ? 2U : 0U);
    if ((present & 0x20U) != 0 && video < fields.size()) {
        AppendHdmiVideo(fields.subspan(video), lines);
    }
    return lines;
}

Lines DescribeNothing(View) {
    return {};
}

struct Vendor {
    std::uint32_t oui;
    const char *name;
    Lines (*describe)(View fields);
};
constexpr Vendor kVendors[] = {
    {0x000C03, "HDMI", DescribeHdmi},         {0xC45DD8, "HDMI Forum", DescribeHdmiForum},
    {0x00001A, "AMD", DescribeNothing},       {0x00044B, "NVIDIA", DescribeNothing},
    {0x00D046, "Dolby", DescribeNothing},     {0x90848B, "HDR10+", DescribeNothing},
    {0xCA125C, "Microsoft", DescribeNothing},
};

} // namespace

Lines DescribeHdmiForum(View fields) {
    Lines lines;
    if (ByteOr0(fields, 1) != 0) {
        lines.push_back(fmt::format("TMDS character rate at most {} MHz", fields[1] * 5));
    }
    if (const unsigned int rate = ByteOr0(fields, 3) >> 4U; rate != 0) {
        lines.push_back(rate < std::size(kLinkRates) ? fmt::format("FRL {}", kLinkRates[rate])
                                                     : fmt::format("FRL rate {}", rate));
    }
    const Lines flags = NamesOfBits(fields, kForumFlags);
    lines.insert(lines.end(), flags.begin(), flags.end());
    const unsigned int minimum = ByteOr0(fields, 5) & 0x3FU;
    const unsigned int maximum = (ByteOr0(fields, 5) & 0xC0U) << 2U | ByteOr0(fields, 6);
    if (minimum != 0) {
        lines.push_back(maximum != 0
                            ? fmt::format("variable refresh rate {} to {} Hz", minimum, maximum)
                            : fmt::format("variable refresh rate from {} Hz", minimum));
    }
    return lines;
}

DataBlockText DescribeVendor(const char *kind, View payload) {
    if (payload.size() < kOuiBytes) {
        return {fmt::format("{}, without OUI", kind), {}};
    }
    const std::uint32_t oui =
        payload[0] | std::uint32_t{payload[1]} << 8U | std::uint32_t{payload[2]} << 16U;
    for (const Vendor &row : kVendors) {
        if (row.oui == oui) {
            return {fmt::format("{}, {}", kind, row.name),
                    row.describe(payload.subspan(kOuiBytes))};
        }
    }
    return {fmt::format("{}, OUI {:02X}-{:02X}-{:02X}", kind, payload[2], payload[1], payload[0]),
            {}};
}

} // namespace ispctl::edid
