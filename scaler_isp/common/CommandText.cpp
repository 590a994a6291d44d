#include "scaler_isp/common/CommandText.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string_view>

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/TextUtil.h"

namespace {

constexpr std::size_t kWordChars = 256;
constexpr unsigned int kByteValues = 256;
constexpr std::size_t kMaxHexDigits = 8;
constexpr std::size_t kMaxPlainDigits = 8; ///< of numbers that cannot overflow

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

bool IsWordCharacter(wchar_t c) {
    return IsDigit(c) || (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z') || c == L'_';
}

bool IsNewline(wchar_t c) {
    return c == L'\r' || c == L'\n';
}

/// Value of each ASCII character as a digit: 0..15, or -1.
constexpr std::array<int, 128> kHexDigits = [] {
    std::array<int, 128> digits{};
    digits.fill(-1);
    for (std::size_t i = 0; i < 16; ++i) {
        digits[(i < 10 ? U'0' : U'A' - 10) + i] = static_cast<int>(i);
        digits[(i < 10 ? U'0' : U'a' - 10) + i] = static_cast<int>(i);
    }
    return digits;
}();

/// 0..15, or -1.
int HexDigit(wchar_t c) {
    const auto index = static_cast<std::uint32_t>(std::char_traits<wchar_t>::to_int_type(c));
    return index < kHexDigits.size() ? kHexDigits[index] : -1;
}

bool HasHexPrefix(std::wstring_view word) {
    return word.size() >= 2 && word[0] == L'0' && (word[1] == L'x' || word[1] == L'X');
}

/// The position of the next newline, or of the end.
std::size_t FindNewline(std::wstring_view text, std::size_t at) {
    const wchar_t *newline = std::find_if(text.data() + at, text.data() + text.size(),
                                          [](wchar_t c) { return IsNewline(c); });
    return static_cast<std::size_t>(newline - text.data());
}

/// Skips what may precede a number, up to the first character that is none of it.
std::size_t SkipToNumber(std::wstring_view text, std::size_t at) {
    for (; at < text.size(); ++at) {
        switch (text[at]) {
        case L' ':
        case L'\t':
        case L',':
        case L'{':
        case L'\r':
        case L'\n':
            break;
        case L'/':
            if (at + 1 == text.size() || text[at + 1] != L'/') {
                return at;
            }
            at = FindNewline(text, at) - 1;
            break;
        default:
            return at;
        }
    }
    return at;
}

/// Reads a number of few digits and the separator after it. NextValue gives exactly the same, more
/// slowly, and also reads every other form (CommandTextReferenceTest compares both). RETURNS the
/// position past the separator; `pos` for any other form.
std::size_t ParsePlainValue(std::wstring_view text, std::size_t pos, unsigned int &value) {
    std::size_t at = SkipToNumber(text, pos);
    const bool isHex = HasHexPrefix(text.substr(at));
    at += isHex ? 2 : 0;
    const int base = isHex ? 16 : at < text.size() && text[at] == L'0' ? 8 : 10;
    const std::size_t first = at;
    unsigned int number = 0;
    for (; at < text.size(); ++at) {
        const int digit = HexDigit(text[at]);
        if (digit < 0 || digit >= base) {
            break;
        }
        number = number * static_cast<unsigned int>(base) + static_cast<unsigned int>(digit);
    }
    const std::size_t digits = at - first;
    while (at < text.size() && (text[at] == L' ' || text[at] == L'\t')) {
        ++at;
    }
    const wchar_t separator = at < text.size() ? text[at] : L'\0';
    if (digits == 0 || digits > kMaxPlainDigits || (separator != L',' && !IsNewline(separator))) {
        return pos;
    }
    value = number;
    return at + 1;
}

/// Stores consecutive bytes in that form until the buffer is full. RETURNS the position past them.
std::size_t ParsePlainBytes(std::wstring_view text, std::size_t pos, unsigned char *bytes,
                            unsigned int capacity, unsigned int &count) {
    unsigned int stored = count; // a copy, because bytes may alias count, which would be reloaded
    for (; bytes != nullptr && stored < capacity; ++stored) {
        unsigned int value = 0;
        const std::size_t next = ParsePlainValue(text, pos, value);
        if (next == pos || value >= kByteValues) {
            break;
        }
        bytes[stored] = static_cast<unsigned char>(value);
        pos = next;
    }
    count = stored;
    return pos;
}

/// Reads the tokens of a text; words are views into it.
class TokenReader {
  public:
    TokenReader(std::wstring_view text, unsigned int &pos) : m_text(text), m_pos(pos) {}

    bool AtEnd() const {
        return m_pos >= m_text.size();
    }

    /// The last word that Next found.
    std::wstring_view FullWord() const {
        return m_word;
    }

    /// The last word, truncated to the 256 characters that are compared and converted.
    std::wstring_view TruncatedWord() const {
        return m_word.substr(0, kWordChars);
    }

    ScalerIspToken Next() {
        while (!AtEnd() && (Current() == L' ' || Current() == L'\t')) {
            ++m_pos;
        }
        if (AtEnd()) {
            return SCALER_ISP_TOKEN_NONE;
        }
        const wchar_t c = Current();
        if (IsWordCharacter(c)) {
            return ReadWord();
        }
        if (c == L'/' && m_pos + 1 < m_text.size()) {
            if (m_text[m_pos + 1] == L'*') {
                return SkipBlockComment();
            }
            if (m_text[m_pos + 1] == L'/') {
                return SkipLineComment();
            }
        }
        ++m_pos;
        switch (c) {
        case L'\r':
        case L'\n':
            return SCALER_ISP_TOKEN_LINE_END;
        case L',':
            return SCALER_ISP_TOKEN_COMMA;
        case L'{':
            return SCALER_ISP_TOKEN_OPENING_BRACE;
        case L'}':
            return SCALER_ISP_TOKEN_CLOSING_BRACE;
        default:
            return SCALER_ISP_TOKEN_NONE;
        }
    }

  private:
    wchar_t Current() const {
        return m_text[m_pos];
    }

    void AdvanceTo(std::size_t pos) {
        m_pos = static_cast<unsigned int>(pos);
    }

    ScalerIspToken ReadWord() {
        const std::size_t start = m_pos;
        while (!AtEnd() && IsWordCharacter(Current())) {
            ++m_pos;
        }
        m_word = m_text.substr(start, m_pos - start);
        return SCALER_ISP_TOKEN_WORD;
    }

    // The search starts after both opening characters, so that "/*/" does not close itself.
    ScalerIspToken SkipBlockComment() {
        const std::size_t end = m_text.find(L"*/", m_pos + 2);
        if (end == std::wstring_view::npos) {
            AdvanceTo(m_text.size());
            return SCALER_ISP_TOKEN_NONE;
        }
        AdvanceTo(end + 2);
        return SCALER_ISP_TOKEN_COMMENT;
    }

    ScalerIspToken SkipLineComment() {
        AdvanceTo(FindNewline(m_text, m_pos));
        return SCALER_ISP_TOKEN_COMMENT;
    }

    std::wstring_view m_text;
    std::wstring_view m_word;
    unsigned int &m_pos;
};

std::wstring_view View(const wchar_t *text, unsigned int length) {
    return text != nullptr ? std::wstring_view(text, length) : std::wstring_view();
}

std::wstring_view View(const wchar_t *text) {
    return text != nullptr ? std::wstring_view(text) : std::wstring_view();
}

/// Converts a word to an integer as strtol with base 0 does, truncated to 32 bits. Words are ASCII.
bool ToNumber(std::wstring_view word, unsigned int &value) {
    int number = 0;
    if (StringtoInt(std::string(word.begin(), word.end()), number) == 0) {
        return false;
    }
    value = static_cast<unsigned int>(number);
    return true;
}

/// Reads hexadecimal digits, most significant first; false for any other character.
bool ReadHex(std::wstring_view digits, unsigned int &value) {
    unsigned int number = 0;
    for (const wchar_t c : digits) {
        const int digit = HexDigit(c);
        if (digit < 0) {
            return false;
        }
        number = number << 4U | static_cast<unsigned int>(digit);
    }
    value = number;
    return true;
}

bool ReadHexNumber(std::wstring_view word, unsigned int &value) {
    if (!HasHexPrefix(word)) {
        return false;
    }
    // The common case: a number that fits into 32 bits needs no call of the C library.
    if (word.size() > 2 && word.size() <= 2 + kMaxHexDigits) {
        return ReadHex(word.substr(2), value);
    }
    return ToNumber(word, value);
}

bool ReadDecimalNumber(std::wstring_view word, unsigned int &value) {
    return std::all_of(word.begin(), word.end(), IsDigit) && ToNumber(word, value);
}

unsigned int HexOrZero(std::wstring_view digits) {
    unsigned int value = 0;
    return !digits.empty() && digits.size() <= kMaxHexDigits && ReadHex(digits, value) ? value : 0;
}

bool FindDefine(std::wstring_view name, std::wstring_view defines, unsigned int &value) {
    unsigned int pos = 0;
    TokenReader reader(defines, pos);
    do {
        if (reader.AtEnd()) {
            return false;
        }
    } while (reader.Next() != SCALER_ISP_TOKEN_WORD || reader.TruncatedWord() != name);
    if (reader.Next() != SCALER_ISP_TOKEN_WORD) {
        return false;
    }
    const std::wstring_view word = reader.TruncatedWord();
    if (HasHexPrefix(word)) {
        value = HexOrZero(word.substr(2));
        return true;
    }
    return ReadDecimalNumber(word, value);
}

/// Skips the tokens that may precede a word. RETURNS 1 at a word, else the result of FindNextBytes.
ScalerIspToken SkipToWord(TokenReader &reader) {
    while (!reader.AtEnd()) {
        const ScalerIspToken token = reader.Next();
        if (token == SCALER_ISP_TOKEN_WORD || token == SCALER_ISP_TOKEN_NONE ||
            token == SCALER_ISP_TOKEN_CLOSING_BRACE) {
            return token;
        }
    }
    return SCALER_ISP_TOKEN_CLOSING_BRACE;
}

/// Skips the tokens that may appear between a value and its separator.
ScalerIspToken SkipToSeparator(TokenReader &reader) {
    ScalerIspToken last = SCALER_ISP_TOKEN_WORD;
    while (!reader.AtEnd()) {
        last = reader.Next();
        switch (last) {
        case SCALER_ISP_TOKEN_COMMA:
        case SCALER_ISP_TOKEN_LINE_END:
        case SCALER_ISP_TOKEN_CLOSING_BRACE:
            return SCALER_ISP_TOKEN_WORD;
        case SCALER_ISP_TOKEN_NONE:
            return last;
        default:
            break;
        }
    }
    return last;
}

ScalerIspToken NextValue(TokenReader &reader, const wchar_t *defines, unsigned int &value) {
    if (reader.AtEnd()) {
        return SCALER_ISP_TOKEN_NONE;
    }
    const ScalerIspToken token = SkipToWord(reader);
    if (token != SCALER_ISP_TOKEN_WORD) {
        return token;
    }
    const std::wstring_view word = reader.TruncatedWord();
    const bool found = ReadHexNumber(word, value) || ReadDecimalNumber(word, value) ||
                       (defines != nullptr && FindDefine(word, View(defines), value));
    return found ? SkipToSeparator(reader) : SCALER_ISP_TOKEN_NONE;
}

/// What happens to a value that no longer fits into the buffer.
enum class WhenFull { Stop, Fail };

/// Reads all values of a text as bytes. False for a value above 255, or for one that does not fit
/// if that is to fail.
bool ReadByteList(std::wstring_view text, unsigned char *bytes, unsigned int capacity,
                  WhenFull whenFull, unsigned int &count) {
    unsigned int pos = 0;
    TokenReader reader(text, pos);
    while (!reader.AtEnd()) {
        pos = static_cast<unsigned int>(ParsePlainBytes(text, pos, bytes, capacity, count));
        if (whenFull == WhenFull::Stop && count != 0 && count == capacity) {
            break;
        }
        unsigned int value = 0;
        if (NextValue(reader, nullptr, value) != SCALER_ISP_TOKEN_WORD) {
            continue;
        }
        if (value >= kByteValues || count == capacity || bytes == nullptr) {
            return false;
        }
        bytes[count++] = static_cast<unsigned char>(value);
    }
    return true;
}

} // namespace

int GetNextWord(wchar_t *text, unsigned int &pos, unsigned int length, wchar_t *word,
                unsigned int wordCapacity) {
    TokenReader reader(View(text, length), pos);
    const ScalerIspToken token = reader.Next();
    if (token == SCALER_ISP_TOKEN_WORD && word != nullptr) {
        std::fill_n(word, wordCapacity, L'\0');
        reader.FullWord().copy(word, wordCapacity);
    }
    return token;
}

unsigned int FindNextBytes(wchar_t *text, unsigned int &pos, unsigned int length, wchar_t *defines,
                           unsigned int *value) {
    return CatchAll(0U, [&] {
        TokenReader reader(View(text, length), pos);
        unsigned int found = value != nullptr ? *value : 0;
        const ScalerIspToken token = NextValue(reader, defines, found);
        if (value != nullptr) {
            *value = found;
        }
        return static_cast<unsigned int>(token);
    });
}

int CmdToBin(wchar_t *text, unsigned int length, unsigned char *bytes, unsigned int capacity) {
    return CatchAll(0, [&] {
        unsigned int count = 0;
        const bool read = ReadByteList(View(text, length), bytes, capacity, WhenFull::Stop, count);
        return read ? static_cast<int>(count) : 0;
    });
}

int EDIDToBin(wchar_t *text, unsigned int length, unsigned char *bytes, unsigned int capacity) {
    return CatchAll(0, [&] {
        unsigned int count = 0;
        if (!ReadByteList(View(text, length), bytes, capacity, WhenFull::Fail, count)) {
            return 0;
        }
        const unsigned int sum = std::accumulate(bytes, bytes + count, 0U);
        return sum % kByteValues == 0 ? static_cast<int>(count) : 0;
    });
}

int GetDefineValue(wchar_t *name, wchar_t *defines, unsigned int *value) {
    return CatchAll(0, [&] {
        unsigned int found = 0;
        if (!FindDefine(View(name), View(defines), found)) {
            return 0;
        }
        if (value != nullptr) {
            *value = found;
        }
        return 1;
    });
}

unsigned int HexStrToInt(wchar_t *digits, unsigned char count) {
    if (digits == nullptr || count > kMaxHexDigits) {
        return 0;
    }
    // A terminator is not a digit, so a shorter string is never read beyond its end.
    const wchar_t *end =
        std::find_if(digits, digits + count, [](wchar_t c) { return HexDigit(c) < 0; });
    return end == digits + count ? HexOrZero({digits, count}) : 0;
}

unsigned int HexStrToInt(CCpNxString &digits, unsigned char count) {
    return digits.size() < count ? 0 : HexStrToInt(digits.GetBuffer(), count);
}

int ConvetStringToByteArry(std::string text, unsigned char *bytes, unsigned int capacity) {
    return CatchAll(0, [&] {
        unsigned int count = 0;
        for (const std::string &piece : StringSplit(text, ",", 0)) {
            int value = 0;
            if (bytes == nullptr || StringtoInt(piece, value) == 0 || value < 0 ||
                value >= static_cast<int>(kByteValues)) {
                return 0;
            }
            bytes[count++] = static_cast<unsigned char>(value);
            if (count == capacity) {
                break;
            }
        }
        return static_cast<int>(count);
    });
}
