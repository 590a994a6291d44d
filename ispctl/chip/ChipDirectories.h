#ifndef ISPCTL_CHIP_CHIP_DIRECTORIES_H
#define ISPCTL_CHIP_CHIP_DIRECTORIES_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace ispctl {

/// The directories that hold one directory per chip, the user's before the machine's. The
/// environment variable SCALER_ISP_CHIPS replaces both; ":" separates several.
std::vector<std::filesystem::path> ChipRoots();

/// The names of all chips, sorted, each once.
std::vector<std::string> ChipNames();

/// The library of a chip: the first directory of that name that is there. RETURNS nothing if there
/// is none or it holds no library, with the reason and a remedy in error.
std::optional<std::filesystem::path> FindChipLibrary(const std::string &name, std::string &error);

/// Whether a library is, by its path, that of a chip.
bool IsInChipDirectory(const std::filesystem::path &library);

} // namespace ispctl

#endif
