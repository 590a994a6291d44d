#ifndef SCALER_ISP_SELFTEST_SCRATCH_H
#define SCALER_ISP_SELFTEST_SCRATCH_H

#include <string>
#include <vector>

/// Files of the directory in which a group works. A file that cannot be written ends the program
/// with a message: what comes after it would mean nothing.

void WriteFile(const std::string &path, const std::string &content);
/// RETURNS "" if the file cannot be read.
std::string ReadFile(const std::string &path);
/// The copy may be executed.
void CopyFile(const std::string &from, const std::string &to);
void MakeDirectory(const std::string &path);
void MakeLink(const std::string &target, const std::string &path);
/// Without "." and "..", in the order of the system.
std::vector<std::string> NamesIn(const std::string &directory);
/// "success", "ENOENT" and so on; its number if it has no name here.
std::string ErrorName(int number);

#endif
