// Every word that a byte of an EDID can stand for.

#include "edid/EdidJson.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "edid/EdidMaker.h"
#include "edid/RangeLimits.h"

namespace {

using nlohmann::json;
using Lines = std::vector<std::string>;

json JsonOf(const std::string &bytes) {
    using namespace ispctl::edid;
    return json::parse(WriteJson({MakeReport("e", ReadInput(bytes, FormOption::Binary))}))[0];
}

/// A detail of a base block of version 1.`minor` with other bytes 20 to 24.
std::string DetailOf(const char *name, int minor, const std::array<int, 5> &bytes) {
    edid::Block block = edid::Base();
    block[19] = static_cast<std::uint8_t>(minor);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        block[20 + i] = static_cast<std::uint8_t>(bytes[i]);
    }
    edid::Close(block);
    return JsonOf(edid::Bytes(block))["details"][name];
}

json DataBlockOf(const std::string &bytes) {
    return JsonOf(edid::Bytes(edid::Base(1)) +
                  edid::Bytes(edid::CtaWith(bytes)))["cta"][0]["data_blocks"][0];
}

std::string Octets(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values) {
        bytes += static_cast<char>(value);
    }
    return bytes;
}

/// An audio block of one descriptor.
std::string Audio(int first, int second, int third) {
    return Octets({0x23, first, second, third});
}

TEST(EdidWords, Input_is_described_by_version) {
    struct Row {
        int minor, byte;
        const char *text;
    };
    for (const Row &row : {
             Row{4, 0x80, "digital"},
             Row{4, 0x91, "digital, 6 bits per colour, DVI"},
             Row{4, 0xA2, "digital, 8 bits per colour, HDMI-a"},
             Row{4, 0xB3, "digital, 10 bits per colour, HDMI-b"},
             Row{4, 0xC4, "digital, 12 bits per colour, MDDI"},
             Row{4, 0xD5, "digital, 14 bits per colour, DisplayPort"},
             Row{4, 0xE6, "digital, 16 bits per colour"},
             Row{4, 0xF0, "digital"},
             Row{3, 0x80, "digital"},
             Row{3, 0xA1, "digital, DFP 1.x"},
             Row{3, 0x00, "analogue, 0.700 V / 0.300 V"},
             Row{3, 0x20, "analogue, 0.714 V / 0.286 V"},
             Row{4, 0x40, "analogue, 1.000 V / 0.400 V"},
             Row{3, 0x7F,
                 "analogue, 0.700 V / 0.000 V, blank-to-black setup, separate sync, "
                 "composite sync on hsync, composite sync on green, serrated vsync"},
         }) {
        EXPECT_EQ(DetailOf("input", row.minor, {row.byte, 1, 1, 0, 0}), row.text) << row.byte;
    }
}

TEST(EdidWords, Features_are_described_by_version_and_input) {
    struct Row {
        int minor, input, byte;
        const char *text;
    };
    for (const Row &row : {
             Row{4, 0x80, 0x00, "RGB 4:4:4"},
             Row{4, 0x80, 0x08, "RGB 4:4:4, YCbCr 4:4:4"},
             Row{4, 0x80, 0x10, "RGB 4:4:4, YCbCr 4:2:2"},
             Row{4, 0x80, 0xFF,
                 "standby, suspend, active off, RGB 4:4:4, YCbCr 4:4:4, YCbCr 4:2:2, "
                 "sRGB is the default, preferred timing is native, continuous "
                 "frequency"},
             Row{4, 0x00, 0x08, "RGB colour"},
             Row{3, 0x80, 0x00, "monochrome"},
             Row{3, 0x80, 0x97,
                 "standby, non-RGB colour, sRGB is the default, first timing is "
                 "preferred, default GTF"},
             Row{3, 0x00, 0x58, "suspend"},
             Row{3, 0x00, 0x28, "active off, RGB colour"},
         }) {
        EXPECT_EQ(DetailOf("features", row.minor, {row.input, 1, 1, 0, row.byte}), row.text);
    }
}

TEST(EdidWords, Size_may_be_an_aspect_ratio_from_1_4) {
    struct Row {
        int minor, width, height;
        const char *text;
    };
    for (const Row &row : {
             Row{3, 52, 29, "52 cm x 29 cm"},
             Row{4, 79, 0, "aspect ratio 1.78 : 1, landscape"},
             Row{4, 0, 79, "aspect ratio 1 : 1.78, portrait"},
             Row{3, 79, 0, "unknown"},
             Row{3, 0, 79, "unknown"},
             Row{4, 0, 0, "unknown"},
         }) {
        EXPECT_EQ(DetailOf("image_size", row.minor, {0x80, row.width, row.height, 0, 0}), row.text);
    }
}

