#ifndef SCALER_ISP_SETTINGS_PROFILE_EDIT_H
#define SCALER_ISP_SETTINGS_PROFILE_EDIT_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "scaler_isp/settings/ProfileEncoding.h"

/// The writer: what a list of key writes makes of the bytes of a file.

/// One key to write. The texts hold no NUL.
template <class Char> struct KeyWrite {
    std::basic_string_view<Char> section;
    std::basic_string_view<Char> key;
    std::basic_string_view<Char> value;
};

/// The text after one write, by the letter of the rules in ProfileStore.h.
template <class Char>
std::basic_string<Char> EditProfileText(std::basic_string_view<Char> text,
                                        const KeyWrite<Char> &write);

/// The bytes of a file after the writes, one after the other, as if each had read the file anew.
/// RETURNS how many of the writes could be expressed in the encoding; the others change nothing.
template <class Encoding>
std::size_t EditProfileBytes(Encoding &encoding, const std::string &before,
                             const std::vector<KeyWrite<typename Encoding::Char>> &writes,
                             std::string &after);

#endif
