#include "line/Checks.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fmt/format.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "Environment.h"
#include "Utf8.h"
#include "line/NamedFile.h"
#include "line/NearestName.h"
#include "line/ShellQuote.h"
#include "line/UnexpandedPath.h"
#include "line/ValueForm.h"

namespace ispctl {
namespace {

namespace fs = std::filesystem;
using ScalerIspFacts::OptionFacts;

constexpr std::size_t kPathChars = SCALER_ISP_PATH_CHARS;

bool NamesFile(const GivenArgument &given) {
    return given.value && FormOf(*given.option).kind == ValueForm::Kind::File;
}

bool IsFirmware(const OptionFacts &option) {
    return option.effect.kind == ScalerIspFacts::Kind::Firmware ||
           option.meaning.starts_with("boot firmware");
}

/// Looks at one file that must be there.
class FileCheck {
  public:
    FileCheck(LineUnderCheck &line, const GivenArgument &given)
        : m_line(line), m_given(given), m_file(FileOf(given, line.Context())) {
        m_words.other = m_file.path.string();
    }

    void Check() {
        std::error_code ignored;
        if (!m_file.Exists() && fs::is_symlink(fs::symlink_status(m_file.path, ignored))) {
            ReportKind(LinkWords());
            return;
        }
        if (!m_file.Exists()) {
            CheckMissing();
            return;
        }
        CheckTwice();
        if (!m_file.IsFile()) {
            ReportKind(KindOf(m_file.status));
        } else if (::access(m_file.path.c_str(), R_OK) != 0) {
            m_words.detail = std::strerror(errno);
            Report("unreadable-file");
        } else if (m_file.size == 0) {
            Report(IsFirmware(*m_given.option) ? FindingName("firmware-empty")
                                               : FindingName("empty-file"));
        } else if (IsFirmware(*m_given.option) && m_file.Banks() > kFlashBanks) {
            CheckSize();
        }
    }

  private:
    Finding &Report(FindingName name) {
        return m_line.Report(name, m_given, Underline::Value, m_words);
    }

    /// \param kind  what it is instead of a file
    void ReportKind(std::string kind) {
        m_words.detail = std::move(kind);
        m_words.example = ExampleOf(*m_given.option);
        Report(IsFirmware(*m_given.option) ? FindingName("firmware-not-a-file")
                                           : FindingName("not-a-file"));
    }

    /// Why the link leads to nothing that can be opened.
    std::string LinkWords() const {
        std::error_code error;
        const fs::path target = fs::canonical(m_file.path, error);
        return error == std::errc::no_such_file_or_directory
                   ? "a symbolic link that leads to no file"
                   : "a symbolic link that cannot be followed: " + error.message();
    }

    /// A relative path is often meant for the directory in which it was typed.
    fs::path CallersFile() const {
        const fs::path path = m_line.Context().callerDirectory / *m_given.value;
        std::error_code ignored;
        return m_file.isRelative && fs::is_regular_file(path, ignored) ? path : fs::path();
    }

    void CheckMissing() {
        const fs::path callers = CallersFile();
        m_words.detail = m_file.isRelative ? m_file.path.parent_path().string() : "";
        if (!callers.empty()) {
            m_words.other = callers.string();
            m_words.detail = m_line.Context().libraryDirectory.string();
            Report("relative-path-elsewhere").corrected =
                WithValue(m_line.Arguments(), m_given, callers.string());
            return;
        }
        if (ReportUnexpanded(m_line, m_given)) {
            return;
        }
        const std::string similar = SimilarFile();
        if (similar.empty()) {
            m_words.detail = m_file.isRelative ? (IsPassedAsTyped(*m_given.option)
                                                      ? m_line.Context().callerDirectory
                                                      : m_line.Context().libraryDirectory)
                                                     .string()
                                               : "";
            Report("missing-file");
            return;
        }
        m_words.example = QuoteForShell(similar);
        Report("missing-file").corrected = WithValue(m_line.Arguments(), m_given, similar);
    }

    /// The file of the same directory whose name is nearest; as an absolute path.
    std::string SimilarFile() const {
        std::vector<std::string> names;
        std::error_code error;
        constexpr std::size_t kMostNames = 1000; // a huge directory is not searched
        for (fs::directory_iterator at(m_file.path.parent_path(), error), end;
             !error && at != end && names.size() < kMostNames; at.increment(error)) {
            names.push_back(at->path().filename().string());
        }
        const std::vector<std::string_view> views(names.begin(), names.end());
        const std::string name = m_file.path.filename().string();
        const std::string_view nearest = NearestName(name, views);
        return nearest.empty() ? "" : (m_file.path.parent_path() / nearest).string();
    }

    void CheckTwice() {
        const fs::path callers = CallersFile();
        std::error_code ignored;
        if (!callers.empty() && !fs::equivalent(callers, m_file.path, ignored)) {
            FindingWords words{.other = callers.string(),
                               .detail = m_line.Context().libraryDirectory.string()};
            m_line.Report("relative-path-twice", m_given, Underline::Value, words).corrected =
                WithValue(m_line.Arguments(), m_given, callers.string());
        }
    }

