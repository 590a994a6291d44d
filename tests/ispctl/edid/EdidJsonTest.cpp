#include "edid/EdidJson.h"

#include <functional>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "edid/EdidMaker.h"
#include "edid/RangeLimits.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::size_t kSecondDescriptor = 72;
constexpr std::size_t kThirdDescriptor = 90;

json JsonOf(const std::string &bytes) {
    using namespace ispctl::edid;
    return json::parse(WriteJson({MakeReport("e", ReadInput(bytes, FormOption::Binary))}))[0];
}

/// The JSON of a base block after a change.
json JsonOfBase(const std::function<void(edid::Block &)> &change) {
    edid::Block block = edid::Base();
    change(block);
    edid::Close(block);
    return JsonOf(edid::Bytes(block));
}

/// The JSON of a base block that declares the blocks that follow it.
json JsonOfBlocks(const std::vector<edid::Block> &extensions, std::uint8_t declared) {
    std::string bytes = edid::Bytes(edid::Base(declared));
    for (const edid::Block &block : extensions) {
        bytes += edid::Bytes(block);
    }
    return JsonOf(bytes);
}

std::vector<std::string> NamesOf(const json &findings) {
    std::vector<std::string> names;
    for (const json &finding : findings) {
        names.push_back(finding["name"]);
    }
    return names;
}

TEST(EdidJson, Base_block_gives_every_key) {
    const json object = JsonOf(edid::Bytes(edid::Base()));
    EXPECT_EQ(object["file"], "e");
    EXPECT_EQ(object["form"], "binary");
    EXPECT_EQ(object["manufacturer"], "TST");
    EXPECT_EQ(object["product"], 0x1234);
    EXPECT_EQ(object["serial"], 0x12345678);
    EXPECT_EQ(object["version"], "1.4");
    EXPECT_EQ(object["name"], "Test panel");
    EXPECT_EQ(object["texts"], json::parse(R"([{"kind": "name", "value": "Test panel"},
                                               {"kind": "serial", "value": "0001"}])"));
    EXPECT_EQ(object["range"], nullptr);
    EXPECT_EQ(object["extensions_declared"], 0);
    EXPECT_EQ(object["blocks"].size(), 1U);
    EXPECT_EQ(object["problems"], json::array());
    EXPECT_EQ(object["remarks"], json::array());
    EXPECT_EQ(object["hex"].get<std::string>().substr(0, 20), "00ffffffffffff005274");
    EXPECT_EQ(object["hex"].get<std::string>().size(), 256U);
}

TEST(EdidJson, Serial_number_0_is_null) {
    EXPECT_EQ(JsonOfBase([](auto &b) { b[12] = b[13] = b[14] = b[15] = 0; })["serial"], nullptr);
    EXPECT_EQ(JsonOfBase([](auto &b) { b[12] = b[13] = b[14] = 0, b[15] = 0xFF; })["serial"],
              0xFF000000U);
}

TEST(EdidJson, Week_decides_between_year_and_model_year) {
    struct Row {
        std::uint8_t week;
        bool hasWeek, hasYear, hasModelYear;
    };
    for (const Row &row : {Row{0, false, true, false}, Row{1, true, true, false},
                           Row{54, true, true, false}, Row{55, false, true, false},
                           Row{254, false, true, false}, Row{255, false, false, true}}) {
        SCOPED_TRACE(int{row.week});
        const json object = JsonOfBase([&](auto &b) { b[16] = row.week; });
        EXPECT_EQ(object.value("week", -1), row.hasWeek ? row.week : -1);
        EXPECT_EQ(object.value("year", -1), row.hasYear ? 2021 : -1);
        EXPECT_EQ(object.value("model_year", -1), row.hasModelYear ? 2021 : -1);
    }
}