TEST(EdidWords, Gamma_may_be_elsewhere) {
    EXPECT_EQ(DetailOf("gamma", 4, {0x80, 1, 1, 0xFF, 0}), "not in this block");
    EXPECT_EQ(DetailOf("gamma", 4, {0x80, 1, 1, 0xFE, 0}), "3.54");
    EXPECT_EQ(DetailOf("gamma", 4, {0x80, 1, 1, 0, 0}), "1.00");
}

TEST(EdidWords, Chromaticity_combines_high_and_low_bits) {
    edid::Block block = edid::Base();
    const int bytes[] = {0x1B, 0xE4, 0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01};
    std::copy(std::begin(bytes), std::end(bytes), block.begin() + 25);
    edid::Close(block);
    EXPECT_EQ(JsonOf(edid::Bytes(block))["details"]["chromaticity"],
              "red 0.500 0.251, green 0.127 0.065, blue 0.034 0.018, white 0.009 0.004");
}

TEST(EdidWords, Audio_formats_have_names) {
    constexpr const char *kNames[] = {"format 0",      "LPCM",   "AC-3", "MPEG-1", "MP3",
                                      "MPEG-2",        "AAC LC", "DTS",  "ATRAC",  "One Bit Audio",
                                      "Enhanced AC-3", "DTS-HD", "MAT",  "DST",    "WMA Pro"};
    for (int code = 0; code < 15; ++code) {
        std::string expected = kNames[code] + std::string(", 1 channel, 32 kHz");
        if (code == 1) {
            expected += ", 16 bits";
        } else if (code >= 2 && code <= 8) {
            expected += ", at most 8 kbit/s";
        }
        EXPECT_EQ(DataBlockOf(Audio(code << 3, 1, 1))["facts"], json(Lines{expected}));
    }
}

TEST(EdidWords, Extended_audio_formats_have_names) {
    constexpr const char *kNames[] = {"format 3",
                                      "MPEG-4 HE AAC",
                                      "MPEG-4 HE AAC v2",
                                      "MPEG-4 AAC LC",
                                      "DRA",
                                      "MPEG-4 HE AAC and MPEG Surround",
                                      "format 9",
                                      "MPEG-4 AAC LC and MPEG Surround",
                                      "MPEG-H 3D Audio",
                                      "AC-4",
                                      "LPCM 3D Audio",
                                      "format 14"};
    for (int code = 3; code < 15; ++code) {
        EXPECT_EQ(DataBlockOf(Audio(0x7F, 0x00, code << 3))["facts"],
                  json(Lines{kNames[code - 3] + std::string(", 8 channels")}));
    }
}

TEST(EdidWords, Audio_rates_and_bits_have_names) {
    EXPECT_EQ(DataBlockOf(Audio(0x09, 0x7F, 0x07))["facts"],
              json(Lines{"LPCM, 2 channels, 32/44.1/48/88.2/96/176.4/192 kHz, 16/20/24 bits"}));
}

TEST(EdidWords, Speakers_have_names) {
    EXPECT_EQ(DataBlockOf(Octets({0x83, 0xFF, 0xFF, 0x0F}))["facts"],
              json(Lines{"front left/right",
                         "low frequency",
                         "front centre",
                         "back left/right",
                         "back centre",
                         "front left/right of centre",
                         "rear left/right of centre",
                         "front left/right wide",
                         "top front left/right",
                         "top centre",
                         "top front centre",
                         "left/right surround",
                         "low frequency 2",
                         "top back centre",
                         "side left/right",
                         "top side left/right",
                         "top back left/right",
                         "bottom front centre",
                         "bottom front left/right",
                         "top left/right surround"}));
}

