#ifndef SCALER_ISP_SIMULATOR_COMMON_FIELD_LIST_H
#define SCALER_ISP_SIMULATOR_COMMON_FIELD_LIST_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "common/Text.h"

namespace virtual_scaler {

/// Collects a journal line: a function's name and the fields that differ from their defaults, as
/// name=value. The overloads correspond to the kinds U32, I32, U8, BYTES, WIDE and NARROW of the
/// field tables.
class FieldList {
  public:
    explicit FieldList(const char *function) : m_line(function) {}

    template <class Number> void AddNumber(const char *name, Number value, long long defaultValue) {
        if (static_cast<long long>(value) != defaultValue) {
            Add(name, std::to_string(static_cast<long long>(value)));
        }
    }

    /// Adds the bytes up to the last one that differs from the default, in hexadecimal.
    template <std::size_t N>
    void AddBytes(const char *name, const std::uint8_t (&bytes)[N], std::uint8_t defaultValue) {
        std::size_t count = N;
        while (count > 0 && bytes[count - 1] == defaultValue) {
            --count;
        }
        if (count > 0) {
            Add(name, '[' + HexBytes(bytes, count) + ']');
        }
    }

    template <std::size_t N> void AddText(const char *name, const wchar_t (&field)[N]) {
        AddQuoted(name, FromWide(field, N));
    }
    template <std::size_t N> void AddText(const char *name, const char (&field)[N]) {
        AddQuoted(name, FromNarrow(field, N));
    }

    void Add(const std::string &name, const std::string &value) {
        m_line += ' ' + name + '=' + value;
    }
    const std::string &Line() const {
        return m_line;
    }

  private:
    void AddQuoted(const char *name, const std::string &text) {
        if (!text.empty()) {
            Add(name, Quoted(text));
        }
    }

    std::string m_line;
};

} // namespace virtual_scaler

#endif