    void CheckSize() {
        constexpr std::uintmax_t kCounted = std::uintmax_t{1} << 32U;
        m_words.detail = fmt::format("{} bytes, {} banks", m_file.size, m_file.Banks());
        if (m_file.size >= kCounted) {
            m_words.detail += fmt::format("; the library counts only the {} beyond 4 GiB",
                                          m_file.size % kCounted);
        }
        Report("firmware-too-large");
    }

    LineUnderCheck &m_line;
    const GivenArgument &m_given;
    NamedFile m_file;
    FindingWords m_words;
};

/// Records hold paths as wide characters or as bytes of UTF-8.
std::size_t StoredLength(const LineUnderCheck &line, const GivenArgument &given,
                         const std::string &path) {
    const bool isWide = IsPassedAsTyped(*given.option) ? given.option->section == "dump"
                        : given.option->effect.kind == ScalerIspFacts::Kind::Firmware
                            ? given.option->effect.entry > 0 || !line.Holds("sw|hw")
                            : given.option->section == "firmware search";
    const auto wide = WideFromUtf8(path);
    return isWide && wide ? wide->size() : path.size();
}

/// Paths that do not reach the plug-in as they are. RETURNS whether this one does.
bool CheckPath(LineUnderCheck &line, const GivenArgument &given) {
    const std::string path =
        IsPassedAsTyped(*given.option) ? *given.value : FileOf(given, line.Context()).path.string();
    const std::size_t length = StoredLength(line, given, path);
    if (length >= kPathChars) {
        line.Report("path-too-long", given, Underline::Value,
                    {.detail = fmt::format("{} {}", length,
                                           length == path.size() ? "bytes" : "characters")});
        return false;
    }
    if (!IsTextOfEnvironment(*given.value)) {
        line.Report("path-not-expressible", given, Underline::Value,
                    {.detail = EnvironmentEncoding()});
        return false;
    }
    return true;
}

/// Reports that the file to write is one that the same line reads. RETURNS whether it is.
bool CheckOverwritten(LineUnderCheck &line, const GivenArgument &written) {
    const fs::path path = FileOf(written, line.Context()).path;
    for (const GivenArgument *other : line.Options()) {
        std::error_code ignored;
        if (NamesFile(*other) && !IsWritten(line, *other->option) &&
            fs::equivalent(path, FileOf(*other, line.Context()).path, ignored)) {
            line.Report("overwrites-input", written, Underline::Value,
                        {.other = "--" + std::string(other->option->name)});
            return true;
        }
    }
    return false;
}

bool HasFinding(LineUnderCheck &line, const GivenArgument &given, std::string_view name) {
    const auto &all = line.Findings();
    return std::any_of(all.begin(), all.end(), [&](const Finding &finding) {
        return finding.name == name && finding.argument == given.valuePosition;
    });
}

} // namespace

void CheckFiles(LineUnderCheck &line) {
    for (std::size_t i = 0; i < line.Options().size(); ++i) {
        const GivenArgument &given = *line.Options()[i];
        const bool isRead = NamesFile(given) && !given.value->empty() && line.IsUsable(i) &&
                            (!line.IsReplaced(i) || IsFirmware(*given.option));
        if (!isRead || line.IsExplained(given.valuePosition) ||
            HasFinding(line, given, "value-like-option")) {
            continue;
        }
        if (!CheckPath(line, given)) {
            continue;
        }
        if (!IsWritten(line, *given.option)) {
            FileCheck(line, given).Check();
        } else if (!CheckOverwritten(line, given) && given.option->section != "dump") {
            CheckWritable(line, given, FileOf(given, line.Context()).path);
        }
    }
}

bool ReportUnexpanded(LineUnderCheck &line, const GivenArgument &given) {
    const UnexpandedPath unexpanded = FindUnexpanded(*given.value);
    if (unexpanded.reason.empty()) {
        return false;
    }
    const std::string &meant = unexpanded.expanded;
    Finding &finding = line.Report("unexpanded-path", given, Underline::Value,
                                   {.other = meant.empty() ? "" : QuoteForShell(meant),
                                    .example = ExampleOf(*given.option),
                                    .detail = unexpanded.reason});
    if (!meant.empty()) {
        finding.corrected = WithValue(line.Arguments(), given, meant);
    }
    return true;
}

bool NamesBlockingFile(const ArgumentList &arguments, const LineContext &context) {
    const std::vector<GivenArgument> all = ReadGivenArguments(arguments);
    return std::any_of(all.begin(), all.end(), [&](const GivenArgument &given) {
        return given.kind == GivenArgument::Kind::Option &&
               ((NamesFile(given) && fs::is_fifo(FileOf(given, context).status)) ||
                IsBlockingSearch(given, context));
    });
}

} // namespace ispctl
