#ifndef SCALER_ISP_SETTINGS_PROFILE_FILE_H
#define SCALER_ISP_SETTINGS_PROFILE_FILE_H

#include <string>

/// The bytes of a settings file as a whole. Names are UTF-8; no type of file is refused.

struct ProfileBytes {
    bool opened = false;  ///< it could be opened for reading
    bool missing = false; ///< it was not there
    std::string bytes;    ///< up to the first read that failed
};

ProfileBytes ReadProfileFile(const std::string &path);

/// What a writer prints for every key when the file cannot be opened.
constexpr const char *kProfileOpenError = "Open file error \n";

enum class RewriteResult {
    Written,
    CannotOpen, ///< nothing changed
    Restored    ///< the former bytes were put back, as far as possible
};

/// Replaces the contents in place, so that the file keeps its identity, links and rights. Where not
/// all bytes arrive, `before` is put back; a file that was missing is removed again.
RewriteResult RewriteProfileFile(const std::string &path, const std::string &bytes,
                                 const ProfileBytes &before);

#endif
