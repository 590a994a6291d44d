#include "scaler_isp/common/TextUtil.h"

#include <string_view>

#include "scaler_isp/common/Boundary.h"
#include "scaler_isp/common/Numbers.h"

namespace {

template <class Char> void Trim(std::basic_string<Char> &text) {
    constexpr Char kBlank = ' ';
    const auto last = text.find_last_not_of(kBlank);
    text.erase(last == std::basic_string<Char>::npos ? 0 : last + 1);
    text.erase(0, text.find_first_not_of(kBlank));
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

std::vector<std::string> StringSplit(const std::string &text, const char *delimiters,
                                     int keepEmpty) {
    return ResultOrOnThrow(std::vector<std::string>(), [&] {
        std::vector<std::string> fields;
        const std::string_view set = delimiters != nullptr ? delimiters : "";
        std::string::size_type start = 0;
        for (auto stop = text.find_first_of(set); stop != std::string::npos;
             stop = text.find_first_of(set, start)) {
            if (stop > start || keepEmpty != 0) {
                fields.emplace_back(text, start, stop - start);
            }
            start = stop + 1;
        }
        if (start < text.size()) {
            fields.emplace_back(text, start);
        }
        return fields;
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
