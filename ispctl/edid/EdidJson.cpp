#include "edid/EdidJson.h"

#include "JsonText.h"
#include "edid/BaseFacts.h"
#include "edid/Descriptors.h"
#include "edid/EdidBlocks.h"
#include "edid/RangeLimits.h"
#include "edid/StandardTimings.h"
#include "edid/Timings.h"
#include "edid/cta/DataBlockText.h"

namespace ispctl::edid {
namespace {

template <typename T> Json OrNull(const std::optional<T> &value) {
    return value ? Json(*value) : Json(nullptr);
}

Json FindingsJson(const Findings &findings) {
    Json array = Json::array();
    for (const Finding &finding : findings) {
        Json object{{"name", finding.Name()},
                    {"block", OrNull(finding.block)},
                    {"message", JsonString(finding.message)}};
        if (finding.line != 0) {
            object["line"] = finding.line;
            object["column"] = finding.column;
        }
        array.push_back(std::move(object));
    }
    return array;
}

Json TimingJson(const Timing &timing) {
    return {{"width", timing.width},
            {"height", timing.Height()},
            {"interlaced", timing.interlaced},
            {"refresh_hz", OrNull(timing.RefreshHz())},
            {"pixel_clock_mhz", timing.ClockMhz()},
            {"preferred", timing.preferred},
            {"block", timing.block}};
}

Json TimingsJson(View edid) {
    Json array = Json::array();
    for (const Timing &timing : TimingsOf(edid)) {
        array.push_back(TimingJson(timing));
    }
    return array;
}

Json RangeJson(View edid) {
    const auto range = RangeLimitsOf(edid);
    if (!range) {
        return nullptr;
    }
    return {{"vertical_min_hz", range->verticalMinHz},
            {"vertical_max_hz", range->verticalMaxHz},
            {"horizontal_min_khz", range->horizontalMinKhz},
            {"horizontal_max_khz", range->horizontalMaxKhz},
            {"max_pixel_clock_mhz", OrNull(range->maxPixelClockMhz)}};
}

Json BlocksJson(View edid) {
    Json array = Json::array();
    for (const Block &block : BlocksOf(edid)) {
        array.push_back({{"tag", block.tag},
                         {"kind", block.kind},
                         {"checksum", block.checksum},
                         {"expected", block.expected}});
    }
    return array;
}

Json CtaJson(View edid) {
    Json array = Json::array();
    for (std::size_t number = 1; number < WholeBlocks(edid); ++number) {
        const View block = BlockOf(edid, number);
        if (block[0] != kCtaTag) {
            continue;
        }
        Json dataBlocks = Json::array();
        for (const DataBlockText &text : DescribeDataBlocks(block)) {
            dataBlocks.push_back({{"kind", text.kind}, {"facts", text.facts}});
        }
        array.push_back({{"block", number},
                         {"facts", DescribeCtaHead(block)},
                         {"data_blocks", std::move(dataBlocks)}});
    }
    return array;
}

void AddIdentification(View edid, Json &object) {
    object["manufacturer"] = ManufacturerOf(edid);
    object["product"] = Word(edid, 10);
    object["serial"] = OrNull(SerialOf(edid));
    const MadeIn made = MadeInOf(edid);
    const auto add = [&](const char *key, const std::optional<int> &value) {
        if (value) {
            object[key] = *value;
        }
    };
    add("week", made.week);
    add("year", made.year);
    add("model_year", made.modelYear);
    object["version"] = VersionOf(edid);
    const auto texts = TextsOf(edid);
    const std::string name = JoinTexts(texts, "name");
    object["name"] = name.empty() ? Json(nullptr) : Json(name);
    object["texts"] = Json::array();
    for (const EdidText &text : texts) {
        object["texts"].push_back({{"kind", text.kind}, {"value", text.value}});
    }
}

void AddFacts(View edid, Json &object) {
    AddIdentification(edid, object);
    object["timings"] = TimingsJson(edid);
    object["range"] = RangeJson(edid);
    object["extensions_declared"] = DeclaredExtensions(edid);
    object["blocks"] = BlocksJson(edid);
    Json details = Json::object();
    for (const Fact &fact : BaseFactsOf(edid)) {
        details[fact.key] = fact.text;
    }
    object["details"] = std::move(details);
    object["established_timings"] = EstablishedTimingsOf(edid);
    object["standard_timings"] = StandardTimingsOf(edid);
    object["cta"] = CtaJson(edid);
}

/// What is not known of something that is not an EDID.
void AddNoFacts(View edid, Json &object) {
    for (const char *key : {"manufacturer", "product", "serial", "version", "name"}) {
        object[key] = nullptr;
    }
    object["texts"] = Json::array();
    object["timings"] = Json::array();
    object["range"] = nullptr;
    object["extensions_declared"] = nullptr;
    object["blocks"] = BlocksJson(edid);
}

std::string HexOf(View bytes) {
    return fmt::format("{:02x}", fmt::join(bytes, ""));
}

Json ReportJson(const Report &report) {
    Json object;
    SetText(object, "file", report.file);
    if (report.IsReadable()) {
        const View edid = report.input.bytes;
        object["form"] = WordOf(report.input.form);
        if (report.HasFacts()) {
            AddFacts(edid, object);
        } else {
            AddNoFacts(edid, object);
        }
    }
    object["problems"] = FindingsJson(report.problems);
    object["remarks"] = FindingsJson(report.remarks);
    object["hex"] = HexOf(report.input.bytes);
    return object;
}

} // namespace

std::string WriteJson(const std::vector<Report> &reports) {
    Json document = Json::array();
    for (const Report &report : reports) {
        document.push_back(ReportJson(report));
    }
    return JsonDocument(document, Charset::Ascii);
}

} // namespace ispctl::edid