TEST(EdidJson, Text_ends_at_newline_or_zero_byte_and_loses_spaces) {
    struct Row {
        std::string bytes, value;
    };
    for (const Row &row : {Row{"Panel\n       ", "Panel"},
                           Row{std::string("Panel\0xx", 8), "Panel"}, Row{"Panel  \n", "Panel"},
                           Row{"  Panel", "  Panel"}, Row{"1234567890123", "1234567890123"},
                           Row{"\n", ""}, Row{"            \n", ""}, Row{"a\xE9\n", "a\xC3\xA9"}}) {
        SCOPED_TRACE(row.bytes);
        const json object = JsonOfBase([&](auto &b) {
            for (std::size_t i = 0; i < 13; ++i) {
                b[kSecondDescriptor + 5 + i] =
                    static_cast<std::uint8_t>(i < row.bytes.size() ? row.bytes[i] : '\0');
            }
        });
        EXPECT_EQ(object["texts"][0]["value"], row.value);
        EXPECT_EQ(object["name"], row.value.empty() ? json(nullptr) : json(row.value));
    }
}

TEST(EdidJson, Several_names_are_joined_in_order) {
    const json object = JsonOfBase([](auto &b) {
        edid::PutText(b, kThirdDescriptor, 0xFC, "");
        edid::PutText(b, 108, 0xFC, "wide");
    });
    EXPECT_EQ(object["name"], "Test panel wide");
    EXPECT_EQ(object["texts"].size(), 3U);
}

TEST(EdidJson, Panel_with_only_a_text_has_no_name) {
    const json object =
        JsonOfBase([](auto &b) { edid::PutText(b, kSecondDescriptor, 0xFE, "LP156WF6"); });
    EXPECT_EQ(object["name"], nullptr);
    EXPECT_EQ(object["texts"][0], json::parse(R"({"kind": "text", "value": "LP156WF6"})"));
}

TEST(EdidJson, Progressive_timing_is_read) {
    const json timing = JsonOf(edid::Bytes(edid::Base()))["timings"][0];
    EXPECT_EQ(timing["width"], 1920);
    EXPECT_EQ(timing["height"], 1080);
    EXPECT_EQ(timing["interlaced"], false);
    EXPECT_NEAR(timing["refresh_hz"], 60.0, 1e-9);
    EXPECT_EQ(timing["pixel_clock_mhz"], 148.5);
    EXPECT_EQ(timing["preferred"], true);
}

TEST(EdidJson, Interlaced_timing_has_lines_of_frame_and_rate_of_fields) {
    const json timing = JsonOfBase([](auto &b) { edid::PutInterlacedTiming(b, 54); })["timings"][0];
    EXPECT_EQ(timing["width"], 1920);
    EXPECT_EQ(timing["height"], 1080);
    EXPECT_EQ(timing["interlaced"], true);
    EXPECT_NEAR(timing["refresh_hz"], 60.0, 1e-9);
    EXPECT_EQ(timing["pixel_clock_mhz"], 74.25);
}

TEST(EdidJson, Timing_without_totals_has_no_rate) {
    const json object = JsonOfBase([](auto &b) { b[56] = b[57] = b[58] = 0; });
    EXPECT_EQ(object["timings"][0]["refresh_hz"], nullptr);
}

TEST(EdidJson, First_timing_is_preferred_from_1_4_or_with_bit) {
    struct Row {
        std::uint8_t revision, features;
        bool preferred;
    };
    for (const Row &row :
         {Row{3, 0x00, false}, Row{3, 0x02, true}, Row{4, 0x00, true}, Row{0, 0x02, true}}) {
        const json object = JsonOfBase([&](auto &b) {
            b[19] = row.revision;
            b[24] = row.features;
            edid::PutTiming(b, kSecondDescriptor);
        });
        EXPECT_EQ(object["timings"][0]["preferred"], row.preferred) << int{row.revision};
        EXPECT_EQ(object["timings"][1]["preferred"], false);
    }
}

TEST(EdidJson, Timing_after_first_descriptor_is_never_preferred) {
    const json object = JsonOfBase([](auto &b) {
        edid::PutText(b, 54, 0xFC, "x");
        b[54] = b[55] = 0;
        edid::PutTiming(b, kSecondDescriptor);
    });
    EXPECT_EQ(object["timings"].size(), 1U);
    EXPECT_EQ(object["timings"][0]["preferred"], false);
}

