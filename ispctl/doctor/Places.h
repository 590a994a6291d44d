#ifndef ISPCTL_DOCTOR_PLACES_H
#define ISPCTL_DOCTOR_PLACES_H

#include <filesystem>
#include <string>

namespace ispctl::doctor {

/// What `ispctl doctor` and `ispctl paths` were asked for.
struct Options {
    std::string library;        ///< empty: the installed one, or the virtual scaler's
    bool virtualScaler = false; ///< use the virtual scaler's library
    bool json = false;          ///< standard output is one JSON document
};

/// Where one library looks for everything. All paths are absolute; the library finds the others
/// from the path by which it was opened, symbolic links not followed.
struct Places {
    std::filesystem::path library;
    std::filesystem::path directory;
    std::filesystem::path ispPlugin;
    std::filesystem::path signPlugin;
    std::filesystem::path settingFile;
    std::filesystem::path userDefinedFile;
};
Places PlacesOf(const Options &options);

} // namespace ispctl::doctor

#endif
