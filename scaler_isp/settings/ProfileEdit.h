#ifndef SCALER_ISP_SETTINGS_PROFILE_EDIT_H
#define SCALER_ISP_SETTINGS_PROFILE_EDIT_H

#include <string>
#include <string_view>

#include "scaler_isp/settings/ProfileEncoding.h"

/// One key to write. The texts hold no NUL.
template <class Char> struct KeyWrite {
    std::basic_string_view<Char> section;
    std::basic_string_view<Char> key;
    std::basic_string_view<Char> value;
};

/// The writer: what the bytes of a file become when a key is written, by the letter of the rules in
/// ProfileStore.h. False, and `after` holds nothing of use, where a character of the write cannot
/// be expressed in the encoding.
template <class Encoding>
bool EditProfileBytes(Encoding &encoding, const std::string &before,
                      const KeyWrite<typename Encoding::Char> &write, std::string &after);

#endif
