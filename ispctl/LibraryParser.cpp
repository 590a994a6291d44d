#include "LibraryParser.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <new>
#include <system_error>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

#include "Environment.h"
#include "LibrarySymbols.h"
#include "Pipe.h"

namespace ispctl {
namespace {

/// While it lives, both standard streams go into a file without a name.
class CapturedStreams {
  public:
    CapturedStreams() : m_file(std::tmpfile(), &std::fclose) {
        std::fflush(nullptr);
        m_output = Descriptor(::dup(STDOUT_FILENO));
        m_error = Descriptor(::dup(STDERR_FILENO));
        const int file = m_file != nullptr ? ::fileno(m_file.get()) : -1;
        if (file < 0 || !m_output.IsOpen() || !m_error.IsOpen() ||
            ::dup2(file, STDOUT_FILENO) < 0 || ::dup2(file, STDERR_FILENO) < 0) {
            const int error = errno;
            Restore();
            throw std::system_error(error, std::generic_category(),
                                    "what the library prints cannot be captured");
        }
    }
    ~CapturedStreams() {
        Restore();
    }
    CapturedStreams(const CapturedStreams &) = delete;
    CapturedStreams &operator=(const CapturedStreams &) = delete;

    std::string Text() {
        Restore();
        std::rewind(m_file.get());
        std::string text;
        char buffer[4096];
        for (std::size_t size = 0;
             (size = std::fread(buffer, 1, sizeof buffer, m_file.get())) > 0;) {
            text.append(buffer, size);
        }
        return text;
    }

  private:
    void Restore() {
        std::fflush(nullptr);
        if (m_output.IsOpen()) {
            ::dup2(m_output.Number(), STDOUT_FILENO);
            m_output.Close();
        }
        if (m_error.IsOpen()) {
            ::dup2(m_error.Number(), STDERR_FILENO);
            m_error.Close();
        }
    }

    std::unique_ptr<std::FILE, int (*)(std::FILE *)> m_file;
    Descriptor m_output;
    Descriptor m_error;
};

// The parameter type is spelled differently by the two standard libraries, and in a member's symbol
// not as typeid spells it.
constexpr const char *kSetDirectory[] = {
    "_ZN15CCpIspArgsParse13SetCurrentDirERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE",
    "_ZN15CCpIspArgsParse13SetCurrentDirERKNSt3__112basic_stringIcNS0_11char_traitsIcEENS0_"
    "9allocatorIcEEEE"};

} // namespace

std::optional<LibraryParser> LibraryParser::Find(const ScalerLibrary &library, std::string &error) {
    LibraryParser parser;
    error.clear();
    const auto find = [&](const char *symbol, auto *&slot) {
        if (!ResolveSymbol(library.Handle(), symbol, slot) && error.empty()) {
            error = symbol;
        }
    };
    find("_ZN15CCpIspArgsParseC1Ev", parser.m_construct);
    find("_ZN15CCpIspArgsParse9ParseArgsEiPKPKc", parser.m_parse);
    find("_ZNK15CCpIspArgsParse16GetISPCmdSettingEv", parser.m_getCommand);
    find("_ZNK15CCpIspArgsParse18GetDigitalSignArgsEv", parser.m_getSign);
    if (!ResolveSymbol(library.Handle(), kSetDirectory[0], parser.m_setDirectory)) {
        find(kSetDirectory[1], parser.m_setDirectory);
    }
    // A directory that the encoding cannot express is empty in the library's records, too.
    if (HasNameInRecords(library.Directory())) {
        parser.m_directory = library.Directory().string() + "/";
    }
    return error.empty() ? std::optional(std::move(parser)) : std::nullopt;
}

ParsedLine LibraryParser::Parse(const std::vector<std::string> &arguments) const {
    std::vector<const char *> argv{"ispctl"};
    for (const std::string &argument : arguments) {
        argv.push_back(argument.c_str());
    }
    const int count = static_cast<int>(argv.size());
    argv.push_back(nullptr);
    // Made in the library and never destroyed: its destructor is not a function of the library.
    // What it holds besides its storage is lost, a few strings; the process is short-lived.
#if defined(__SANITIZE_ADDRESS__)
    const __lsan::ScopedDisabler deliberateLeak;
#endif
    void *parser =
        ::operator new(sizeof(CCpIspArgsParse), std::align_val_t(alignof(CCpIspArgsParse)));
    m_construct(parser);
    m_setDirectory(parser, m_directory);
    ParsedLine parsed;
    CapturedStreams captured;
    parsed.accepted = m_parse(parser, count, argv.data()) == 1;
    parsed.printed = captured.Text();
    auto records = std::shared_ptr<Records>(new Records{m_getCommand(parser), m_getSign(parser)});
    parsed.records = std::move(records);
    ::operator delete(parser, std::align_val_t(alignof(CCpIspArgsParse)));
    return parsed;
}

} // namespace ispctl