TEST(EdidJson, Timings_of_CTA_blocks_follow_in_file_order) {
    edid::Block interlaced = edid::CtaWith("", 1);
    edid::PutInterlacedTiming(interlaced, 4);
    edid::Close(interlaced);
    edid::Block other{};
    other[0] = 0x70;
    edid::Close(other);
    const json timings = JsonOfBlocks({edid::CtaWith("", 6), other, interlaced}, 3)["timings"];
    ASSERT_EQ(timings.size(), 8U); // six of 18 bytes fit between 4 and 127
    EXPECT_EQ(timings[6]["interlaced"], false);
    EXPECT_EQ(timings[7]["interlaced"], true);
}

TEST(EdidJson, CTA_offset_and_empty_slot_bound_timings) {
    struct Row {
        std::uint8_t offset;
        std::size_t count;
    };
    for (const Row &row :
         {Row{0, 0}, Row{3, 0}, Row{4, 1}, Row{109, 1}, Row{110, 0}, Row{255, 0}}) {
        edid::Block cta = edid::CtaWith("");
        cta[2] = row.offset;
        if (row.offset >= 4 && row.offset <= 110) {
            edid::PutTiming(cta, row.offset);
        }
        edid::Close(cta);
        EXPECT_EQ(JsonOfBlocks({cta}, 1)["timings"].size(), 1 + row.count) << int{row.offset};
    }
    edid::Block gap = edid::CtaWith("", 3);
    gap[4 + 18] = gap[4 + 19] = 0;
    EXPECT_EQ(JsonOfBlocks({gap}, 1)["timings"].size(), 2U);
}

TEST(EdidJson, Range_limits_are_read) {
    const json range = JsonOfBase([](auto &b) { edid::PutRange(b, kThirdDescriptor); })["range"];
    EXPECT_EQ(range, json::parse(R"({"vertical_min_hz": 48, "vertical_max_hz": 75,
        "horizontal_min_khz": 30, "horizontal_max_khz": 83, "max_pixel_clock_mhz": 170.0})"));
}

TEST(EdidJson, Range_offsets_count_from_1_4) {
    struct Row {
        std::uint8_t revision, flags;
        int verticalMin, verticalMax, horizontalMin, horizontalMax;
    };
    for (const Row &row : {Row{4, 0x0, 48, 75, 30, 83}, Row{4, 0x2, 48, 330, 30, 83},
                           Row{4, 0x3, 303, 330, 30, 83}, Row{4, 0x8, 48, 75, 30, 338},
                           Row{4, 0xC, 48, 75, 285, 338}, Row{3, 0xF, 48, 75, 30, 83}}) {
        const json range = JsonOfBase([&](auto &b) {
            b[19] = row.revision;
            edid::PutRange(b, kThirdDescriptor);
            b[kThirdDescriptor + 4] = row.flags;
        })["range"];
        SCOPED_TRACE(testing::Message() << int{row.revision} << " " << int{row.flags});
        EXPECT_EQ(range["vertical_min_hz"], row.verticalMin);
        EXPECT_EQ(range["vertical_max_hz"], row.verticalMax);
        EXPECT_EQ(range["horizontal_min_khz"], row.horizontalMin);
        EXPECT_EQ(range["horizontal_max_khz"], row.horizontalMax);
    }
}

TEST(EdidJson, CVT_step_is_subtracted_from_1_4) {
    struct Row {
        std::uint8_t revision, clock, formula, step;
        json expected;
    };
    for (const Row &row :
         {Row{4, 17, 4, 0xFC, 170 - 15.75}, Row{4, 17, 4, 0x04, 169.75}, Row{4, 17, 4, 0x03, 170.0},
          Row{4, 17, 1, 0xFC, 170.0}, Row{3, 17, 4, 0xFC, 170.0}, Row{4, 0, 4, 0xFC, nullptr}}) {
        const json range = JsonOfBase([&](auto &b) {
            b[19] = row.revision;
            edid::PutRange(b, kThirdDescriptor);
            b[kThirdDescriptor + 9] = row.clock;
            b[kThirdDescriptor + 10] = row.formula;
            b[kThirdDescriptor + 12] = row.step;
        })["range"];
        EXPECT_EQ(range["max_pixel_clock_mhz"], row.expected);
    }
}

