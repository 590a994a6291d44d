#ifndef SCALER_ISP_TESTS_MACHO_COPY_H
#define SCALER_ISP_TESTS_MACHO_COPY_H

#include <cstdint>
#include <cstring>
#include <string>

#include <mach-o/loader.h>

/// The tree of a library's exports, in the bytes of a Mach-O file for one processor. A node: the
/// size of what the symbol that ends here needs (0: none ends here), that many bytes, the number of
/// children, and for each child a piece of the name and the position of its node.
template <class Predicate> class ExportTrie {
  public:
    /// \param isUnwanted  asked for each symbol, without its leading underscore
    ExportTrie(std::string &library, const Predicate &isUnwanted)
        : m_library(library), m_isUnwanted(isUnwanted) {
        mach_header_64 header;
        std::memcpy(&header, library.data(), sizeof header);
        std::size_t at = sizeof header;
        for (std::uint32_t i = 0; i < header.ncmds; ++i) {
            dyld_info_command command;
            std::memcpy(&command, library.data() + at, sizeof command);
            if (command.cmd == LC_DYLD_INFO_ONLY) {
                m_start = command.export_off;
            }
            at += command.cmdsize;
        }
    }

    /// RETURNS how many symbols were removed.
    std::size_t Remove() {
        return m_start != 0 ? RemoveBelow(0, "") : 0;
    }

  private:
    std::size_t RemoveBelow(std::size_t node, const std::string &name) {
        std::size_t at = m_start + node;
        const std::size_t size = ReadNumber(at);
        const std::size_t children = at + size;
        std::size_t removed = 0;
        std::size_t next = children;
        for (auto count = static_cast<unsigned char>(m_library[next++]); count > 0; --count) {
            const std::string piece = m_library.data() + next;
            next += piece.size() + 1;
            const std::size_t child = ReadNumber(next);
            removed += RemoveBelow(child, name + piece);
        }
        if (size != 0 && m_isUnwanted(name.substr(1))) {
            // The children move to where a node has them at which no symbol ends.
            m_library[m_start + node] = '\0';
            std::memmove(m_library.data() + m_start + node + 1, m_library.data() + children,
                         next - children);
            ++removed;
        }
        return removed;
    }

    /// A number in LEB128; moves past it.
    std::size_t ReadNumber(std::size_t &at) const {
        std::size_t value = 0;
        unsigned shift = 0;
        unsigned char byte = 0x80;
        for (; (byte & 0x80) != 0; shift += 7) {
            byte = static_cast<unsigned char>(m_library[at++]);
            value |= static_cast<std::size_t>(byte & 0x7F) << shift;
        }
        return value;
    }

    std::string &m_library;
    const Predicate &m_isUnwanted;
    std::size_t m_start = 0;
};

/// Removes those exports of a library (a Mach-O file) for which isUnwanted says so. RETURNS how
/// many there were.
template <class Predicate>
std::size_t RemoveExports(std::string &library, const Predicate &isUnwanted) {
    return ExportTrie<Predicate>(library, isUnwanted).Remove();
}

#endif
