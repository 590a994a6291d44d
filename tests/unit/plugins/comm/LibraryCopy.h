#ifndef SCALER_ISP_TESTS_LIBRARY_COPY_H
#define SCALER_ISP_TESTS_LIBRARY_COPY_H

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <link.h>

#include "modules/ModuleCalls.h"

inline std::string FileBytes(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A record at a place in a file's bytes.
template <class Record> Record ReadAt(const std::string &bytes, std::size_t at) {
    Record record;
    std::memcpy(&record, bytes.data() + at, sizeof record);
    return record;
}

/// The bytes of a library (an ELF file) whose functions of these names have none: the loader can no
/// longer find them.
inline std::string WithoutFunctions(std::string library, const std::vector<std::string> &names) {
    using Section = ElfW(Shdr);
    using Symbol = ElfW(Sym);
    const auto header = ReadAt<ElfW(Ehdr)>(library, 0);
    const auto section = [&](std::size_t index) {
        return ReadAt<Section>(library, header.e_shoff + index * sizeof(Section));
    };
    std::size_t found = 0;
    for (std::size_t i = 0; i < header.e_shnum; ++i) {
        const Section symbols = section(i);
        if (symbols.sh_type != SHT_DYNSYM) {
            continue;
        }
        const std::size_t texts = section(symbols.sh_link).sh_offset;
        for (std::size_t at = symbols.sh_offset; at < symbols.sh_offset + symbols.sh_size;
             at += sizeof(Symbol)) {
            auto symbol = ReadAt<Symbol>(library, at);
            const char *name = library.data() + texts + symbol.st_name;
            if (std::count(names.begin(), names.end(), name) != 0) {
                symbol.st_name = 0;
                std::memcpy(library.data() + at, &symbol, sizeof symbol);
                ++found;
            }
        }
    }
    if (found != names.size()) {
        throw std::runtime_error("a function to leave out is not there");
    }
    return library;
}

#endif
