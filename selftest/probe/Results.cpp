#include "probe/Results.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

constexpr std::size_t kLongestRun = 16;

void AppendEscaped(std::string &to, char character) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte >= 0x20 && byte < 0x7F) {
        to += character;
        return;
    }
    char escaped[8];
    std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned>(byte));
    to += escaped;
}

} // namespace

Results::Results(std::string path, std::string group, std::string directory)
    : m_path(std::move(path)), m_group(std::move(group)), m_directory(std::move(directory)) {}

void Results::Require(const std::string &check, bool holds, const std::string &detail) {
    Write("required", check, holds ? "passed" : "failed", detail);
}

void Results::Assume(const std::string &check, const std::string &assumed,
                     const std::string &found) {
    if (assumed.empty()) {
        Note(check, found);
    } else if (found == assumed) {
        Write("assumed", check, "as assumed", found);
    } else {
        Write("assumed", check, "differs", found + ", assumed: " + assumed);
    }
}

void Results::Note(const std::string &check, const std::string &found) {
    Write("noted", check, "-", found);
}

void Results::End() {
    Write("end", "-", "-", "-");
}

void Results::Write(const char *kind, const std::string &check, const char *outcome,
                    const std::string &detail) {
    std::FILE *file = std::fopen(m_path.c_str(), "a");
    if (file == nullptr) {
        std::perror(m_path.c_str());
        std::exit(2);
    }
    std::fprintf(file, "%s\t%s\t%s\t%s\t%s\n", kind, m_group.c_str(), check.c_str(), outcome,
                 Shown(detail).c_str());
    std::fclose(file);
}

/// One line of ASCII; a long run of one character is given by its length.
std::string Results::Shown(const std::string &text) const {
    std::string shown;
    for (std::size_t i = 0; i < text.size();) {
        if (!m_directory.empty() && text.compare(i, m_directory.size(), m_directory) == 0) {
            shown += "DIR";
            i += m_directory.size();
            continue;
        }
        std::size_t end = text.find_first_not_of(text[i], i);
        end = end == std::string::npos ? text.size() : end;
        if (end - i > kLongestRun) {
            shown += "<" + std::to_string(end - i) + " times " + text[i] + ">";
            i = end;
        } else {
            AppendEscaped(shown, text[i++]);
        }
    }
    return shown;
}
