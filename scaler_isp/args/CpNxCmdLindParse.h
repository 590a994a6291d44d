#ifndef SCALER_ISP_ARGS_CP_NX_CMD_LIND_PARSE_H
#define SCALER_ISP_ARGS_CP_NX_CMD_LIND_PARSE_H

#include <string_view>
#include <vector>

#include "scaler_isp/abi/Export.h"

/// One long option, the shape of struct option of getopt_long. A null name ends a table.
struct STRUCT_CP_LONG_CMD_UNIT {
    const char *pszName;
    int nHasArg; ///< 0 no argument, 1 required, 2 optional (only taken after "=")
    int *pnFlag; ///< where nVal is stored; null: the scan returns nVal
    int nVal;
};

/// Scans an argument vector for short options (POSIX getopt) and long ones ("--name",
/// "--name=value", unambiguous abbreviations), moving the other arguments behind them. All state is
/// in the object; names, flags and the short-option string are borrowed and must outlive the scan.
///
/// Usage: register options, call a scan operation until it returns -1, then read GetCmdIndex.
/// argv[0] is the program's name and is never scanned; it stands in front of every diagnostic.
/// Diagnostics go to standard error.
///
/// A scan operation RETURNS
///   -1                   no options remain; GetCmdIndex is the first other argument, or argc
///   0                    a long option stored its value through its flag pointer
///   the option's nVal    a long option without a flag pointer
///   the character        a short option
///   '?' (63)             an error; GetUnknownChar names the culprit
///   ':' (58)             an option lacks its argument and the short-option string begins with ":"
class SCALER_ISP_API CpNxCmdLindParse {
  public:
    CpNxCmdLindParse();
    virtual ~CpNxCmdLindParse();
    CpNxCmdLindParse(const CpNxCmdLindParse &) = default;
    CpNxCmdLindParse &operator=(const CpNxCmdLindParse &) = default;

    /// Forgets all options and starts afresh.
    void Reset();

    /// A letter a short option; ":" behind it a required argument, "::" an optional one. A leading
    /// ":" silences the diagnostics. RETURNS 0.
    int AddShortCmds(const char *shortCmds);

    /// Registers long options; a name that is null is left out. RETURNS 0. Throws std::bad_alloc:
    /// an option must not get lost without a word.
    int AddLongCmd(const char *name, int hasArg, int *flag, int val);
    int AddLongCmds(const STRUCT_CP_LONG_CMD_UNIT *table);

    /// One scan step; reorders the pointers in argv.
    /// \param longIndex  receives the index of a long option that matched; may be null.
    int ParseCmdLine(int argc, char *const *argv);
    int ParseCmdLineEx(int argc, char *const *argv, int *longIndex);

    /// As ParseCmdLineEx; long options may also begin with a single "-".
    int ParseCmdLineLong(int argc, char *const *argv, int *longIndex);

    int ParseCmdLineHandler(int argc, char **argv, int *longIndex, int longOnly);

    /// Set-up of the first step. RETURNS the short-option string.
    const char *ParseCmdLineInital();

    /// Matches the text at the scan position with the long options. RETURNS as a scan step; -1 asks
    /// the caller to scan it as short options.
    int ParseLongCmd(int argc, char **argv, int *longIndex, int longOnly, const char *prefix);

    /// Moves the skipped arguments behind the options scanned since; both keep their order.
    void ExchangeAdjacentSubsequence(char **argv);

    char *GetCmdArg();    ///< argument of the option just returned, or null
    int GetCmdIndex();    ///< index of the next element to scan
    int GetUnknownChar(); ///< after an error: the character or the option's value, 0 for a name

  private:
    // Not for other binaries, unlike the rest of the class.
    SCALER_ISP_INTERNAL int ParseShortCmd(int argc, char **argv);
    SCALER_ISP_INTERNAL int ParseElement(int argc, char **argv, int *longIndex, int longOnly);
    SCALER_ISP_INTERNAL void MoveOptionsForward(char **argv);
    SCALER_ISP_INTERNAL int MissingArgument() const;
    SCALER_ISP_INTERNAL int AcceptLongCmd(int argc, char **argv, int *longIndex, const char *prefix,
                                          const STRUCT_CP_LONG_CMD_UNIT &unit, char *value);
    SCALER_ISP_INTERNAL void PrintAmbiguity(char **argv, const char *prefix, std::string_view name,
                                            int longOnly) const;

    std::vector<STRUCT_CP_LONG_CMD_UNIT> m_vecLongCmds;
    const char *m_pszShortCmds;
    int m_bInitialized;
    char *m_pszNextChar;
    int m_nFirstNonOpt;
    int m_nLastNonOpt;
    char *m_pszCmdArg;
    int m_nCmdIndex;
    int m_bPrintErr;
    int m_nUnknownChar;
};

#endif
