#include "scaler_isp/settings/ProfileLookup.h"

#include <cstddef>

#include "scaler_isp/settings/ProfileEncoding.h"
#include "scaler_isp/settings/ProfileLines.h"

namespace {

template <class Char>
Lookup FindKey(ProfileLineReader<Char> &lines, std::basic_string_view<Char> key,
               std::basic_string_view<Char> &value) {
    std::basic_string_view<Char> line;
    while (lines.Next(line)) {
        const std::size_t equals = line.find(Char('='));
        if (equals == line.npos) {
            return Lookup::EndOfSection;
        }
        if (TrimBlanks(line.substr(0, equals)) == key) {
            value = TrimBlanks(line.substr(FindLastEquals(line) + 1));
            return Lookup::Found;
        }
    }
    return Lookup::EndOfFile;
}

template <class Char>
Lookup FindValue(ProfileLineReader<Char> &lines, std::basic_string_view<Char> section,
                 std::basic_string_view<Char> key, std::basic_string_view<Char> &value) {
    const std::basic_string<Char> header = ProfileHeader(section);
    std::basic_string_view<Char> line;
    while (lines.Next(line)) {
        if (line == header) {
            return FindKey(lines, key, value);
        }
    }
    return Lookup::EndOfFile;
}

/// What stands for the text in the file; where nothing can, a text that no line contains.
std::string EncodedOrNowhere(const NativeEncoding &encoding, std::wstring_view text) {
    std::string bytes;
    return encoding.Encode(text, bytes) ? bytes : "\n";
}

} // namespace

Lookup LookUpValue(const std::string &file, std::string_view section, std::string_view key,
                   std::string &value) {
    ProfileLineReader<char> lines(file);
    std::string_view found;
    const Lookup result = FindValue(lines, section, key, found);
    value = found;
    return result;
}

Lookup LookUpValue(const std::string &file, std::wstring_view section, std::wstring_view key,
                   std::wstring &value) {
    NativeEncoding encoding;
    const FileForm form = encoding.Take(file);
    if (form != FileForm::Other) {
        // Characters differ where bytes differ, so the file need not be converted as a whole.
        ProfileLineReader<char> lines(file);
        std::string_view found;
        const Lookup result = FindValue<char>(lines, EncodedOrNowhere(encoding, section),
                                              EncodedOrNowhere(encoding, key), found);
        // But a line over the limit of bytes can be one within the limit of characters.
        if (form == FileForm::OneByteEach || result != Lookup::EndOfFile || !lines.StoppedEarly()) {
            value = encoding.DecodePart(found);
            return result;
        }
    }
    const std::wstring text = encoding.Decode(file);
    ProfileLineReader<wchar_t> lines(text);
    std::wstring_view found;
    const Lookup result = FindValue(lines, section, key, found);
    value = found;
    return result;
}
