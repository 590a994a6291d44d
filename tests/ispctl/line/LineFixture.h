#ifndef SCALER_ISP_TESTS_ISPCTL_LINE_LINE_FIXTURE_H
#define SCALER_ISP_TESTS_ISPCTL_LINE_LINE_FIXTURE_H

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "line/CheckLine.h"
#include "support/TempFolder.h"

/// A copy of the real library in a directory of its own, with its real parser, and a caller in
/// another directory with these files:
///   f.bin 3 banks   g.bin 1 bank   empty.bin   sub/ a directory   s.sig, k.pem, boot.bin one byte
class LineFixture : public testing::Test {
  protected:
    using Words = std::vector<std::string>;
    using Findings = std::vector<ispctl::Finding>;

    LineFixture();

    /// "@" in a word stands for the caller's directory, "%" for the library's.
    Words Expand(const Words &words) const;
    /// The arguments of a line without quotes.
    Words Line(const std::string &line) const;
    Findings Check(const Words &arguments) const;
    Findings Check(const std::string &line) const {
        return Check(Line(line));
    }
    /// "class name", each finding.
    static Words Names(const Findings &findings);
    static std::string Shown(const Words &arguments, const Findings &findings);

    static const TempFolder &Library();
    const std::string &Here() const {
        return m_here.Path();
    }

    TempFolder m_here;
    ispctl::LineContext m_context;
};

#endif
