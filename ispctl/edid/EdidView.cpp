#include "edid/EdidView.h"

#include "HexDump.h"
#include "VisibleText.h"
#include "edid/BaseFacts.h"
#include "edid/Descriptors.h"
#include "edid/EdidBlocks.h"
#include "edid/RangeLimits.h"
#include "edid/StandardTimings.h"
#include "edid/Timings.h"
#include "edid/cta/DataBlockText.h"

namespace ispctl::edid {
namespace {

constexpr std::size_t kBytesPerLine = 16;

/// Labels and values in two columns.
class Columns {
  public:
    void Add(std::string_view label, std::string_view value) {
        m_text += fmt::format("{:<17} {}\n", label, value);
    }
    /// A label for the first of several values.
    void AddAll(std::string_view label, const std::vector<std::string> &values) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            Add(i == 0 ? label : "", values[i]);
        }
    }

    const std::string &Text() const {
        return m_text;
    }

  private:
    std::string m_text;
};

/// A string of a display must not act on the terminal.
std::string Shown(const std::string &text) {
    return Visible(text, Layout::OneLine, Charset::Utf8);
}

std::string MadeText(View edid) {
    const MadeIn made = MadeInOf(edid);
    if (made.modelYear) {
        return fmt::format("model year {}", *made.modelYear);
    }
    return made.week ? fmt::format("week {} of {}", *made.week, *made.year)
                     : fmt::format("year {}", *made.year);
}

void AddIdentification(View edid, Columns &columns) {
    columns.Add("manufacturer", ManufacturerOf(edid));
    columns.Add("product", fmt::format("0x{:04X}", Word(edid, 10)));
    const auto serial = SerialOf(edid);
    columns.Add("serial number", serial ? fmt::format("0x{:08X}", *serial) : "none");
    columns.Add("made", MadeText(edid));
    columns.Add("EDID version", VersionOf(edid));
    const auto timings = TimingsOf(edid);
    const bool hasPreferred = !timings.empty() && timings.front().preferred;
    columns.Add("preferred timing", hasPreferred ? DescribeTiming(timings.front()) : "none");
    const auto texts = TextsOf(edid);
    const std::string name = JoinTexts(texts, "name");
    columns.Add("name", name.empty() ? "none" : Shown(name));
    for (const EdidText &text : texts) {
        if (text.kind != std::string_view("name") && !text.value.empty()) {
            columns.Add(text.kind == std::string_view("serial") ? "serial string" : "text",
                        Shown(text.value));
        }
    }
}

void AddTimings(View edid, Columns &columns) {
    for (const Timing &timing : TimingsOf(edid)) {
        if (!timing.preferred) {
            columns.Add("timing", DescribeTiming(timing));
        }
    }
    columns.AddAll("standard timing", StandardTimingsOf(edid));
    columns.AddAll("established", EstablishedTimingsOf(edid));
    if (const auto range = RangeLimitsOf(edid)) {
        columns.Add("range limits", DescribeRangeLimits(*range));
    }
}

void AddCta(View block, Columns &columns) {
    columns.AddAll("    head", DescribeCtaHead(block));
    for (const DataBlockText &text : DescribeDataBlocks(block)) {
        columns.Add("    data block", text.kind);
        for (const std::string &fact : text.facts) {
            columns.Add("", "  " + fact);
        }
    }
}

void AddBlocks(View edid, Columns &columns) {
    columns.Add("extension blocks", fmt::format("{}", DeclaredExtensions(edid)));
    const auto blocks = BlocksOf(edid);
    for (std::size_t number = 1; number < blocks.size(); ++number) {
        columns.Add(fmt::format("  block {}", number), blocks[number].kind);
        if (blocks[number].tag == kCtaTag) {
            AddCta(BlockOf(edid, number), columns);
        }
    }
}

} // namespace

std::string WriteView(const Report &report) {
    const View edid = report.input.bytes;
    Columns columns;
    AddIdentification(edid, columns);
    for (const Fact &fact : BaseFactsOf(edid)) {
        columns.Add(fact.label, fact.text);
    }
    AddTimings(edid, columns);
    AddBlocks(edid, columns);
    columns.Add("input form",
                fmt::format("{}: {}", WordOf(report.input.form), MeaningOf(report.input.form)));
    for (const Finding &remark : report.remarks) {
        columns.Add("remark", remark.Text());
    }
    return columns.Text() + "\n" + HexDump(edid);
}

std::string WriteByteList(View edid) {
    std::string text;
    for (std::size_t i = 0; i < edid.size(); ++i) {
        if (i % kBlockBytes == 0) {
            text += fmt::format("// block {}\n", i / kBlockBytes);
        }
        text += fmt::format("0x{:02X},{}", edid[i], (i + 1) % kBytesPerLine == 0 ? "\n" : " ");
    }
    return text;
}

} // namespace ispctl::edid
