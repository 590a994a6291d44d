#ifndef ISPCTL_LINE_NAMED_FILE_H
#define ISPCTL_LINE_NAMED_FILE_H

#include <cstdint>
#include <filesystem>
#include <string>

#include "line/CheckLine.h"
#include "line/GivenArguments.h"
#include "line/LineUnderCheck.h"

namespace ispctl {

/// The file that an option of a line names.
struct NamedFile {
    std::filesystem::path path; ///< absolute: where the library, or the plug-in, looks for it
    bool isRelative = false;
    std::filesystem::file_status status;
    std::uintmax_t size = 0; ///< of a regular file

    bool Exists() const {
        return std::filesystem::exists(status);
    }
    bool IsFile() const {
        return std::filesystem::is_regular_file(status);
    }
    std::uintmax_t Banks() const {
        constexpr std::uintmax_t kBankBytes = 0x10000;
        return (size + kBankBytes - 1) / kBankBytes;
    }
};

/// Whether the library takes this path for an absolute one.
bool IsAbsoluteForLibrary(const std::string &path);

/// REQUIRES: the option takes a file, and has a value.
NamedFile FileOf(const GivenArgument &given, const LineContext &context);

/// Whether something is there for the library, or for its caller, who may have meant that.
bool ExistsForLibraryOrCaller(const LineContext &context, const std::string &path);

/// Such as "a directory"; for what is neither a file nor missing.
std::string KindOf(const std::filesystem::file_status &status);

/// Whether the option names a file that is written: a dump, or the signature that --sign makes.
bool IsWritten(const LineUnderCheck &line, const ScalerIspFacts::OptionFacts &option);

/// Whether private copies are made of such a file: firmware, boot firmware, signature.
bool CanBeCopied(const ScalerIspFacts::OptionFacts &option);

/// Why no file can be written there; empty if one can. Nothing is created.
std::string WhyUnwritable(const std::filesystem::path &path);

/// The banks of a flash of 16 MiB.
inline constexpr std::uintmax_t kFlashBanks = 256;

} // namespace ispctl

#endif
