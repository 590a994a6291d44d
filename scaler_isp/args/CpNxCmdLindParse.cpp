#include "scaler_isp/args/CpNxCmdLindParse.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

constexpr int kEndOfOptions = -1;
constexpr int kNonOption = 1;
constexpr int kError = '?';
constexpr int kMissingArgument = ':';
constexpr int kNotLong = -1;

constexpr int kNoArgument = 0;
constexpr int kRequiredArgument = 1;

// A null element counts as an empty argument, which is never an option.
bool IsNonOption(const char *element) {
    return element == nullptr || element[0] != '-' || element[1] == '\0';
}

bool BeginsWithDoubleDash(const char *element) {
    return element != nullptr && std::strncmp(element, "--", 2) == 0;
}

bool IsDoubleDash(const char *element) {
    return element != nullptr && std::strcmp(element, "--") == 0;
}

const char *ProgramName(char **argv) {
    return argv[0] != nullptr ? argv[0] : "";
}

using Units = std::vector<STRUCT_CP_LONG_CMD_UNIT>;

bool BeginsWith(const char *text, std::string_view name) {
    return name.empty() ||
           (*text == name.front() && std::strncmp(text, name.data(), name.size()) == 0);
}

/// What a name on the command line may mean.
struct LongMatch {
    const STRUCT_CP_LONG_CMD_UNIT *pUnit = nullptr; ///< the exact match, or the first candidate
    bool bAmbiguous = false;
};

/// Whether a later candidate makes the name ambiguous. With a single dash any second candidate
/// does, even an equivalent one; that is how getopt_long_only behaves.
bool Differs(const STRUCT_CP_LONG_CMD_UNIT &first, const STRUCT_CP_LONG_CMD_UNIT &later,
             int longOnly) {
    return longOnly != 0 || first.nHasArg != later.nHasArg || first.pnFlag != later.pnFlag ||
           first.nVal != later.nVal;
}

/// An exact match wins over abbreviations wherever it is registered, so the search cannot stop at
/// the first candidate.
LongMatch FindLongCmd(const Units &units, std::string_view name, int longOnly) {
    LongMatch match;
    for (const STRUCT_CP_LONG_CMD_UNIT &unit : units) {
        if (!BeginsWith(unit.pszName, name)) {
            continue;
        }
        if (unit.pszName[name.size()] == '\0') {
            return {&unit, false};
        }
        if (match.pUnit == nullptr) {
            match.pUnit = &unit;
        } else if (Differs(*match.pUnit, unit, longOnly)) {
            match.bAmbiguous = true;
        }
    }
    return match;
}

} // namespace

CpNxCmdLindParse::CpNxCmdLindParse() { // NOLINT(*-member-init): Reset sets every member
    Reset();
}

CpNxCmdLindParse::~CpNxCmdLindParse() = default;

void CpNxCmdLindParse::Reset() {
    m_vecLongCmds.clear();
    m_pszShortCmds = "";
    m_bInitialized = 0;
    m_pszNextChar = nullptr;
    m_nFirstNonOpt = 1;
    m_nLastNonOpt = 1;
    m_pszCmdArg = nullptr;
    m_nCmdIndex = 1;
    m_bPrintErr = 1;
    m_nUnknownChar = kError;
}

int CpNxCmdLindParse::AddShortCmds(const char *shortCmds) {
    m_pszShortCmds = shortCmds != nullptr ? shortCmds : "";
    return 0;
}

int CpNxCmdLindParse::AddLongCmd(const char *name, int hasArg, int *flag, int val) {
    if (name != nullptr) {
        m_vecLongCmds.push_back({name, hasArg, flag, val});
    }
    return 0;
}

int CpNxCmdLindParse::AddLongCmds(const STRUCT_CP_LONG_CMD_UNIT *table) {
    const STRUCT_CP_LONG_CMD_UNIT *end = table;
    while (end != nullptr && end->pszName != nullptr) {
        ++end;
    }
    m_vecLongCmds.insert(m_vecLongCmds.end(), table, end);
    return 0;
}

int CpNxCmdLindParse::ParseCmdLine(int argc, char *const *argv) {
    return ParseCmdLineEx(argc, argv, nullptr);
}

int CpNxCmdLindParse::ParseCmdLineEx(int argc, char *const *argv, int *longIndex) {
    return ParseCmdLineHandler(argc, const_cast<char **>(argv), longIndex, 0);
}

int CpNxCmdLindParse::ParseCmdLineLong(int argc, char *const *argv, int *longIndex) {
    return ParseCmdLineHandler(argc, const_cast<char **>(argv), longIndex, 1);
}

const char *CpNxCmdLindParse::ParseCmdLineInital() {
    if (m_nCmdIndex == 0) {
        m_nCmdIndex = 1;
    }
    m_nFirstNonOpt = 1;
    m_nLastNonOpt = 1;
    m_pszNextChar = nullptr;
    m_bInitialized = 1;
    return m_pszShortCmds;
}