// GTF is supported only if the features say so, in 1.3 and in 1.4.
TEST(EdidJson, Default_GTF_is_claimed_only_with_its_feature) {
    struct Row {
        std::uint8_t revision, features;
        const char *formula;
    };
    for (const Row &row : {Row{3, 0x02, ""}, Row{3, 0x03, "default GTF"}, Row{4, 0x02, ""},
                           Row{4, 0x03, "default GTF"}}) {
        edid::Block block = edid::Base();
        block[19] = row.revision;
        block[24] = row.features;
        edid::PutRange(block, kThirdDescriptor);
        block[kThirdDescriptor + 10] = 0;
        const auto range = ispctl::edid::RangeLimitsOf(block);
        ASSERT_TRUE(range);
        EXPECT_EQ(range->formula, row.formula) << int{row.revision} << " " << int{row.features};
    }
}

TEST(EdidJson, Continuous_frequency_requires_range_limits_from_1_4) {
    const json missing = JsonOfBase([](auto &b) { b[24] |= 1; })["remarks"];
    ASSERT_THAT(NamesOf(missing), ElementsAre("missing-range"));
    EXPECT_EQ(missing[0]["message"],
              "version 1.4 requires range limits of a display with continuous frequency");
    const json there = JsonOfBase([](auto &b) {
        b[24] |= 1;
        edid::PutRange(b, kThirdDescriptor);
    })["remarks"];
    EXPECT_EQ(there, json::array());
}

TEST(EdidJson, Block_count_override_replaces_byte_126) {
    const edid::Block cta = edid::CtaWith("\xE2\x78\x03");
    const std::vector<edid::Block> three{cta, edid::Cta(), edid::Cta()};
    EXPECT_EQ(JsonOfBlocks(three, 1)["extensions_declared"], 3);
    EXPECT_EQ(JsonOfBlocks(three, 1)["problems"], json::array());
    // An incomplete dump of the same display.
    const json problems = JsonOfBlocks({cta}, 1)["problems"];
    ASSERT_THAT(NamesOf(problems), ElementsAre("extension-count"));
    EXPECT_EQ(problems[0]["block"], 0); // the display's count, whichever block declares it
    EXPECT_EQ(JsonOfBlocks({edid::Cta()}, 2)["problems"][0]["block"], 0);
    // Without an extension the override does not count, and neither does one in a later block.
    EXPECT_EQ(JsonOfBlocks(three, 0)["extensions_declared"], 0);
    EXPECT_EQ(JsonOfBlocks({edid::Cta(), cta}, 2)["extensions_declared"], 2);
    EXPECT_EQ(JsonOfBlocks({edid::CtaWith("\xE1\x78")}, 1)["extensions_declared"], 1);
    EXPECT_EQ(JsonOfBlocks({edid::CtaWith("\x41\x90\xE2\x78\x03")}, 1)["extensions_declared"], 3);
}

TEST(EdidJson, Blocks_show_tag_kind_and_checksums) {
    edid::Block displayId{};
    displayId[0] = 0x70;
    edid::Close(displayId);
    const std::uint8_t expected = displayId[127];
    displayId[127] = static_cast<std::uint8_t>(expected + 1);
    const json object = JsonOfBlocks({edid::Cta(), displayId}, 2);
    ASSERT_EQ(object["blocks"].size(), 3U);
    EXPECT_EQ(object["blocks"][0]["tag"], 0);
    EXPECT_EQ(object["blocks"][1]["tag"], 2);
    EXPECT_EQ(object["blocks"][1]["kind"], "CTA-861");
    EXPECT_EQ(object["blocks"][2]["kind"], "DisplayID");
    EXPECT_EQ(object["blocks"][2]["checksum"], expected + 1);
    EXPECT_EQ(object["blocks"][2]["expected"], expected);
    ASSERT_THAT(NamesOf(object["problems"]), ElementsAre("checksum"));
    EXPECT_EQ(object["problems"][0]["block"], 2);
}

