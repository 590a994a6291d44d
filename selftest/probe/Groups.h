#ifndef SCALER_ISP_SELFTEST_GROUPS_H
#define SCALER_ISP_SELFTEST_GROUPS_H

#include <string>

#include "probe/Results.h"

/// What a group of checks works with.
struct Surroundings {
    Results &results;
    std::string directory; ///< an empty one, absolute, without symbolic links in its path
    std::string library;   ///< a copy of the virtual scaler's directory, which may be changed
};

/// Lines through OperateScaler on the virtual scaler: call_cases.def.
void ProbeCalls(const Surroundings &surroundings);
/// Which path of a loaded library the system reports, and which plug-ins the library then finds.
void ProbeLoading(const Surroundings &surroundings);
/// realpath: realpath_rows.def.
void ProbeRealpath(const Surroundings &surroundings);
/// Names of files, and directories that are opened as files.
void ProbeNames(const Surroundings &surroundings);
/// The locale of the environment.
void ProbeLocale(const Surroundings &surroundings);
/// iconv with values that are not characters.
void ProbeIconv(const Surroundings &surroundings);
/// Stacks and ends of threads.
void ProbeThreads(const Surroundings &surroundings);

/// Prints what kind of file each is: "Mach-O x86_64 arm64 signed", "ELF x86_64", "not a program".
/// RETURNS the exit status.
int DescribeImages(int count, char **paths);

#endif
