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
constexpr std::size_t kMaxDecimalDigits = 18; ///< of numbers that fit into 64 bits

enum class CharKind : std::uint8_t { Other, Blank, Newline, Word, Comma, Opening, Closing, Slash };

struct CharFacts {
    CharKind enumKind = CharKind::Other;
    std::int8_t nDigit = -1; ///< 0..15, or -1
};

constexpr std::array<CharFacts, 128> kAsciiFacts = [] {
    std::array<CharFacts, 128> facts{};
    const auto set = [&](std::string_view characters, CharKind kind) {
        for (const char c : characters) {
            facts[static_cast<std::size_t>(c)].enumKind = kind;
        }
    };
    set(" \t", CharKind::Blank);
    set("\r\n", CharKind::Newline);
    set("0123456789_ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz", CharKind::Word);
    set(",", CharKind::Comma);
    set("{", CharKind::Opening);
    set("}", CharKind::Closing);
    set("/", CharKind::Slash);
    for (const std::string_view digits : {"0123456789ABCDEF", "0123456789abcdef"}) {
        for (std::size_t i = 0; i < digits.size(); ++i) {
            facts[static_cast<std::size_t>(digits[i])].nDigit = static_cast<std::int8_t>(i);
        }
    }
    return facts;
}();

CharFacts FactsOf(wchar_t c) {
    const auto index = static_cast<std::uint32_t>(std::char_traits<wchar_t>::to_int_type(c));
    return index < kAsciiFacts.size() ? kAsciiFacts[index] : CharFacts();
}

CharKind KindOf(wchar_t c) {
    return FactsOf(c).enumKind;
}

/// 0..15, or -1.
int HexDigit(wchar_t c) {
    return FactsOf(c).nDigit;
}

/// Reads the tokens of a text; words are views into it.
class TokenReader {
  public:
    TokenReader(std::wstring_view text, std::size_t pos) : m_text(text), m_pos(pos) {}

    bool AtEnd() const {
        return m_pos >= m_text.size();
    }

    unsigned int Position() const {
        return static_cast<unsigned int>(m_pos);
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
        SkipAll(CharKind::Blank);
        if (AtEnd()) {
            return SCALER_ISP_TOKEN_NONE;
        }
        const std::size_t start = m_pos++;
        switch (KindOf(m_text[start])) {
        case CharKind::Word:
            SkipAll(CharKind::Word);
            m_word = m_text.substr(start, m_pos - start);
            return SCALER_ISP_TOKEN_WORD;
        case CharKind::Newline:
            return SCALER_ISP_TOKEN_LINE_END;
        case CharKind::Comma:
            return SCALER_ISP_TOKEN_COMMA;
        case CharKind::Opening:
            return SCALER_ISP_TOKEN_OPENING_BRACE;
        case CharKind::Closing:
            return SCALER_ISP_TOKEN_CLOSING_BRACE;
        case CharKind::Slash:
            return SkipComment();
        default:
            return SCALER_ISP_TOKEN_NONE;
        }
    }

  private:
    void SkipAll(CharKind kind) {
        while (!AtEnd() && KindOf(m_text[m_pos]) == kind) {
            ++m_pos;
        }
    }

    /// Behind a slash, which may be no comment.
    ScalerIspToken SkipComment() {
        if (!AtEnd() && m_text[m_pos] == L'*') {
            // The search starts after both opening characters, so that "/*/" does not close itself.
            const std::size_t end = m_text.find(L"*/", m_pos + 1);
            m_pos = end != std::wstring_view::npos ? end + 2 : m_text.size();
            return end != std::wstring_view::npos ? SCALER_ISP_TOKEN_COMMENT
                                                  : SCALER_ISP_TOKEN_NONE;
        }
        if (AtEnd() || m_text[m_pos] != L'/') {
            return SCALER_ISP_TOKEN_NONE;
        }
        while (!AtEnd() && KindOf(m_text[m_pos]) != CharKind::Newline) {
            ++m_pos;
        }
        return SCALER_ISP_TOKEN_COMMENT;
    }

    std::wstring_view m_text;
    std::wstring_view m_word;
    std::size_t m_pos;
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

bool HasHexPrefix(std::wstring_view word) {
    return word.size() >= 2 && word[0] == L'0' && (word[1] == L'x' || word[1] == L'X');
}

/// Reads digits, most significant first, truncated to 32 bits; false for any other character.
bool ReadDigits(std::wstring_view digits, int base, unsigned int &value) {
    unsigned int number = 0;
    for (const wchar_t c : digits) {
        const int digit = HexDigit(c);
        if (digit < 0 || digit >= base) {
            return false;
        }
        number = number * static_cast<unsigned int>(base) + static_cast<unsigned int>(digit);
    }
    value = number;
    return true;
}

bool ReadHexNumber(std::wstring_view word, unsigned int &value) {
    if (!HasHexPrefix(word)) {
        return false;
    }
    // The C library is needed only for what has no digits or may be clamped.
    const std::wstring_view digits = word.substr(2);
    return !digits.empty() && digits.size() <= kMaxHexDigits ? ReadDigits(digits, 16, value)
                                                             : ToNumber(word, value);
}

/// A leading zero makes a number octal.
bool ReadDecimalNumber(std::wstring_view word, unsigned int &value) {
    if (word.size() <= kMaxDecimalDigits) {
        return ReadDigits(word, word.front() == L'0' ? 8 : 10, value);
    }
    return std::all_of(word.begin(), word.end(),
                       [](wchar_t c) { return c >= L'0' && c <= L'9'; }) &&
           ToNumber(word, value);
}

unsigned int HexOrZero(std::wstring_view digits) {
    unsigned int value = 0;
    return !digits.empty() && digits.size() <= kMaxHexDigits && ReadDigits(digits, 16, value)
               ? value
               : 0;
}

bool FindDefine(std::wstring_view name, std::wstring_view defines, unsigned int &value) {
    TokenReader reader(defines, 0);
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
    TokenReader reader(text, 0);
    count = 0;
    while (!reader.AtEnd()) {
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
    pos = reader.Position();
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
        pos = reader.Position();
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