TEST(EdidJson, Problems_do_not_hide_facts) {
    const std::string base = edid::Bytes(edid::Base());
    struct Row {
        std::string bytes;
        std::vector<std::string> problems;
        bool hasFacts;
    };
    for (const Row &row : {Row{base + "x", {"size"}, true},
                           Row{base + edid::Bytes(edid::Cta()), {"extension-count"}, true},
                           Row{base.substr(0, 127), {"size"}, false},
                           Row{std::string(128, 'y'), {"header", "checksum"}, false},
                           Row{"\x01" + base.substr(1), {"header", "checksum"}, true}}) {
        const json object = JsonOf(row.bytes);
        EXPECT_EQ(NamesOf(object["problems"]), row.problems);
        EXPECT_EQ(object["manufacturer"], row.hasFacts ? json("TST") : json(nullptr));
        EXPECT_EQ(object["hex"].get<std::string>().size(), 2 * row.bytes.size());
    }
}

TEST(EdidJson, Remarks_are_not_problems) {
    struct Row {
        const char *name;
        std::function<void(edid::Block &)> change;
    };
    for (const Row &row : {
             Row{"week", [](auto &b) { b[16] = 55; }},
             Row{"version", [](auto &b) { b[19] = 5; }},
             Row{"manufacturer", [](auto &b) { b[8] = 0; }},
             Row{"first-descriptor", [](auto &b) { b[54] = b[55] = 0; }},
             Row{"missing-name", [](auto &b) { b[19] = 3, b[75] = 0x10; }},
             Row{"missing-range", [](auto &b) { b[19] = 3; }},
             Row{"not-preferred", [](auto &b) { b[19] = 3, b[24] = 0; }},
             Row{"text-end", [](auto &b) { b[87] = 0; }},
             Row{"text-padding", [](auto &b) { b[89] = 'x'; }},
             Row{"text-character", [](auto &b) { b[77] = 0x80; }},
             Row{"standard-timing", [](auto &b) { b[38] = b[39] = 0; }},
             Row{"empty-timing", [](auto &b) { b[56] = 0, b[58] = 1; }},
             Row{"sync-outside-blanking", [](auto &b) { b[62] = 0xFF; }},
             Row{"range-order", [](auto &b) { edid::PutRange(b, 90), b[95] = 76; }},
             Row{"outside-range", [](auto &b) { edid::PutRange(b, 90), b[99] = 14; }},
         }) {
        const json object = JsonOfBase(row.change);
        EXPECT_THAT(NamesOf(object["remarks"]), testing::Contains(row.name));
        EXPECT_EQ(object["problems"], json::array()) << row.name;
    }
}

TEST(EdidJson, Blocks_after_declared_ones_are_explained) {
    edid::Block ones;
    ones.fill(0xFF);
    for (const edid::Block &rest : {edid::Block{}, ones, edid::Base()}) {
        EXPECT_THAT(NamesOf(JsonOfBlocks({rest}, 0)["remarks"]), ElementsAre("read-too-far"));
    }
    EXPECT_EQ(JsonOfBlocks({edid::Cta()}, 0)["remarks"], json::array());
}

