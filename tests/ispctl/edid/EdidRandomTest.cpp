#include <algorithm>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <random>

#include "edid/EdidJson.h"
#include "edid/EdidMaker.h"
#include "edid/EdidView.h"

namespace {

using namespace ispctl::edid;

// The same inputs in every run, so that a failure can be repeated.
constexpr unsigned int kSeed = 20240601;
constexpr int kBinaries = 400;
constexpr int kTexts = 400;

class Mutator {
  public:
    std::size_t Below(std::size_t limit) {
        return limit == 0 ? 0 : m_random() % limit;
    }

    /// Bytes that are likely to be lengths, offsets and tags, at random places.
    std::string Mutated(std::string bytes) {
        for (std::size_t count = Below(8); count > 0 && !bytes.empty(); --count) {
            bytes[Below(bytes.size())] = static_cast<char>(m_random());
        }
        if (Below(4) == 0) {
            bytes.resize(Below(bytes.size() + 1));
        }
        return bytes;
    }

    std::string MutatedText(std::string text) {
        constexpr std::string_view kPieces[] = {
            "0x",           "{",  "}",          "*\n",      "<00ff",   "//",
            "/*",           "\n", "00000000: ", "0000000 ", "EDID:\n", "edid-decode (hex):\n",
            "----------\n", ",",  "  ",         "|",        ":",       "\\x",
            "-1",           "377"};
        for (std::size_t count = Below(6); count > 0; --count) {
            text.insert(Below(text.size() + 1), kPieces[Below(std::size(kPieces))]);
            text.erase(Below(text.size()), Below(10));
        }
        return text;
    }

  private:
    std::mt19937 m_random{kSeed};
};

/// What holds for every input: all bytes are shown, problems decide the status, and blocks are
/// those of the bytes.
void CheckReport(const std::string &content) {
    const Report report = MakeReport("e", ReadInput(content, FormOption::Detect));
    const auto object = nlohmann::json::parse(WriteJson({report}))[0];
    EXPECT_EQ(object["hex"].get<std::string>().size(), 2 * report.input.bytes.size());
    EXPECT_EQ(object["blocks"].size(), report.input.bytes.size() / 128);
    EXPECT_EQ(object["problems"].empty(), report.Status() == 0);
    if (report.HasFacts()) {
        EXPECT_NE(WriteView(report).find("manufacturer      "), std::string::npos);
        const Input again = ReadInput(WriteByteList(report.input.bytes), FormOption::Detect);
        EXPECT_EQ(again.bytes, report.input.bytes);
    } else {
        EXPECT_FALSE(report.problems.empty());
    }
}

TEST(EdidRandom, Mutated_EDIDs_are_reported_consistently) {
    Mutator mutator;
    const std::string seeds[] = {
        ::edid::Bytes(::edid::Base()),
        ::edid::Bytes(::edid::Base(1)) + ::edid::Bytes(::edid::Cta()),
        ::edid::Bytes(::edid::Base(1)) +
            ::edid::Bytes(::edid::CtaWith("\x23\x09\x07\x07\xE3\x05\xC0\x80\x67"
                                          "\x03\x0C\x01\x10\x01\xB8\x3C\xE2\x78\x03",
                                          3))};
    for (int i = 0; i < kBinaries; ++i) {
        CheckReport(mutator.Mutated(seeds[mutator.Below(std::size(seeds))]));
    }
}

TEST(EdidRandom, Mutated_texts_are_reported_consistently) {
    Mutator mutator;
    const std::string bytes = ::edid::Bytes(::edid::Base());
    const std::string list =
        WriteByteList({reinterpret_cast<const std::uint8_t *>(bytes.data()), 128});
    std::string hex;
    std::string dump;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        char text[32];
        std::snprintf(text, sizeof text, "%02x ", static_cast<unsigned char>(bytes[i]));
        hex += text;
        dump += i % 16 == 0 ? "\n000000" + std::string(1, "01234567"[i / 16]) + "0  " : "";
        dump += text;
    }
    for (int i = 0; i < kTexts; ++i) {
        const std::string seeds[] = {list, hex, dump};
        CheckReport(mutator.MutatedText(seeds[mutator.Below(3)]));
    }
}

} // namespace
