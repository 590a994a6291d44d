#ifndef SCALER_ISP_SIMULATOR_BUS_JOURNAL_LINE_H
#define SCALER_ISP_SIMULATOR_BUS_JOURNAL_LINE_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

#include "common/Text.h"

namespace virtual_scaler {

/// One call in the journal: the function's name and its arguments as name=value. Data that pointers
/// refer to is shown only after success, because it may be uninitialised after a failure; long data
/// is truncated.
class JournalLine {
  public:
    /// \param names  the parameters in parentheses, as in the table: "(addr, value)"
    JournalLine(const char *function, const char *names, bool succeeded)
        : m_line(function), m_names(names), m_succeeded(succeeded) {}

    template <class... Arguments> void AddArguments(Arguments... arguments) {
        (Add(arguments), ...);
    }
    const std::string &Line() const {
        return m_line;
    }

  private:
    static constexpr std::size_t kShown = 32;

    std::string NextName() {
        const std::size_t first = m_names.find_first_not_of("(, )");
        m_names.remove_prefix(first);
        const std::string name(m_names.substr(0, m_names.find_first_of(",)")));
        m_names.remove_prefix(name.size());
        return name;
    }

    template <class Value> void Add(Value value) {
        const std::string name = NextName();
        if constexpr (std::is_integral_v<Value> || std::is_enum_v<Value>) {
            if (name == "length") {
                m_length = static_cast<std::size_t>(value);
            }
            m_line += Format(" %s=0x%X", name.c_str(), static_cast<unsigned>(value));
        } else if constexpr (std::is_pointer_v<Value>) {
            if (m_succeeded && value != nullptr) {
                AddTarget(name, value);
            }
        } else {
            AddList(name, reinterpret_cast<const std::uint8_t *>(&value), sizeof value);
        }
    }

    void AddTarget(const std::string &name, const wchar_t *text) {
        m_line += ' ' + name + '=' + Quoted(FromWide(text, 4096));
    }
    void AddTarget(const std::string &name, const void *data) {
        AddTarget(name, static_cast<const std::uint8_t *>(data));
    }
    template <class Number> void AddTarget(const std::string &name, const Number *numbers) {
        if constexpr (std::is_integral_v<Number>) {
            if (name == "value") {
                m_line += Format(" value=0x%X", static_cast<unsigned>(*numbers));
            } else if (name == "data") {
                AddList(name, numbers, m_length);
            }
        }
    }
    template <class Number>
    void AddList(const std::string &name, const Number *numbers, std::size_t count) {
        m_line += ' ' + name + "=[";
        for (std::size_t i = 0; i < std::min(count, kShown); ++i) {
            m_line += Format(i == 0 ? "%0*X" : " %0*X", static_cast<int>(2 * sizeof(Number)),
                             static_cast<unsigned>(numbers[i]));
        }
        m_line += count > kShown ? " ..]" : "]";
    }

    std::string m_line;
    std::string_view m_names;
    bool m_succeeded;
    std::size_t m_length = 0;
};

} // namespace virtual_scaler

#endif