TEST(EdidJson, Data_blocks_are_described) {
    struct Row {
        std::string block;
        const char *kind;
        std::vector<std::string> facts;
    };
    for (const Row &row : {
             Row{"\x42\x90\x5F",
                 "video",
                 {"VIC 16, 1920 x 1080 at 60 Hz, 16:9, native",
                  "VIC 95, 3840 x 2160 at 30 Hz, 16:9"}},
             Row{"\x43\xC0\xC1\xDB",
                 "video",
                 {"VIC 64, 1920 x 1080 at 100 Hz, 16:9, native",
                  "VIC 193, 5120 x 2160 at 120 Hz, 64:27",
                  "VIC 219, 4096 x 2160 at 120 Hz, 256:135"}},
             Row{"\x41\x05", "video", {"VIC 5, 1920 x 1080 interlaced at 60 Hz, 16:9"}},
             Row{"\x23\x09\x07\x07", "audio", {"LPCM, 2 channels, 32/44.1/48 kHz, 16/20/24 bits"}},
             Row{"\x23\x15\x04\x50", "audio", {"AC-3, 6 channels, 48 kHz, at most 640 kbit/s"}},
             Row{std::string("\x83\x03\x00\x00", 4),
                 "speaker allocation",
                 {"front left/right", "low frequency"}},
             Row{std::string("\x67\x03\x0C\x00\x10\x00\xB8\x3C", 8),
                 "vendor, HDMI",
                 {"physical address 1.0.0.0", "ACP and ISRC packets", "36 bits per pixel",
                  "30 bits per pixel", "deep colour in YCbCr", "TMDS clock at most 300 MHz"}},
             Row{std::string("\x67\xD8\x5D\xC4\x01\x78\x80\x60", 8),
                 "vendor, HDMI Forum",
                 {"TMDS character rate at most 600 MHz", "FRL 4 lanes of 12 Gbit/s", "SCDC"}},
             Row{std::string("\xE8\x79\x00\x00\x01\x78\x80\x60\x02", 9),
                 "HDMI Forum sink capabilities",
                 {"TMDS character rate at most 600 MHz", "FRL 4 lanes of 12 Gbit/s", "SCDC",
                  "auto low-latency mode"}},
             Row{"\x63\x01\x02\x03", "vendor, OUI 03-02-01", {}},
             Row{"\xE3\x05\xC0\x80", "colorimetry", {"BT.2020YCC", "BT.2020RGB", "DCI-P3"}},
             Row{"\xE3\x06\x05\x01",
                 "HDR static metadata",
                 {"SDR gamma", "PQ (SMPTE ST 2084)", "static metadata 1"}},
             Row{std::string("\xE2\x00\x4A", 3),
                 "video capability",
                 {"RGB quantization selectable", "CE video always underscanned",
                  "IT video always underscanned"}},
             Row{"\xE2\x0E\x61", "YCbCr 4:2:0 video", {"VIC 97, 3840 x 2160 at 60 Hz, 16:9"}},
             Row{"\xE2\x78\x01", "HDMI Forum block-count override", {"1 extension block"}},
             Row{"\xE1\x6E", "extended tag 0x6E", {}},
         }) {
        SCOPED_TRACE(row.kind);
        const json block = JsonOfBlocks({edid::CtaWith(row.block)}, 1)["cta"][0]["data_blocks"][0];
        EXPECT_EQ(block["kind"], row.kind);
        EXPECT_EQ(block["facts"].get<std::vector<std::string>>(), row.facts);
    }
}

TEST(EdidJson, Data_block_beyond_timings_is_remarked) {
    edid::Block cta = edid::CtaWith("\x5F");
    EXPECT_THAT(NamesOf(JsonOfBlocks({cta}, 1)["remarks"]), ElementsAre("data-block"));
    cta[2] = 3;
    edid::Close(cta);
    EXPECT_THAT(NamesOf(JsonOfBlocks({cta}, 1)["remarks"]), ElementsAre("cta-offset"));
}

TEST(EdidJson, Base_facts_are_described) {
    const json object = JsonOf(edid::Bytes(edid::Base()));
    EXPECT_EQ(object["details"]["input"], "digital, 8 bits per colour, DisplayPort");
    EXPECT_EQ(object["details"]["image_size"], "52 cm x 29 cm");
    EXPECT_EQ(object["details"]["gamma"], "2.20");
    const json more = JsonOfBase([](auto &b) {
        b[35] = 0x21;
        b[38] = 0xD1; // 1920 wide
        b[39] = 0xC0; // 16:9 at 60 Hz
    });
    EXPECT_EQ(more["established_timings"],
              json::parse(R"(["640 x 480 at 60 Hz", "800 x 600 at 60 Hz"])"));
    EXPECT_EQ(more["standard_timings"], json::parse(R"(["1920 x 1080 at 60 Hz"])"));
}

} // namespace
