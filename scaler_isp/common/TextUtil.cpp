#include "scaler_isp/common/TextUtil.h"

#include <cstddef>
#include <string_view>

#include "scaler_isp/common/ExceptionBarrier.h"
#include "scaler_isp/common/Numbers.h"
#include "scaler_isp/common/SplitText.h"

namespace {

template <class Char> void Trim(std::basic_string<Char> &text) {
    constexpr Char kSpace = ' ';
    const auto last = text.find_last_not_of(kSpace);
    text.erase(last == std::basic_string<Char>::npos ? 0 : last + 1);
    text.erase(0, text.find_first_not_of(kSpace));
}

std::vector<std::string> Split(std::string_view text, std::string_view delimiters, bool keepEmpty) {
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (auto stop = text.find_first_of(delimiters); stop != std::string_view::npos;
         stop = text.find_first_of(delimiters, start)) {
        if (stop > start || keepEmpty) {
            fields.emplace_back(text.substr(start, stop - start));
        }
        start = stop + 1;
    }
    // A trailing empty field is never added.
    if (start < text.size()) {
        fields.emplace_back(text.substr(start));
    }
    return fields;
}

} // namespace

int StringtoInt(const std::string &text, int &value) {
    value = -1;
    const char *end = nullptr;
    const long number = ParseLong(text.c_str(), &end);
    if (*end != '\0') {
        return 0;
    }
    value = static_cast<int>(number);
    return 1;
}

std::vector<std::string> SplitText(std::string_view text, std::string_view delimiters) {
    return Split(text, delimiters, false);
}

std::vector<std::string> StringSplit(const std::string &text, const char *delimiters,
                                     int keepEmpty) {
    return CatchAll(std::vector<std::string>(), [&] {
        return Split(text, delimiters != nullptr ? delimiters : "", keepEmpty != 0);
    });
}

void DeleteBlankW(std::wstring &text) {
    std::erase(text, L' ');
}

void StringTrimW(std::wstring &text) {
    Trim(text);
}

void DeleteBlankA(std::string &text) {
    Trim(text);
}

bool ConvertBOOLTobool(int value) {
    return value != 0;
}
