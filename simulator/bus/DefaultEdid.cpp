#include "bus/DefaultEdid.h"

#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace virtual_scaler {
namespace {

constexpr std::size_t kBlockBytes = 128;

/// A detailed timing; lengths in pixels and lines.
struct Timing {
    std::uint32_t clock10kHz;
    std::uint32_t hActive, hBlank, hFront, hSync;
    std::uint32_t vActive, vBlank, vFront, vSync;
    std::uint32_t widthMm, heightMm;
};

constexpr Timing k1080p60{14850, 1920, 280, 88, 44, 1080, 45, 4, 5, 597, 336};
constexpr Timing k720p60{7425, 1280, 370, 110, 40, 720, 30, 5, 5, 597, 336};

/// Writes bytes consecutively into a block of 128.
class Block {
  public:
    explicit Block(std::uint8_t *bytes) : m_bytes(bytes) {}

    Block &At(std::size_t offset) {
        m_offset = offset;
        return *this;
    }
    Block &Put(std::uint32_t value) {
        m_bytes[m_offset++] = static_cast<std::uint8_t>(value);
        return *this;
    }
    Block &Put(std::initializer_list<std::uint32_t> values) {
        for (const std::uint32_t value : values) {
            Put(value);
        }
        return *this;
    }
    /// Sets the checksum, so that the sum of all 128 bytes is 0.
    void PutChecksum() {
        std::uint32_t sum = 0;
        for (std::size_t i = 0; i + 1 < kBlockBytes; ++i) {
            sum += m_bytes[i];
        }
        At(kBlockBytes - 1).Put(0U - sum);
    }

  private:
    std::uint8_t *m_bytes;
    std::size_t m_offset = 0;
};

/// Three letters of 5 bits each, A is 1.
void PutMaker(Block &block, std::string_view letters) {
    std::uint32_t packed = 0;
    for (const char letter : letters) {
        packed = packed << 5 | static_cast<std::uint32_t>(letter - 'A' + 1);
    }
    block.Put({packed >> 8, packed});
}

/// Chromaticities of red, green, blue and white in ten thousandths, kept with 10 bits.
void PutColours(Block &block, const std::array<std::uint32_t, 8> &tenThousandths) {
    std::array<std::uint32_t, 8> bits{};
    for (std::size_t i = 0; i < bits.size(); ++i) {
        bits[i] = (tenThousandths[i] * 1024 + 5000) / 10000;
    }
    const auto low = [&](std::size_t first) {
        std::uint32_t packed = 0;
        for (std::size_t i = first; i < first + 4; ++i) {
            packed = packed << 2 | (bits[i] & 3U);
        }
        return packed;
    };
    block.Put({low(0), low(4)});
    for (const std::uint32_t value : bits) {
        block.Put(value >> 2);
    }
}

void PutTiming(Block &block, const Timing &timing) {
    block.Put({timing.clock10kHz, timing.clock10kHz >> 8});
    block.Put({timing.hActive, timing.hBlank, (timing.hActive >> 8) << 4 | timing.hBlank >> 8});
    block.Put({timing.vActive, timing.vBlank, (timing.vActive >> 8) << 4 | timing.vBlank >> 8});
    block.Put({timing.hFront, timing.hSync, (timing.vFront & 15U) << 4 | (timing.vSync & 15U)});
    block.Put((timing.hFront >> 8) << 6 | (timing.hSync >> 8) << 4 | (timing.vFront >> 4) << 2 |
              timing.vSync >> 4);
    block.Put({timing.widthMm, timing.heightMm, (timing.widthMm >> 8) << 4 | timing.heightMm >> 8});
    // No borders; separate digital sync, both positive.
    block.Put({0, 0, 0x1E});
}

/// A display descriptor with a string of at most 13 characters, terminated by a newline.
void PutText(Block &block, std::uint32_t tag, std::string_view text) {
    block.Put({0, 0, 0, tag, 0});
    for (std::size_t i = 0; i < 13; ++i) {
        block.Put(i < text.size() ? static_cast<unsigned char>(text[i])
                                  : (i == text.size() ? 0x0AU : 0x20U));
    }
}

void MakeBaseBlock(std::uint8_t *bytes) {
    Block block(bytes);
    block.Put({0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00});
    PutMaker(block, "ZZZ");
    block.Put({0x01, 0x00});             // product
    block.Put({0x01, 0x00, 0x00, 0x00}); // serial number
    block.Put({1, 2024 - 1990});         // week and year of manufacture
    block.Put({1, 4});                   // EDID 1.4
    block.Put(0xA2);                     // digital, 8 bits a colour, HDMI
    block.Put({60, 34});                 // centimetres
    block.Put(220 - 100);                // gamma 2.2
    block.Put(0x2E); // active off, RGB and YCbCr 4:4:4, sRGB, native timing first
    PutColours(block, {6400, 3300, 3000, 6000, 1500, 600, 3127, 3290});
    block.Put({0x21, 0x08, 0x00});                   // 640x480, 800x600 and 1024x768 at 60 Hz
    block.Put({0xD1, 0xC0, 0x81, 0xC0, 0x81, 0x80}); // 1920x1080, 1280x720, 1280x1024 at 60 Hz
    block.Put({1, 1, 1, 1, 1, 1, 1, 1, 1, 1});       // unused
    PutTiming(block, k1080p60);
    block.Put({0, 0, 0, 0xFD, 0, 48, 75, 30, 83, 17, 1}); // 48-75 Hz, 30-83 kHz, 170 MHz
    block.Put({0x0A, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20});
    PutText(block, 0xFC, "VIRTUAL 1080P");
    PutText(block, 0xFF, "VIRTUAL-0001");
    block.Put(1); // extensions
    block.PutChecksum();
}

void MakeCtaBlock(std::uint8_t *bytes) {
    constexpr std::uint32_t kAudio = 1U << 5;
    constexpr std::uint32_t kVideo = 2U << 5;
    constexpr std::uint32_t kVendor = 3U << 5;
    constexpr std::uint32_t kSpeakers = 4U << 5;
    Block block(bytes);
    block.Put({0x02, 3, 25, 0xF1}); // revision, timings at 25; audio, YCbCr, one native timing
    block.Put({kVideo | 6, 0x80 | 16, 4, 3, 1, 31, 19}); // 1080p60 is native
    block.Put({kAudio | 3, 0x09, 0x07, 0x07});           // LPCM, 2 channels, 32-48 kHz, 16-24 bits
    block.Put({kSpeakers | 3, 0x01, 0x00, 0x00});        // front left and right
    block.Put({kVendor | 5, 0x03, 0x0C, 0x00, 0x10, 0x00}); // HDMI, address 1.0.0.0
    PutTiming(block, k720p60);
    block.PutChecksum();
}

} // namespace

std::array<std::uint8_t, 256> DefaultEdid() {
    std::array<std::uint8_t, 256> edid{};
    MakeBaseBlock(edid.data());
    MakeCtaBlock(edid.data() + kBlockBytes);
    return edid;
}

} // namespace virtual_scaler
