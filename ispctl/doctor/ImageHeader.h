#ifndef ISPCTL_DOCTOR_IMAGE_HEADER_H
#define ISPCTL_DOCTOR_IMAGE_HEADER_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ispctl::doctor {

/// What a file is, by its first bytes.
struct ImageHeader {
    enum class Format { Elf, MachO, Other };
    Format format = Format::Other;
    bool isSharedLibrary = false;           ///< what dlopen can load
    std::string description;                ///< "an ELF shared library for x86-64", "a script"
    std::vector<std::string> architectures; ///< of a universal file several
};

/// UNITS: bytes that ReadImageHeader looks at.
inline constexpr std::size_t kImageHeaderBytes = 4096;

ImageHeader ReadImageHeader(std::string_view bytes);

/// The format and architecture that this process can load.
ImageHeader::Format OwnFormat();
std::string_view OwnArchitecture();
std::string_view NameOf(ImageHeader::Format format);

} // namespace ispctl::doctor

#endif
