#ifndef SCALER_ISP_ARGS_CP_NX_CMD_LIND_PARSE_H
#define SCALER_ISP_ARGS_CP_NX_CMD_LIND_PARSE_H

#include <string_view>
#include <vector>

#include "scaler_isp/abi/Export.h"

/// One long option, the shape of struct option of getopt_long. A null name ends a table.
struct STRUCT_CP_LONG_CMD_UNIT {
    const char *pszName;
    int nHasArg; ///< 0 no argument, 1 required, 2 optional (only after "=")
    int *pnFlag; ///< where nVal is stored; null: the scan returns nVal
    int nVal;
};

/// Scans an argument vector for short options (POSIX getopt) and long ones ("--name",
/// "--name=value", unambiguous abbreviations), and moves the other arguments after them. All state
/// is in the object; names, flags and the short-option string are borrowed and must outlive the
/// scan.
///
/// Usage: register options, call a scan operation until it returns -1, then read GetCmdIndex.
/// argv[0] is the program's name and is never scanned; every diagnostic begins with it. Diagnostics
/// go to standard error.
///
/// A scan operation RETURNS
///   -1                   no options remain; GetCmdIndex is the first other argument, or argc
///   0                    a long option stored its value through its flag pointer
///   the option's nVal    a long option without a flag pointer
///   the character        a short option
///   '?' (63)             an error; GetUnknownChar identifies the option
///   ':' (58)             an option lacks its argument and the short-option string begins with ":"
class SCALER_ISP_API CpNxCmdLindParse {
  public:
    CpNxCmdLindParse();
    virtual ~CpNxCmdLindParse();
    CpNxCmdLindParse(const CpNxCmdLindParse &) = default;
    CpNxCmdLindParse &operator=(const CpNxCmdLindParse &) = default;

    /// Removes all options and resets the scan.
    void Reset();

    /// Each letter is a short option; ":" after it means a required argument, "::" an optional one.
    /// A leading ":" disables the diagnostics. RETURNS 0.
    int AddShortCmds(const char *shortCmds);

    /// Registers long options; a null name is ignored. RETURNS 0. Throws std::bad_alloc, so that no
    /// option is lost unnoticed.
    int AddLongCmd(const char *name, int hasArg, int *flag, int val);
    int AddLongCmds(const STRUCT_CP_LONG_CMD_UNIT *table);

    /// Performs one scan step; reorders the pointers in argv.
    /// \param longIndex  receives the index of the matching long option; may be null.
    int ParseCmdLine(int argc, char *const *argv);
    int ParseCmdLineEx(int argc, char *const *argv, int *longIndex);

    /// As ParseCmdLineEx; long options may also begin with a single "-".
    int ParseCmdLineLong(int argc, char *const *argv, int *longIndex);

    int ParseCmdLineHandler(int argc, char **argv, int *longIndex, int longOnly);

    /// Prepares the first step. RETURNS the short-option string.
    const char *ParseCmdLineInital();

    /// Matches the string at the scan position with the long options. RETURNS as a scan step; -1
    /// means that the caller must scan it as short options.
    int ParseLongCmd(int argc, char **argv, int *longIndex, int longOnly, const char *prefix);

    /// Moves the skipped arguments after the options scanned since; both keep their order.
    void ExchangeAdjacentSubsequence(char **argv);

    char *GetCmdArg();    ///< argument of the option just returned, or null
    int GetCmdIndex();    ///< index of the next element to scan
    int GetUnknownChar(); ///< after an error: the character or the option's value, 0 for a name

  private:
    // Unlike the rest of the class, not exported.
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
