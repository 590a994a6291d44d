#ifndef ISPCTL_SCRIPT_SCRIPT_ERRORS_H
#define ISPCTL_SCRIPT_SCRIPT_ERRORS_H

#include <cstddef>
#include <map>
#include <stdexcept>
#include <string>

namespace ispctl {

/// An error in a script text and its position. Lines and columns count from 1; a column is a
/// character, as editors count.
class ScriptError : public std::runtime_error {
  public:
    ScriptError(std::size_t line, std::size_t column, const std::string &text)
        : std::runtime_error(text), m_text(text), m_line(line), m_column(column) {}

    /// As what(), which ends at a NUL of the script.
    const std::string &Text() const {
        return m_text;
    }

    std::size_t Line() const {
        return m_line;
    }
    std::size_t Column() const {
        return m_column;
    }

  private:
    std::string m_text;
    std::size_t m_line;
    std::size_t m_column;
};

/// The errors of a text in the order of its lines: the first one of each line, because those after
/// it may follow from it.
class ScriptErrors {
  public:
    /// The text may be full of errors, and must not exhaust memory with them.
    static constexpr std::size_t kMost = 1000;

    void Add(const ScriptError &error) {
        if (m_first.size() < kMost || m_first.contains(error.Line())) {
            m_first.emplace(error.Line(), error);
        } else if (error.Line() != m_lastUnlisted) {
            m_lastUnlisted = error.Line();
            ++m_unlisted;
        }
    }
    /// By line; at most kMost.
    const std::map<std::size_t, ScriptError> &First() const {
        return m_first;
    }
    /// How many lines with errors First does not have.
    std::size_t Unlisted() const {
        return m_unlisted;
    }

  private:
    std::map<std::size_t, ScriptError> m_first;
    std::size_t m_unlisted = 0;
    std::size_t m_lastUnlisted = 0;
};

} // namespace ispctl

#endif
