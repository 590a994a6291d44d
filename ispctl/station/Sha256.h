#ifndef ISPCTL_STATION_SHA256_H
#define ISPCTL_STATION_SHA256_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ispctl {

/// The hash of FIPS 180-4. Written here because it is the only cryptography of this program, which
/// otherwise depends on nothing that a bare system lacks: a hash names a file in a log, it does not
/// decide whether a firmware is programmed.
class Sha256 {
  public:
    void Add(std::string_view bytes);
    /// RETURNS 64 lower-case hexadecimal digits. The object cannot be used afterwards.
    std::string Finish();

  private:
    static constexpr std::size_t kBlockBytes = 64;

    void Compress(const unsigned char *block);

    std::array<std::uint32_t, 8> m_state{0x6A09E667, 0xBB67AE85, 0x3C6EF372, 0xA54FF53A,
                                         0x510E527F, 0x9B05688C, 0x1F83D9AB, 0x5BE0CD19};
    std::array<unsigned char, kBlockBytes> m_block{};
    std::size_t m_used = 0;     ///< bytes in m_block
    std::uint64_t m_length = 0; ///< UNITS: bytes
};

/// The hash of a string.
std::string Sha256Of(std::string_view bytes);

} // namespace ispctl

#endif
