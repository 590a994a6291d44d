#include "scaler_isp/settings/IniEdit.h"

#include <algorithm>
#include <cstdio>
#include <string>

#include "scaler_isp/common/AtomicFile.h"
#include "scaler_isp/settings/IniText.h"

namespace {

/// Converts key and value to the form of the file that was decoded last. False if the file cannot
/// hold them.
bool Convert(const TextFileEncoding &encoding, const IniWrite &write, std::string &key,
             std::string &value) {
    return encoding.ToText(write.key, key) && encoding.ToText(write.value, value) &&
           encoding.CanEncode(value);
}

} // namespace

// A map of 512 banks is 1,537 keys, and written one at a time each of them would read and replace
// the file. Writes are therefore applied to the decoded lines as long as decoding the result again
// would give the same lines; otherwise the text is encoded and decoded in between.
std::size_t EditIniBytes(TextFileEncoding &encoding, const std::string &before,
                         std::wstring_view section, IniWrites writes, std::string &after) {
    std::size_t written = 0;
    std::string name;
    std::string key;
    std::string value;
    after = before;
    while (!writes.empty()) {
        const std::string text = encoding.Decode(after);
        const bool hasName = encoding.ToText(section, name);
        const bool roundTrips =
            writes.size() > 1 && encoding.IsAsciiCompatible() && encoding.RoundTrips(text);
        IniText ini(encoding, text, name);
        std::size_t applied = 0;
        do {
            if (hasName && Convert(encoding, writes.front(), key, value)) {
                ini.Write(key, value);
                ++applied;
            }
            writes = writes.subspan(1);
        } while (!writes.empty() && roundTrips && ini.IsDecodedTheSame());
        std::string bytes;
        if (applied != 0 && encoding.Encode(ini.Text(), bytes)) {
            after.swap(bytes);
            written += applied;
        }
    }
    return written;
}

std::size_t CountEncodableWrites(TextFileEncoding &encoding, const std::string &file,
                                 IniWrites writes) {
    encoding.Decode(file);
    std::string key;
    std::string value;
    return static_cast<std::size_t>(
        std::count_if(writes.begin(), writes.end(),
                      [&](const IniWrite &write) { return Convert(encoding, write, key, value); }));
}

int EditIniFile(const std::string &path, TextFileEncoding::Charset charset,
                std::wstring_view section, IniWrites writes) {
    TextFileEncoding encoding(charset);
    AtomicFile file(path);
    std::string after;
    if (EditIniBytes(encoding, file.Bytes(), section, writes, after) == 0) {
        return 0;
    }
    const SaveResult result = file.Replace(after);
    if (result == SaveResult::CannotOpen) {
        for (auto left = CountEncodableWrites(encoding, file.Bytes(), writes); left > 0; --left) {
            std::printf("Open file error \n");
        }
    }
    return result == SaveResult::Written ? 1 : 0;
}
