#ifndef ISPCTL_LIBRARY_REASON_H
#define ISPCTL_LIBRARY_REASON_H

#include <filesystem>
#include <string>

namespace ispctl {

/// What to do if the file is a library, but not this one.
inline constexpr const char *kOtherLibrary = "name the ScalerIsp library with --lib FILE";

/// Why a library cannot be loaded, as far as its file shows it, and what to do; empty if the loader
/// can be asked. \param file  absolute
std::string WhyNotLoadable(const std::filesystem::path &file);

/// The same for what the loader itself says.
std::string WordsOfLoader(const std::filesystem::path &file, const std::string &text);

} // namespace ispctl

#endif
