#ifndef SCALER_ISP_TESTS_HOST_EDID_MAKER_H
#define SCALER_ISP_TESTS_HOST_EDID_MAKER_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

/// EDIDs for tests, made field by field after the public E-EDID structure 1.3 and 1.4.
namespace edid {

using Block = std::array<std::uint8_t, 128>;

/// Sets byte 127 so that the block's sum is 0.
inline void Close(Block &block) {
    unsigned int sum = 0;
    for (std::size_t i = 0; i < 127; ++i) {
        sum += block[i];
    }
    block[127] = static_cast<std::uint8_t>(0U - sum);
}

/// A detailed timing: 1920 x 1080 of 2200 x 1125 at 148.5 MHz, which is 60 Hz.
inline void PutTiming(Block &block, std::size_t place) {
    const std::uint8_t bytes[18] = {
        0x02, 0x3A,             // pixel clock 14850 * 10 kHz
        0x80, 0x18, 0x71,       // 1920 active, 280 blanking
        0x38, 0x2D, 0x40,       // 1080 active, 45 blanking
        0x58, 0x2C, 0x45, 0x00, // sync
        0x09, 0x25, 0x21,       // 521 mm x 293 mm
        0x00, 0x00, 0x1E,
    };
    std::copy(bytes, bytes + 18, block.begin() + static_cast<std::ptrdiff_t>(place));
}

inline void PutText(Block &block, std::size_t place, std::uint8_t tag, const std::string &text) {
    block[place + 3] = tag;
    for (std::size_t i = 0; i < 13; ++i) {
        block[place + 5 + i] = static_cast<std::uint8_t>(i < text.size()    ? text[i]
                                                         : i == text.size() ? '\n'
                                                                            : ' ');
    }
}

/// 1920 x 1080 interlaced: 540 lines of each field and 22 of blanking, 74.25 MHz, which is 60 Hz.
inline void PutInterlacedTiming(Block &block, std::size_t place) {
    PutTiming(block, place);
    block[place] = 0x01;
    block[place + 1] = 0x1D;
    block[place + 5] = 0x1C;
    block[place + 6] = 0x16;
    block[place + 7] = 0x20;
    block[place + 17] |= 0x80;
}

/// "TST", product 0x1234, week 12 of 2021, EDID 1.4, 1080p, named "Test panel".
inline Block Base(std::uint8_t extensions = 0) {
    Block block{};
    const std::uint8_t header[8] = {0, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0};
    std::copy(header, header + 8, block.begin());
    block[8] = 0x52; // T = 20, S = 19, T = 20: 0 10100 10011 10100
    block[9] = 0x74;
    block[10] = 0x34;
    block[11] = 0x12;
    block[12] = 0x78;
    block[13] = 0x56;
    block[14] = 0x34;
    block[15] = 0x12;
    block[16] = 12;
    block[17] = 31;
    block[18] = 1;
    block[19] = 4;
    block[20] = 0xA5; // digital, 8 bits a colour, DisplayPort
    block[21] = 52;
    block[22] = 29;
    block[23] = 120; // gamma 2.2
    block[24] = 0x02;
    for (std::size_t i = 38; i < 54; ++i) {
        block[i] = 1; // no standard timings
    }
    PutTiming(block, 54);
    PutText(block, 72, 0xFC, "Test panel");
    PutText(block, 90, 0xFF, "0001");
    block[108 + 3] = 0x10; // dummy descriptor
    block[126] = extensions;
    Close(block);
    return block;
}

/// A CTA-861 extension with a video block of one code and no timings.
inline Block Cta() {
    Block block{};
    block[0] = 0x02;
    block[1] = 3;
    block[2] = 6;    // where timings would begin
    block[4] = 0x41; // video data block, one byte
    block[5] = 0x90; // 1080p60, native
    Close(block);
    return block;
}

/// A CTA-861 extension with these data blocks, tags included, and then count timings.
inline Block CtaWith(const std::string &dataBlocks, std::size_t count = 0) {
    Block block{};
    block[0] = 0x02;
    block[1] = 3;
    block[2] = static_cast<std::uint8_t>(4 + dataBlocks.size());
    std::copy(dataBlocks.begin(), dataBlocks.end(), block.begin() + 4);
    for (std::size_t i = 0; i < count; ++i) {
        PutTiming(block, block[2] + 18 * i);
    }
    Close(block);
    return block;
}

/// Range limits: 48 to 75 Hz, 30 to 83 kHz, 170 MHz.
inline void PutRange(Block &block, std::size_t place) {
    const std::uint8_t bytes[18] = {0,  0, 0,    0xFD, 0,    48,   75,   30,   83,
                                    17, 1, 0x0A, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20};
    std::copy(bytes, bytes + 18, block.begin() + static_cast<std::ptrdiff_t>(place));
}

inline std::string Bytes(const Block &block) {
    return {block.begin(), block.end()};
}

} // namespace edid

#endif
