#include "edid/cta/DataBlockText.h"

#include <fmt/format.h>

#include "edid/cta/Audio.h"
#include "edid/cta/Vendor.h"
#include "edid/cta/Video.h"

namespace ispctl::edid {
namespace {

// The reserved bytes between the extended tag and the version.
constexpr std::size_t kReservedOfCapabilities = 2;

/// The payload of one data block, and what others of the same CTA block say about it.
struct Context {
    View payload;
    const Bytes &video; ///< the short video descriptors of the CTA block
};

Lines Nothing(const Context &) {
    return {};
}
template <Lines (*Describe)(View)> Lines Payload(const Context &context) {
    return Describe(context.payload);
}
Lines Ycbcr420Map(const Context &context) {
    return DescribeYcbcr420Map(context.payload, context.video);
}
Lines BlockCount(const Context &context) {
    const unsigned int count = ByteOr0(context.payload, 0);
    return {fmt::format("{} extension block{}", count, count == 1 ? "" : "s")};
}
Lines ForumCapabilities(const Context &context) {
    return context.payload.size() <= kReservedOfCapabilities
               ? Lines{}
               : DescribeHdmiForum(context.payload.subspan(kReservedOfCapabilities));
}

struct KindRow {
    std::uint8_t tag;
    const char *kind;
    Lines (*describe)(const Context &);
};
constexpr KindRow kKinds[] = {
    {kAudioTag, "audio", Payload<DescribeAudio>},
    {kVideoTag, "video", Payload<DescribeVideo>},
    {kSpeakerTag, "speaker allocation", Payload<DescribeSpeakers>},
    {kTransferTag, "display transfer characteristic", Nothing},
    {kVideoFormatTag, "video format", Nothing},
};
constexpr KindRow kExtendedKinds[] = {
    {0x00, "video capability", Payload<DescribeVideoCapability>},
    {0x02, "display device", Nothing},
    {0x03, "VESA video timing", Nothing},
    {0x04, "HDMI video", Nothing},
    {0x05, "colorimetry", Payload<DescribeColorimetry>},
    {0x06, "HDR static metadata", Payload<DescribeHdrStatic>},
    {0x07, "HDR dynamic metadata", Nothing},
    {0x08, "native video resolution", Nothing},
    {0x0D, "video format preference", Payload<DescribePreference>},
    {0x0E, "YCbCr 4:2:0 video", Payload<DescribeVideo>},
    {0x0F, "YCbCr 4:2:0 capability map", Ycbcr420Map},
    {0x10, "CTA miscellaneous audio", Nothing},
    {0x12, "HDMI audio", Nothing},
    {0x13, "room configuration", Nothing},
    {0x14, "speaker location", Nothing},
    {0x20, "InfoFrame", Nothing},
    {0x22, "DisplayID type VII video timing", Nothing},
    {0x23, "DisplayID type VIII video timing", Nothing},
    {0x2A, "DisplayID type X video timing", Nothing},
    {kBlockCountOverrideTag, "HDMI Forum block-count override", BlockCount},
    {0x79, "HDMI Forum sink capabilities", ForumCapabilities},
};
constexpr std::uint8_t kVendorVideoTag = 0x01;
constexpr std::uint8_t kVendorAudioTag = 0x11;

template <std::size_t N>
DataBlockText DescribeByTable(const KindRow (&rows)[N], std::uint8_t tag, const char *name,
                              const Context &context) {
    for (const KindRow &row : rows) {
        if (row.tag == tag) {
            return {row.kind, row.describe(context)};
        }
    }
    return {fmt::format("{} 0x{:02X}", name, tag), {}};
}

DataBlockText Describe(const DataBlock &block, const Bytes &video) {
    const Context context{block.payload, video};
    if (block.tag == kVendorTag) {
        return DescribeVendor("vendor", block.payload);
    }
    if (block.tag != kExtendedTag) {
        return DescribeByTable(kKinds, block.tag, "tag", context);
    }
    if (block.IsExtended(kVendorVideoTag)) {
        return DescribeVendor("vendor video", block.payload);
    }
    if (block.IsExtended(kVendorAudioTag)) {
        return DescribeVendor("vendor audio", block.payload);
    }
    return DescribeByTable(kExtendedKinds, block.extendedTag, "extended tag", context);
}

constexpr PayloadBit kHeadBits[] = {{3, 7, "underscans IT video"},
                                    {3, 6, "basic audio"},
                                    {3, 5, "YCbCr 4:4:4"},
                                    {3, 4, "YCbCr 4:2:2"}};

} // namespace

std::vector<DataBlockText> DescribeDataBlocks(View block) {
    const auto blocks = DataBlocksOf(block);
    Bytes video;
    for (const DataBlock &one : blocks) {
        if (one.tag == kVideoTag) {
            video.insert(video.end(), one.payload.begin(), one.payload.end());
        }
    }
    std::vector<DataBlockText> texts;
    for (const DataBlock &one : blocks) {
        texts.push_back(Describe(one, video));
    }
    return texts;
}

Lines DescribeCtaHead(View block) {
    Lines lines{fmt::format("revision {}", block[1])};
    if (block[1] < 2) {
        return lines; // the byte of the features is reserved
    }
    const Lines features = NamesOfBits(block, kHeadBits);
    lines.insert(lines.end(), features.begin(), features.end());
    if (const unsigned int count = block[3] & 15U; count != 0) {
        lines.push_back(fmt::format("{} native timing{}", count, count == 1 ? "" : "s"));
    }
    return lines;
}

} // namespace ispctl::edid
