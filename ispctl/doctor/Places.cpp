#include "doctor/Places.h"

#include "LibraryPaths.h"

namespace ispctl::doctor {

Places PlacesOf(const Options &options) {
    Places places;
    const std::filesystem::path preset =
        options.virtualScaler ? VirtualLibraryPath() : InstalledLibraryPath();
    const std::filesystem::path given = options.library;
    places.library = std::filesystem::absolute(given.empty() ? preset : given);
    places.directory = places.library.parent_path();
    places.ispPlugin = places.directory / "PlugIn/libIsp.dylib";
    places.signPlugin = places.directory / "libSignVerify.dylib";
    places.settingFile = places.directory / "IspSetting.ini";
    places.userDefinedFile = places.directory / "IspUserDefined.txt";
    return places;
}

} // namespace ispctl::doctor