TEST(EdidWords, Data_blocks_have_names) {
    struct Row {
        int tag, extended;
        const char *kind;
    };
    for (const Row &row : {
             Row{5, 0, "display transfer characteristic"},
             Row{6, 0, "video format"},
             Row{7, 0x02, "display device"},
             Row{7, 0x03, "VESA video timing"},
             Row{7, 0x04, "HDMI video"},
             Row{7, 0x07, "HDR dynamic metadata"},
             Row{7, 0x08, "native video resolution"},
             Row{7, 0x0D, "video format preference"},
             Row{7, 0x0F, "YCbCr 4:2:0 capability map"},
             Row{7, 0x10, "CTA miscellaneous audio"},
             Row{7, 0x12, "HDMI audio"},
             Row{7, 0x13, "room configuration"},
             Row{7, 0x14, "speaker location"},
             Row{7, 0x20, "InfoFrame"},
             Row{7, 0x22, "DisplayID type VII video timing"},
             Row{7, 0x23, "DisplayID type VIII video timing"},
             Row{7, 0x2A, "DisplayID type X video timing"},
             Row{7, 0x79, "HDMI Forum sink capabilities"},
             Row{7, 0x01, "vendor video, without OUI"},
             Row{7, 0x11, "vendor audio, without OUI"},
             Row{0, 0, "tag 0x00"},
         }) {
        EXPECT_EQ(DataBlockOf(Octets({row.tag << 5 | 1, row.extended}))["kind"], row.kind);
    }
}

TEST(EdidWords, Vendors_have_names) {
    struct Row {
        int first, second, third;
        const char *kind;
    };
    for (const Row &row : {
             Row{0x1A, 0x00, 0x00, "vendor, AMD"},
             Row{0x4B, 0x04, 0x00, "vendor, NVIDIA"},
             Row{0x46, 0xD0, 0x00, "vendor, Dolby"},
             Row{0x8B, 0x84, 0x90, "vendor, HDR10+"},
             Row{0x5C, 0x12, 0xCA, "vendor, Microsoft"},
             Row{0x03, 0x0C, 0x00, "vendor, HDMI"},
         }) {
        EXPECT_EQ(DataBlockOf(Octets({0x63, row.first, row.second, row.third}))["kind"], row.kind);
    }
    EXPECT_EQ(DataBlockOf(Octets({0x62, 0x03, 0x0C}))["kind"], "vendor, without OUI");
    EXPECT_EQ(DataBlockOf(Octets({0xE4, 0x01, 0x8B, 0x84, 0x90}))["kind"], "vendor video, HDR10+");
    EXPECT_EQ(DataBlockOf(Octets({0xE4, 0x11, 0x46, 0xD0, 0x00}))["kind"], "vendor audio, Dolby");
}

TEST(EdidWords, HDMI_block_lists_flags_and_video) {
    EXPECT_EQ(DataBlockOf(Octets({0x6F, 0x03, 0x0C, 0x00, 0x12, 0x34, 0x41, 0x00, 0xE0, 0xAA, 0xAA,
                                  0xAA, 0xAA, 0x80, 0x60, 0x01}))["facts"],
              json(Lines{"physical address 1.2.3.4", "48 bits per pixel", "dual-link DVI", "3D",
                         "HDMI VIC 1, 3840 x 2160 at 30 Hz"}));
    EXPECT_EQ(DataBlockOf(Octets({0x6F, 0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 0x01, 0x20, 0x00, 0xA0,
                                  0x02, 0x03, 0x04, 0x05, 0x00}))["facts"],
              json(Lines{"physical address 1.0.0.0", "TMDS clock at most 5 MHz",
                         "HDMI VIC 2, 3840 x 2160 at 25 Hz", "HDMI VIC 3, 3840 x 2160 at 24 Hz",
                         "HDMI VIC 4, 4096 x 2160 at 24 Hz", "HDMI VIC 5, unknown",
                         "HDMI VIC 0, unknown"}));
}

TEST(EdidWords, HDMI_Forum_block_lists_every_flag) {
    EXPECT_EQ(DataBlockOf(Octets({0x6B, 0xD8, 0x5D, 0xC4, 0x01, 0x00, 0xFF, 0x1F, 0xFF, 0x30, 0x00,
                                  0x80}))["facts"],
              json(Lines{"FRL 3 lanes of 3 Gbit/s",
                         "SCDC",
                         "read requests",
                         "cable status",
                         "colour content bits per component",
                         "scrambling at 340 MHz and below",
                         "3D independent view",
                         "3D dual view",
                         "3D OSD disparity",
                         "UHD VICs",
                         "48 bits per pixel in 4:2:0",
                         "36 bits per pixel in 4:2:0",
                         "30 bits per pixel in 4:2:0",
                         "FAPA end extended",
                         "quick media switching",
                         "M_delta",
                         "cinema VRR",
                         "negative M_VRR",
                         "fast Vactive",
                         "auto low-latency mode",
                         "FAPA after first line",
                         "DSC 1.2a",
                         "variable refresh rate from 48 Hz"}));
    EXPECT_EQ(DataBlockOf(Octets(
                  {0x6A, 0xD8, 0x5D, 0xC4, 0x01, 0x00, 0x00, 0x00, 0x00, 0x70, 0x20}))["facts"],
              json(Lines{"variable refresh rate 48 to 288 Hz"}));
}

