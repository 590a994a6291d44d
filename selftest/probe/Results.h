#ifndef SCALER_ISP_SELFTEST_RESULTS_H
#define SCALER_ISP_SELFTEST_RESULTS_H

#include <string>

/// What a group of checks found out, one line per check in a file that run.sh reads: kind, group,
/// check, outcome and detail, separated by tabs. Each line is written at once, so that those before
/// a crash are not lost.
///
///   required  passed | failed             the installation works only if it holds
///   assumed   as assumed | differs        what our pages say about this system
///   noted     -                           nothing was assumed; the detail says how it is
class Results {
  public:
    /// directory is shown as DIR.
    Results(std::string path, std::string group, std::string directory);

    void Require(const std::string &check, bool holds, const std::string &detail);
    /// A note if nothing is assumed, which is "".
    void Assume(const std::string &check, const std::string &assumed, const std::string &found);
    void Note(const std::string &check, const std::string &found);
    /// The last line: without it the group has not run to its end.
    void End();

  private:
    void Write(const char *kind, const std::string &check, const char *outcome,
               const std::string &detail);
    std::string Shown(const std::string &text) const;

    std::string m_path;
    std::string m_group;
    std::string m_directory;
};

#endif