int CpNxCmdLindParse::ParseCmdLineHandler(int argc, char **argv, int *longIndex, int longOnly) {
    if (argc < 1 || argv == nullptr) {
        return kEndOfOptions;
    }
    m_pszCmdArg = nullptr;
    if (m_nCmdIndex == 0 || m_bInitialized == 0) {
        m_pszShortCmds = ParseCmdLineInital();
    } else if (*m_pszShortCmds == '-' || *m_pszShortCmds == '+') {
        // QUIRK Leading_sign_of_short_options_is_dropped_once_per_call: the first call keeps a
        // leading "-" or "+"; every later call drops one.
        ++m_pszShortCmds;
    }
    if (*m_pszShortCmds == ':') {
        m_bPrintErr = 0;
    }
    if (m_pszNextChar != nullptr && *m_pszNextChar != '\0') {
        return ParseShortCmd(argc, argv);
    }
    return ParseElement(argc, argv, longIndex, longOnly);
}

/// Scans the next element of argv; a cluster of short options that was begun is continued
/// elsewhere.
int CpNxCmdLindParse::ParseElement(int argc, char **argv, int *longIndex, int longOnly) {
    m_nLastNonOpt = std::min(m_nLastNonOpt, m_nCmdIndex);
    m_nFirstNonOpt = std::min(m_nFirstNonOpt, m_nCmdIndex);
    MoveOptionsForward(argv);

    while (m_nCmdIndex < argc && IsNonOption(argv[m_nCmdIndex])) {
        ++m_nCmdIndex;
    }
    m_nLastNonOpt = m_nCmdIndex;
    if (m_nCmdIndex < argc && IsDoubleDash(argv[m_nCmdIndex])) {
        ++m_nCmdIndex;
        MoveOptionsForward(argv);
        m_nLastNonOpt = argc;
        m_nCmdIndex = argc;
    }
    if (m_nCmdIndex >= argc) {
        if (m_nFirstNonOpt != m_nLastNonOpt) {
            m_nCmdIndex = m_nFirstNonOpt;
        }
        return kEndOfOptions;
    }

    char *element = argv[m_nCmdIndex];
    if (IsNonOption(element)) {
        m_pszCmdArg = element;
        ++m_nCmdIndex;
        return kNonOption;
    }
    if (!m_vecLongCmds.empty()) {
        if (element[1] == '-') {
            m_pszNextChar = element + 2;
            return ParseLongCmd(argc, argv, longIndex, longOnly, "--");
        }
        const bool shortLetter =
            element[2] == '\0' && std::strchr(m_pszShortCmds, element[1]) != nullptr;
        if (longOnly != 0 && !shortLetter) {
            m_pszNextChar = element + 1;
            const int result = ParseLongCmd(argc, argv, longIndex, longOnly, "-");
            if (result != kNotLong) {
                return result;
            }
        }
    }
    m_pszNextChar = element + 1;
    return ParseShortCmd(argc, argv);
}

/// Moves the options scanned since the last skipped arguments before those, so that all non-options
/// end up last.
void CpNxCmdLindParse::MoveOptionsForward(char **argv) {
    if (m_nLastNonOpt == m_nCmdIndex) {
        return;
    }
    if (m_nFirstNonOpt != m_nLastNonOpt) {
        ExchangeAdjacentSubsequence(argv);
    } else {
        m_nFirstNonOpt = m_nCmdIndex;
    }
}

int CpNxCmdLindParse::MissingArgument() const {
    return *m_pszShortCmds == ':' ? kMissingArgument : kError;
}

int CpNxCmdLindParse::ParseShortCmd(int argc, char **argv) {
    const char letter = *m_pszNextChar++;
    // The sign stays: a byte above 127 is reported as a negative number.
    const int code = letter; // NOLINT(bugprone-signed-char-misuse)
    const char *spec = std::strchr(m_pszShortCmds, letter);
    const bool lastOfCluster = *m_pszNextChar == '\0';
    if (lastOfCluster) {
        ++m_nCmdIndex;
    }
    if (letter == '\0' || spec == nullptr || letter == ':' || letter == ';') {
        if (m_bPrintErr != 0) {
            std::fprintf(stderr, "%s: invalid option -- '%c'\n", ProgramName(argv), letter);
        }
        m_nUnknownChar = code;
        return kError;
    }
    const int result = static_cast<unsigned char>(letter);
    if (spec[1] != ':') {
        return result;
    }
    if (!lastOfCluster) {
        m_pszCmdArg = m_pszNextChar;
        ++m_nCmdIndex;
    } else if (spec[2] != ':') {
        if (m_nCmdIndex >= argc) {
            if (m_bPrintErr != 0) {
                std::fprintf(stderr, "%s: option requires an argument -- '%c'\n", ProgramName(argv),
                             letter);
            }
            m_nUnknownChar = code;
            m_pszNextChar = nullptr;
            return MissingArgument();
        }
        m_pszCmdArg = argv[m_nCmdIndex++];
    }
    m_pszNextChar = nullptr;
    return result;
}

