#include "station/Sha256.h"

#include <algorithm>
#include <bit>
#include <fmt/format.h>

namespace ispctl {
namespace {

// The first 32 bits of the fractional parts of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, 64> kConstants{
    0x428A2F98, 0x71374491, 0xB5C0FBCF, 0xE9B5DBA5, 0x3956C25B, 0x59F111F1, 0x923F82A4, 0xAB1C5ED5,
    0xD807AA98, 0x12835B01, 0x243185BE, 0x550C7DC3, 0x72BE5D74, 0x80DEB1FE, 0x9BDC06A7, 0xC19BF174,
    0xE49B69C1, 0xEFBE4786, 0x0FC19DC6, 0x240CA1CC, 0x2DE92C6F, 0x4A7484AA, 0x5CB0A9DC, 0x76F988DA,
    0x983E5152, 0xA831C66D, 0xB00327C8, 0xBF597FC7, 0xC6E00BF3, 0xD5A79147, 0x06CA6351, 0x14292967,
    0x27B70A85, 0x2E1B2138, 0x4D2C6DFC, 0x53380D13, 0x650A7354, 0x766A0ABB, 0x81C2C92E, 0x92722C85,
    0xA2BFE8A1, 0xA81A664B, 0xC24B8B70, 0xC76C51A3, 0xD192E819, 0xD6990624, 0xF40E3585, 0x106AA070,
    0x19A4C116, 0x1E376C08, 0x2748774C, 0x34B0BCB5, 0x391C0CB3, 0x4ED8AA4A, 0x5B9CCA4F, 0x682E6FF3,
    0x748F82EE, 0x78A5636F, 0x84C87814, 0x8CC70208, 0x90BEFFFA, 0xA4506CEB, 0xBEF9A3F7, 0xC67178F2};

std::array<std::uint32_t, 64> ScheduleOf(const unsigned char *block) {
    std::array<std::uint32_t, 64> words{};
    for (std::size_t i = 0; i < 16; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            words[i] = (words[i] << 8U) | block[4 * i + j];
        }
    }
    for (std::size_t i = 16; i < words.size(); ++i) {
        const std::uint32_t a = words[i - 15];
        const std::uint32_t b = words[i - 2];
        words[i] = words[i - 16] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ (a >> 3U)) + words[i - 7] +
                   (std::rotr(b, 17) ^ std::rotr(b, 19) ^ (b >> 10U));
    }
    return words;
}

} // namespace

void Sha256::Compress(const unsigned char *block) {
    const auto words = ScheduleOf(block);
    auto [a, b, c, d, e, f, g, h] = m_state;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::uint32_t first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                                    ((e & f) ^ (~e & g)) + kConstants[i] + words[i];
        const std::uint32_t second =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const std::array<std::uint32_t, 8> added{a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < added.size(); ++i) {
        m_state[i] += added[i];
    }
}

void Sha256::Add(std::string_view bytes) {
    m_length += bytes.size();
    while (!bytes.empty()) {
        const std::size_t count = std::min(bytes.size(), kBlockBytes - m_used);
        std::copy_n(bytes.data(), count, m_block.data() + m_used);
        bytes.remove_prefix(count);
        m_used += count;
        if (m_used == kBlockBytes) {
            Compress(m_block.data());
            m_used = 0;
        }
    }
}

std::string Sha256::Finish() {
    const std::uint64_t bits = m_length * 8;
    Add(std::string_view("\x80", 1));
    constexpr std::size_t kLengthBytes = 8;
    while (m_used != kBlockBytes - kLengthBytes) {
        Add(std::string_view("\0", 1));
    }
    std::string length;
    for (unsigned shift = 64; shift > 0; shift -= 8) {
        length += static_cast<char>((bits >> (shift - 8)) & 0xFFU);
    }
    Add(length);
    std::string digits;
    for (const std::uint32_t word : m_state) {
        digits += fmt::format("{:08x}", word);
    }
    return digits;
}

std::string Sha256Of(std::string_view bytes) {
    Sha256 hash;
    hash.Add(bytes);
    return hash.Finish();
}

} // namespace ispctl
