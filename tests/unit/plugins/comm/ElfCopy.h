#ifndef SCALER_ISP_TESTS_ELF_COPY_H
#define SCALER_ISP_TESTS_ELF_COPY_H

#include <cstring>
#include <string>

#include <link.h>

/// A record at a place in a file's bytes.
template <class Record> Record ReadAt(const std::string &bytes, std::size_t at) {
    Record record;
    std::memcpy(&record, bytes.data() + at, sizeof record);
    return record;
}

/// Takes the names from those functions of a library (an ELF file) for which isUnwanted says so.
/// RETURNS how many there were.
template <class Predicate>
std::size_t RemoveExports(std::string &library, const Predicate &isUnwanted) {
    using Section = ElfW(Shdr);
    using Symbol = ElfW(Sym);
    const auto header = ReadAt<ElfW(Ehdr)>(library, 0);
    const auto section = [&](std::size_t index) {
        return ReadAt<Section>(library, header.e_shoff + index * sizeof(Section));
    };
    std::size_t removed = 0;
    for (std::size_t i = 0; i < header.e_shnum; ++i) {
        const Section symbols = section(i);
        if (symbols.sh_type != SHT_DYNSYM) {
            continue;
        }
        const std::size_t texts = section(symbols.sh_link).sh_offset;
        for (std::size_t at = symbols.sh_offset; at < symbols.sh_offset + symbols.sh_size;
             at += sizeof(Symbol)) {
            auto symbol = ReadAt<Symbol>(library, at);
            if (isUnwanted(library.data() + texts + symbol.st_name)) {
                symbol.st_name = 0;
                std::memcpy(library.data() + at, &symbol, sizeof symbol);
                ++removed;
            }
        }
    }
    return removed;
}

#endif
