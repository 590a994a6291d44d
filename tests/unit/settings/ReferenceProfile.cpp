#include "unit/settings/ReferenceProfile.h"

#include <cstddef>

namespace reference {

namespace {

std::wstring DecodeBytes(const std::string &bytes) {
    std::wstring text;
    for (const char byte : bytes) {
        text.push_back(static_cast<wchar_t>(static_cast<unsigned char>(byte)));
    }
    return text;
}

/// The encoding in which this one file is read and written.
Encoding EncodingOf(const std::string &bytes, Encoding encoding) {
    return encoding == Encoding::Utf8 && DecodeUtf8(bytes) ? Encoding::Utf8 : Encoding::Bytes;
}

bool EncodeCharacter(wchar_t character, Encoding encoding, std::string &bytes) {
    const auto code = static_cast<unsigned long>(character);
    const auto put = [&bytes](unsigned long value) { bytes.push_back(static_cast<char>(value)); };
    if (encoding == Encoding::Bytes) {
        put(code);
        return code <= 0xFF;
    }
    if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
        return false;
    }
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 + code / 64);
        put(0x80 + code % 64);
    } else if (code < 0x10000) {
        put(0xE0 + code / 4096);
        put(0x80 + code / 64 % 64);
        put(0x80 + code % 64);
    } else {
        put(0xF0 + code / 262144);
        put(0x80 + code / 4096 % 64);
        put(0x80 + code / 64 % 64);
        put(0x80 + code % 64);
    }
    return true;
}

std::wstring Trimmed(std::wstring text) {
    while (!text.empty() && text[0] == L' ') {
        text.erase(0, 1);
    }
    while (!text.empty() && text[text.size() - 1] == L' ') {
        text.erase(text.size() - 1);
    }
    return text;
}

bool HasEquals(const std::wstring &line) {
    return line.find(L'=') != std::wstring::npos;
}

} // namespace

std::optional<std::wstring> DecodeUtf8(const std::string &bytes) {
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size();) {
        // The shortest spelling of every character is tried; what no character spells is invalid.
        const unsigned lead = static_cast<unsigned char>(bytes[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        if (i + length > bytes.size()) {
            return std::nullopt;
        }
        unsigned long code = length == 1 ? lead : lead % (length == 2 ? 32 : length == 3 ? 16 : 8);
        for (std::size_t k = 1; k < length; ++k) {
            code = code * 64 + static_cast<unsigned char>(bytes[i + k]) % 64;
        }
        std::string again;
        if (!EncodeCharacter(static_cast<wchar_t>(code), Encoding::Utf8, again) ||
            again != bytes.substr(i, length)) {
            return std::nullopt;
        }
        text.push_back(static_cast<wchar_t>(code));
        i += length;
    }
    return text;
}

std::vector<std::wstring> Lines(const std::string &bytes, Encoding encoding) {
    const std::wstring text =
        EncodingOf(bytes, encoding) == Encoding::Utf8 ? *DecodeUtf8(bytes) : DecodeBytes(bytes);
    std::vector<std::wstring> raw;
    std::wstring line;
    for (const wchar_t character : text) {
        if (character == L'\n') {
            raw.push_back(line);
            line.clear();
        } else {
            line.push_back(character);
        }
    }
    if (!line.empty()) {
        raw.push_back(line);
    }
    std::vector<std::wstring> lines;
    for (const std::wstring &one : raw) {
        if (one.size() > 1023) {
            break;
        }
        lines.push_back(one.c_str()); // ends at a NUL
    }
    return lines;
}

Read GetString(const std::string &bytes, Encoding encoding, const std::wstring &section,
               const std::wstring &key, const std::wstring &defaultValue) {
    bool inside = false;
    for (const std::wstring &raw : Lines(bytes, encoding)) {
        const std::wstring line = Trimmed(raw);
        if (!inside) {
            inside = line == L"[" + section + L"]";
        } else if (!HasEquals(line)) {
            return {0, std::nullopt};
        } else if (Trimmed(line.substr(0, line.find(L'='))) == key) {
            const std::wstring value = Trimmed(line.substr(line.rfind(L'=') + 1));
            return {static_cast<unsigned int>(value.size()), value};
        }
    }
    return {0, defaultValue};
}

std::optional<std::string> Write(const std::string &bytes, Encoding encoding,
                                 const std::wstring &section, const std::wstring &key,
                                 const std::wstring &value) {
    const std::vector<std::wstring> lines = Lines(bytes, encoding);
    std::vector<std::wstring> out;
    bool found = false;
    bool written = false;
    std::size_t i = 0;
    while (i < lines.size()) {
        const std::wstring line = Trimmed(lines[i++]);
        out.push_back(line);
        if (line != L"[" + section + L"]") {
            continue;
        }
        found = true;
        while (i < lines.size()) {
            const std::wstring inner = Trimmed(lines[i++]);
            if (!HasEquals(inner)) {
                if (!written) {
                    out.push_back(key + L"=" + value);
                    written = true;
                }
                out.push_back(inner);
                break;
            }
            if (inner.substr(0, inner.find(L'=')) == key) {
                out.push_back(inner.substr(0, inner.rfind(L'=') + 1) + value);
                written = true;
                break;
            }
            out.push_back(inner);
        }
    }
    if (!found) {
        out.push_back(L"[" + section + L"]");
    }
    if (!found || !written) {
        out.push_back(key + L"=" + value);
    }
    const Encoding encodingOfFile = EncodingOf(bytes, encoding);
    std::string result;
    for (const std::wstring &line : out) {
        for (const wchar_t character : line + L"\n") {
            if (!EncodeCharacter(character, encodingOfFile, result)) {
                return std::nullopt;
            }
        }
    }
    return result;
}

std::vector<std::string> SmallFiles(std::size_t count, const std::vector<std::string> &lines) {
    std::vector<std::string> files = {""};
    for (std::size_t begin = 0; count > 0; --count) {
        const std::size_t end = files.size();
        for (std::size_t i = begin; i < end; ++i) {
            for (const std::string &line : lines) {
                files.push_back(files[i] + line + "\n");
            }
        }
        begin = end;
    }
    return files;
}

} // namespace reference
