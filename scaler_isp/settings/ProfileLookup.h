#ifndef SCALER_ISP_SETTINGS_PROFILE_LOOKUP_H
#define SCALER_ISP_SETTINGS_PROFILE_LOOKUP_H

#include <string>
#include <string_view>

/// The reader: how the search for a key in the bytes of a file ends.
enum class Lookup {
    Found,
    EndOfSection, ///< at a line without "="
    EndOfFile     ///< without the section, or inside it; a line over the limit is an end too
};

/// Byte for byte.
Lookup LookUpValue(const std::string &file, std::string_view section, std::string_view key,
                   std::string &value);

/// In the encoding of the environment's locale.
Lookup LookUpValue(const std::string &file, std::wstring_view section, std::wstring_view key,
                   std::wstring &value);

#endif
