#ifndef SCALER_ISP_TESTS_FUZZ_FUZZ_INPUT_H
#define SCALER_ISP_TESTS_FUZZ_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <string>

/// Splits one input of the fuzzer. Everything is text as far as possible, so that a case can be
/// written and read with an editor.
class FuzzInput {
  public:
    FuzzInput(const std::uint8_t *data, std::size_t size)
        : m_bytes(reinterpret_cast<const char *>(data), size) {}

    bool IsEmpty() const {
        return m_pos == m_bytes.size();
    }
    /// The next byte; 0 at the end.
    unsigned int Byte() {
        return IsEmpty() ? 0 : static_cast<unsigned char>(m_bytes[m_pos++]);
    }
    /// The next byte as a number below `end`; the digits are themselves, as far as they can be.
    unsigned int Below(unsigned int end) {
        return (Byte() + 208) % 256 % end;
    }
    /// The next line without its newline; \n and \0 in it are a newline and a NUL.
    std::string Line() {
        std::string line;
        while (!IsEmpty() && m_bytes[m_pos] != '\n') {
            line += Unescaped();
        }
        Byte();
        return line;
    }
    /// All that is left, unchanged.
    std::string Rest() {
        std::string rest = m_bytes.substr(m_pos);
        m_pos = m_bytes.size();
        return rest;
    }

  private:
    char Unescaped() {
        const char c = m_bytes[m_pos++];
        if (c == '\\' && !IsEmpty() && (m_bytes[m_pos] == 'n' || m_bytes[m_pos] == '0')) {
            return m_bytes[m_pos++] == 'n' ? '\n' : '\0';
        }
        return c;
    }

    std::string m_bytes;
    std::size_t m_pos = 0;
};

#endif