int CpNxCmdLindParse::ParseLongCmd(int argc, char **argv, int *longIndex, int longOnly,
                                   const char *prefix) {
    if (m_pszNextChar == nullptr) {
        return kError;
    }
    char *text = m_pszNextChar;
    const std::size_t nameLength = std::strcspn(text, "=");
    const std::string_view name(text, nameLength);
    const LongMatch match = FindLongCmd(m_vecLongCmds, name, longOnly);
    if (match.bAmbiguous) {
        PrintAmbiguity(argv, prefix, name, longOnly);
        m_pszNextChar += std::strlen(text);
        ++m_nCmdIndex;
        m_nUnknownChar = 0;
        return kError;
    }
    if (match.pUnit != nullptr) {
        ++m_nCmdIndex;
        m_pszNextChar = nullptr;
        char *value = text[nameLength] == '=' ? text + nameLength + 1 : nullptr;
        return AcceptLongCmd(argc, argv, longIndex, prefix, *match.pUnit, value);
    }
    const bool doubleDash = m_nCmdIndex < argc && BeginsWithDoubleDash(argv[m_nCmdIndex]);
    if (longOnly != 0 && !doubleDash && !name.empty() &&
        std::strchr(m_pszShortCmds, name.front()) != nullptr) {
        return kNotLong;
    }
    if (m_bPrintErr != 0) {
        std::fprintf(stderr, "%s: unrecognized command '%s%s'\n", ProgramName(argv), prefix, text);
    }
    m_pszNextChar = nullptr;
    ++m_nCmdIndex;
    m_nUnknownChar = 0;
    return kError;
}

// QUIRK Ambiguity_lists_later_candidates_line_by_line: the first line holds two candidates, and
// every further candidate has its own line. Candidates after the first are printed even if
// diagnostics are disabled.
void CpNxCmdLindParse::PrintAmbiguity(char **argv, const char *prefix, std::string_view name,
                                      int longOnly) const {
    const STRUCT_CP_LONG_CMD_UNIT *first = nullptr;
    bool announced = m_bPrintErr == 0;
    for (const STRUCT_CP_LONG_CMD_UNIT &unit : m_vecLongCmds) {
        if (!BeginsWith(unit.pszName, name)) {
            continue;
        }
        if (first == nullptr) {
            first = &unit;
        } else if (Differs(*first, unit, longOnly)) {
            if (!announced) {
                std::fprintf(stderr,
                             "%s: command '%s%s' is ambiguous; possibilities:", ProgramName(argv),
                             prefix, m_pszNextChar);
                std::fprintf(stderr, " '%s%s'", prefix, first->pszName);
                announced = true;
            }
            std::fprintf(stderr, " '%s%s'\n", prefix, unit.pszName);
        }
    }
}

int CpNxCmdLindParse::AcceptLongCmd(int argc, char **argv, int *longIndex, const char *prefix,
                                    const STRUCT_CP_LONG_CMD_UNIT &unit, char *value) {
    if (value != nullptr && unit.nHasArg == kNoArgument) {
        if (m_bPrintErr != 0) {
            std::fprintf(stderr, "%s: option '%s%s' doesn't allow an argument\n", ProgramName(argv),
                         prefix, unit.pszName);
        }
        m_nUnknownChar = unit.nVal;
        return kError;
    }
    if (value == nullptr && unit.nHasArg == kRequiredArgument) {
        if (m_nCmdIndex >= argc) {
            if (m_bPrintErr != 0) {
                std::fprintf(stderr, "%s: option '%s%s' requires an argument\n", ProgramName(argv),
                             prefix, unit.pszName);
            }
            m_nUnknownChar = unit.nVal;
            return MissingArgument();
        }
        value = argv[m_nCmdIndex++];
    }
    m_pszCmdArg = value;
    if (longIndex != nullptr) {
        *longIndex = static_cast<int>(&unit - m_vecLongCmds.data());
    }
    if (unit.pnFlag != nullptr) {
        *unit.pnFlag = unit.nVal;
        return 0;
    }
    return unit.nVal;
}

void CpNxCmdLindParse::ExchangeAdjacentSubsequence(char **argv) {
    // Swaps the skipped arguments with the options after them; each block keeps its order.
    if (m_nFirstNonOpt < m_nLastNonOpt && m_nLastNonOpt < m_nCmdIndex) {
        std::rotate(argv + m_nFirstNonOpt, argv + m_nLastNonOpt, argv + m_nCmdIndex);
    }
    m_nFirstNonOpt += m_nCmdIndex - m_nLastNonOpt;
    m_nLastNonOpt = m_nCmdIndex;
}

char *CpNxCmdLindParse::GetCmdArg() {
    return m_pszCmdArg;
}

int CpNxCmdLindParse::GetCmdIndex() {
    return m_nCmdIndex;
}

int CpNxCmdLindParse::GetUnknownChar() {
    return m_nUnknownChar;
}