TEST(EdidWords, HDR_luminance_is_computed_from_its_code) {
    const auto facts = [](int max, int average, int min) {
        return DataBlockOf(Octets({0xE6, 0x06, 0x0D, 0x01, max, average, min}))["facts"];
    };
    const Lines curves{"SDR gamma", "PQ (SMPTE ST 2084)", "HLG", "static metadata 1"};
    const auto with = [&](Lines more) {
        more.insert(more.begin(), curves.begin(), curves.end());
        return json(more);
    };
    EXPECT_EQ(facts(0, 0, 0), with({}));
    // 50 cd/m2, doubled every 32 steps; the least is a share of it.
    EXPECT_EQ(facts(96, 64, 255), with({"at most 400 cd/m2", "frame average at most 200 cd/m2",
                                        "at least 4.000 cd/m2"}));
    EXPECT_EQ(facts(96, 0, 128), with({"at most 400 cd/m2", "at least 1.008 cd/m2"}));
    EXPECT_EQ(facts(0, 0, 128), with({}));
    EXPECT_EQ(facts(1, 0, 0), with({"at most 51 cd/m2"}));
    EXPECT_EQ(DataBlockOf(Octets({0xE3, 0x06, 0x02, 0x00}))["facts"], json(Lines{"HDR gamma"}));
}

TEST(EdidWords, Preferred_formats_are_told_by_range_of_code) {
    EXPECT_EQ(DataBlockOf(Octets({0xEF, 0x0D, 0, 1, 127, 128, 129, 144, 145, 160, 161, 192, 193,
                                  253, 254, 255}))["facts"],
              json(Lines{"VIC 1, 640 x 480 at 60 Hz, 4:3", "VIC 127, 5120 x 2160 at 100 Hz, 64:27",
                         "detailed timing 1", "detailed timing 16", "DisplayID timing 1",
                         "DisplayID timing 16", "VIC 193, 5120 x 2160 at 120 Hz, 64:27",
                         "VIC 253, unknown"}));
}

TEST(EdidWords, YCbCr_420_map_names_formats_of_video_block) {
    const auto facts = [](std::initializer_list<int> map) {
        const std::string blocks = Octets({0x42, 0x10, 0x9F}) + Octets(map);
        return JsonOf(edid::Bytes(edid::Base(1)) +
                      edid::Bytes(edid::CtaWith(blocks)))["cta"][0]["data_blocks"][1]["facts"];
    };
    EXPECT_EQ(facts({0xE1, 0x0F}), json(Lines{"all video formats of this block"}));
    EXPECT_EQ(facts({0xE2, 0x0F, 0x01}), json(Lines{"VIC 16, 1920 x 1080 at 60 Hz, 16:9"}));
    EXPECT_EQ(facts({0xE2, 0x0F, 0xFE}), json(Lines{"VIC 31, 1920 x 1080 at 50 Hz, 16:9, native"}));
    EXPECT_EQ(facts({0xE2, 0x0F, 0x00}), json(Lines{}));
}

TEST(EdidWords, Standard_timings_have_aspect_of_their_version) {
    for (const int minor : {2, 3}) {
        edid::Block block = edid::Base();
        block[19] = static_cast<std::uint8_t>(minor);
        const int pairs[] = {0x31, 0x00, 0x31, 0x4F, 0x81, 0x80, 0xD1, 0xFF, 0x00, 0x00};
        std::copy(std::begin(pairs), std::end(pairs), block.begin() + 38);
        edid::Close(block);
        EXPECT_EQ(
            JsonOf(edid::Bytes(block))["standard_timings"],
            json(Lines{minor == 2 ? "640 x 640 at 60 Hz" : "640 x 400 at 60 Hz",
                       "640 x 480 at 75 Hz", "1280 x 1024 at 60 Hz", "1920 x 1080 at 123 Hz"}));
    }
}

