#ifndef SCALER_ISP_TESTS_LIBRARY_COPY_H
#define SCALER_ISP_TESTS_LIBRARY_COPY_H

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <dlfcn.h>

#include "modules/ModuleCalls.h"
#if defined(__APPLE__)
#include "plugins/comm/MachOCopy.h"
#else
#include "plugins/comm/ElfCopy.h"
#endif

inline std::string FileBytes(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The bytes of a library whose functions of these names have none: the loader can no longer find
/// them.
inline std::string WithoutFunctions(std::string library, const std::vector<std::string> &names) {
    const std::size_t removed = RemoveExports(library, [&](const std::string &name) {
        return std::count(names.begin(), names.end(), name) != 0;
    });
    if (removed != names.size()) {
        throw std::runtime_error("a function to leave out is not there");
    }
    return library;
}

#endif
