#include "ImageWatch.h"

#include <string_view>

#if defined(__APPLE__)
#include <dlfcn.h>
#include <mach-o/dyld.h>
#include <mach-o/loader.h>
#else
#include <link.h>
#endif

namespace ispctl {
namespace {

/// The images loaded now, and a count of all that were ever loaded.
struct Images {
    unsigned long long loads = 0;        ///< images loaded so far, without those of the system
    unsigned long long systemImages = 0; ///< images that the C library itself has loaded now
    bool plugin = false;                 ///< an image has the name of a plug-in
};

bool IsPlugin(std::string_view path) {
    return path.ends_with("/libIsp.dylib") || path.ends_with("/libSignVerify.dylib");
}

#if defined(__APPLE__)

unsigned long long g_loads = 0;

void CountLoad(const mach_header *header, std::intptr_t) {
    Dl_info info{};
    const bool known = ::dladdr(header, &info) != 0 && info.dli_fname != nullptr;
    const std::string_view path = known ? info.dli_fname : "";
    g_loads += path.starts_with("/usr/lib/") || path.starts_with("/System/") ? 0 : 1;
}

Images LoadedImages() {
    // dyld calls CountLoad at once for every image already loaded, and later for each new one.
    static const bool registered = (::_dyld_register_func_for_add_image(CountLoad), true);
    Images images;
    images.loads = registered ? g_loads : 0;
    for (std::uint32_t i = 0; i < ::_dyld_image_count(); ++i) {
        const char *path = ::_dyld_get_image_name(i);
        images.plugin = images.plugin || (path != nullptr && IsPlugin(path));
    }
    return images;
}

#else

int AddImage(dl_phdr_info *info, std::size_t, void *result) {
    Images &images = *static_cast<Images *>(result);
    const std::string_view path = info->dlpi_name != nullptr ? info->dlpi_name : "";
    images.loads = info->dlpi_adds;
    images.systemImages += path.find("/gconv/") != std::string_view::npos ? 1U : 0U;
    images.plugin = images.plugin || IsPlugin(path);
    return 0;
}

Images LoadedImages() {
    Images images;
    ::dl_iterate_phdr(AddImage, &images);
    images.loads -= images.systemImages;
    return images;
}

#endif

} // namespace

ImageWatch::ImageWatch() {
    const Images images = LoadedImages();
    m_loads = images.loads;
    m_pluginFromTheStart = images.plugin;
}

bool ImageWatch::MayHaveLoadedPlugin() const {
    const Images images = LoadedImages();
    return images.loads != m_loads || images.plugin || m_pluginFromTheStart;
}

} // namespace ispctl