TEST(EdidWords, Descriptors_hold_more_timings) {
    edid::Block block = edid::Base();
    std::fill(block.begin() + 90, block.begin() + 126, std::uint8_t{0});
    block[93] = 0xFA;
    block[95] = 0xD1; // 1920, 16:9
    block[96] = 0xC0;
    block[111] = 0xF7;
    block[113] = 0x0A;
    block[114] = 0xA0;
    edid::Close(block);
    const json object = JsonOf(edid::Bytes(block));
    EXPECT_EQ(object["standard_timings"], json(Lines{"1920 x 1080 at 60 Hz"}));
    EXPECT_EQ(object["established_timings"],
              json(Lines{"640 x 350 at 85 Hz", "720 x 400 at 85 Hz"}));
}

TEST(EdidWords, Formula_of_timings_depends_on_version_and_feature_bit) {
    struct Row {
        int formula, features;
        const char *before14;
        const char *from14;
    };
    for (const Row &row :
         {Row{0, 0x03, ", default GTF", ", default GTF"}, Row{0, 0x02, "", ""},
          Row{1, 0x02, "", ", limits only"}, Row{2, 0x02, ", second GTF", ", second GTF"},
          Row{4, 0x02, "", ", CVT 1.1"}, Row{3, 0x02, "", ""}, Row{5, 0x02, "", ""}}) {
        for (const int minor : {3, 4}) {
            edid::Block block = edid::Base();
            block[19] = static_cast<std::uint8_t>(minor);
            block[24] = static_cast<std::uint8_t>(row.features);
            edid::PutRange(block, 90);
            block[100] = static_cast<std::uint8_t>(row.formula);
            block[101] = 0x11;
            block[102] = 0;
            const auto range = ispctl::edid::RangeLimitsOf(block);
            ASSERT_TRUE(range);
            EXPECT_EQ(ispctl::edid::DescribeRangeLimits(*range),
                      std::string("48 to 75 Hz, 30 to 83 kHz, at most 170 MHz") +
                          (minor == 4 ? row.from14 : row.before14));
        }
    }
}

TEST(EdidWords, Link_rates_have_names) {
    constexpr const char *kRates[] = {"FRL 3 lanes of 3 Gbit/s",
                                      "FRL 3 lanes of 6 Gbit/s",
                                      "FRL 4 lanes of 6 Gbit/s",
                                      "FRL 4 lanes of 8 Gbit/s",
                                      "FRL 4 lanes of 10 Gbit/s",
                                      "FRL 4 lanes of 12 Gbit/s",
                                      "FRL rate 7"};
    for (int rate = 1; rate <= 7; ++rate) {
        EXPECT_EQ(
            DataBlockOf(Octets({0x67, 0xD8, 0x5D, 0xC4, 0x01, 0x00, 0x00, rate << 4}))["facts"],
            json(Lines{kRates[rate - 1]}));
    }
}

TEST(EdidWords, Extension_blocks_have_names) {
    struct Row {
        int tag;
        const char *kind;
    };
    for (const Row &row : {
             Row{0x01, "LCD timings"},
             Row{0x10, "video timing block (VTB)"},
             Row{0x20, "EDID 2.0"},
             Row{0x30, "colour information"},
             Row{0x40, "display information (DI)"},
             Row{0x50, "localized strings (LS)"},
             Row{0x60, "microdisplay interface (MI)"},
             Row{0x70, "DisplayID"},
             Row{0xA7, "display transfer characteristics (DTCDB), 0xA7"},
             Row{0xAF, "display transfer characteristics (DTCDB), 0xAF"},
             Row{0xBF, "display transfer characteristics (DTCDB), 0xBF"},
             Row{0xF0, "block map"},
             Row{0xFF, "manufacturer's own"},
             Row{0x71, "tag 0x71"},
         }) {
        edid::Block block{};
        block[0] = static_cast<std::uint8_t>(row.tag);
        edid::Close(block);
        EXPECT_EQ(JsonOf(edid::Bytes(edid::Base(1)) + edid::Bytes(block))["blocks"][1]["kind"],
                  row.kind);
    }
}

TEST(EdidWords, CTA_head_lists_features_from_revision_2) {
    edid::Block block = edid::CtaWith("", 0);
    block[3] = 0xF2;
    edid::Close(block);
    const std::string base = edid::Bytes(edid::Base(1));
    EXPECT_EQ(JsonOf(base + edid::Bytes(block))["cta"][0]["facts"],
              json(Lines{"revision 3", "underscans IT video", "basic audio", "YCbCr 4:4:4",
                         "YCbCr 4:2:2", "2 native timings"}));
    block[1] = 1;
    edid::Close(block);
    EXPECT_EQ(JsonOf(base + edid::Bytes(block))["cta"][0]["facts"], json(Lines{"revision 1"}));
}

} // namespace
