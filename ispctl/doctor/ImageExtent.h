#ifndef ISPCTL_DOCTOR_IMAGE_EXTENT_H
#define ISPCTL_DOCTOR_IMAGE_EXTENT_H

#include <cstdint>
#include <string_view>

namespace ispctl::doctor {

/// How long an ELF or Mach-O file is at least, by what its headers say that the loader maps. A
/// loader maps a shorter file, too, and the process ends with SIGBUS at the first missing page.
/// \param bytes  the beginning of the file; segments that it does not describe are not counted
/// RETURNS 0 if the headers do not say. UNITS: bytes.
std::uint64_t LeastFileSize(std::string_view bytes);

} // namespace ispctl::doctor

#endif
