#ifndef ISPCTL_DOCTOR_IMAGE_NUMBER_H
#define ISPCTL_DOCTOR_IMAGE_NUMBER_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ispctl::doctor {

enum class ByteOrder { Little, Big };

/// A number in the header of an ELF or Mach-O file.
/// REQUIRES: the bytes are there, and size is at most 8.
inline std::uint64_t Number(std::string_view bytes, std::size_t offset, std::size_t size,
                            ByteOrder order) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        const std::size_t at = order == ByteOrder::Big ? i : size - 1 - i;
        value = value << 8U | static_cast<unsigned char>(bytes[offset + at]);
    }
    return value;
}

} // namespace ispctl::doctor

#endif
