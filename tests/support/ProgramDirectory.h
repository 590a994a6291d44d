#ifndef SCALER_ISP_TESTS_SUPPORT_PROGRAM_DIRECTORY_H
#define SCALER_ISP_TESTS_SUPPORT_PROGRAM_DIRECTORY_H

#include <filesystem>

/// The directory of the running program, without symbolic links. A test that is linked with the
/// library's objects sees it as the library's directory.
std::filesystem::path ProgramDirectory();

#endif
