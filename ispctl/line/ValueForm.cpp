#include "line/ValueForm.h"

#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <limits>
#include <optional>

namespace ispctl {
namespace {

using ScalerIspFacts::OptionFacts;

constexpr std::int64_t kLargestNumber = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t kAnyCount = std::numeric_limits<std::size_t>::max();

bool Contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// The decimal numbers of a text, in their order.
std::vector<std::int64_t> NumbersIn(std::string_view text) {
    std::vector<std::int64_t> numbers;
    const char *end = text.data() + text.size();
    for (const char *at = text.data(); at != end;) {
        std::int64_t number = 0;
        const auto result = std::from_chars(at, end, number);
        if (result.ec == std::errc() && *at != '-') {
            numbers.push_back(number);
            at = result.ptr;
        } else {
            ++at;
        }
    }
    return numbers;
}

/// The number right after these words.
std::optional<std::int64_t> NumberAfter(std::string_view text, std::string_view words) {
    const std::size_t at = text.find(words);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    text.remove_prefix(at + words.size());
    std::int64_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() ? std::optional(number) : std::nullopt;
}

ValueForm NumberForm(const OptionFacts &option) {
    ValueForm form;
    form.kind = ValueForm::Kind::Number;
    const std::vector<std::int64_t> numbers = NumbersIn(option.form);
    form.isBounded = !numbers.empty();
    form.first = form.isBounded ? numbers.front() : Contains(option.meaning, "not 0") ? 1 : 0;
    form.last = form.isBounded ? numbers.back() : kLargestNumber;
    form.first = NumberAfter(option.meaning, "at least ").value_or(form.first);
    form.last = NumberAfter(option.meaning, "at most ").value_or(form.last);
    return form;
}

ValueForm BytesForm(const OptionFacts &option) {
    ValueForm form;
    form.kind = ValueForm::Kind::Bytes;
    form.separator = option.form[option.form.find('"') + 1];
    form.fewest = 1;
    const auto most = NumberAfter(option.meaning, "at most ");
    form.most = most ? static_cast<std::size_t>(*most) : kAnyCount;
    const std::vector<std::int64_t> numbers = NumbersIn(option.meaning);
    if (!most && numbers.size() == 2) {
        form.fewest = static_cast<std::size_t>(numbers[0]);
        form.most = static_cast<std::size_t>(numbers[1]);
    }
    return form;
}

/// Words between spaces, or between backticks.
ValueForm KeywordForm(std::string_view text, std::string_view delimiters) {
    ValueForm form;
    form.kind = ValueForm::Kind::Keyword;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of(delimiters), text.size());
        if (end > 0) {
            form.keywords.push_back(text.substr(0, end));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return form;
}

/// Values that say more than those made from FORM and MEANING.
constexpr struct {
    std::string_view option;
    std::string_view value;
} kExamples[] = {
    {"slave", "0x94"},
    {"flagdata", "0x01,0x02"},
    {"write", "0x01.0x02"},
    {"writedata", "0x6E,0x51,0x03"},
};

std::string ExampleFile(const OptionFacts &option) {
    if (option.meaning.starts_with("boot firmware")) {
        return "/srv/fw/boot.bin";
    }
    if (option.meaning.starts_with("further firmware")) {
        return "/srv/fw/panel.bin";
    }
    if (option.meaning.starts_with("the signature")) {
        return "/srv/fw/monitor.bin.sig";
    }
    if (Contains(option.meaning, "settings file")) {
        return "/srv/fw/IspSetting.ini";
    }
    if (Contains(option.meaning, "certificate")) {
        return "/srv/fw/certificate.pem";
    }
    if (Contains(option.meaning, "key")) {
        return "/srv/fw/key.pem";
    }
    return IsPassedAsTyped(option) ? "/tmp/dump.bin" : "/srv/fw/monitor.bin";
}

std::string ExampleNumber(const OptionFacts &option, const ValueForm &form) {
    constexpr unsigned kBanksOfMiB = 16;
    if (option.effect.kind == ScalerIspFacts::Kind::Bank && option.effect.entry > 0) {
        return std::to_string(kBanksOfMiB * option.effect.entry);
    }
    if (!form.isBounded) {
        return option.meaning.starts_with("bytes of") ? "2" : "0x1000";
    }
    return std::to_string(std::clamp<std::int64_t>(3, form.first, form.last));
}

} // namespace

ValueForm FormOf(const OptionFacts &option) {
    if (!option.takesValue) {
        return {};
    }
    if (!option.effect.keywords.empty()) {
        return KeywordForm(option.effect.keywords, " ");
    }
    if (option.form.starts_with('`')) {
        return KeywordForm(option.form, "`, ");
    }
    if (option.form.starts_with("bytes")) {
        return BytesForm(option);
    }
    if (option.form.starts_with("file")) {
        ValueForm form;
        form.kind = ValueForm::Kind::File;
        return form;
    }
    return NumberForm(option);
}

std::string AllowedValue(const OptionFacts &option) {
    const ValueForm form = FormOf(option);
    switch (form.kind) {
    case ValueForm::Kind::Number:
        return form.last == kLargestNumber
                   ? fmt::format("a number from {} to {:#x}", form.first, form.last)
                   : fmt::format("a number from {} to {}", form.first, form.last);
    case ValueForm::Kind::Bytes:
        return fmt::format("bytes from 0 to 255 with \"{}\" between them", form.separator);
    case ValueForm::Kind::Keyword:
        return JoinWithOr({form.keywords.begin(), form.keywords.end()});
    case ValueForm::Kind::File:
        return "the path of a file";
    case ValueForm::Kind::None:
        break;
    }
    return "no value";
}

std::string ExampleValue(const OptionFacts &option) {
    for (const auto &example : kExamples) {
        if (example.option == option.name) {
            return std::string(example.value);
        }
    }
    const ValueForm form = FormOf(option);
    switch (form.kind) {
    case ValueForm::Kind::Number:
        return ExampleNumber(option, form);
    case ValueForm::Kind::Bytes:
        return fmt::format("0x01{}0x02", form.separator);
    case ValueForm::Kind::Keyword:
        return std::string(form.keywords.front());
    case ValueForm::Kind::File:
        return ExampleFile(option);
    case ValueForm::Kind::None:
        break;
    }
    return "";
}

std::string ExampleOf(const OptionFacts &option) {
    const std::string value = ExampleValue(option);
    return fmt::format("--{}{}{}", option.name, value.empty() ? "" : " ", value);
}

bool IsPassedAsTyped(const OptionFacts &option) {
    return option.form == "file as given";
}

std::string JoinWithOr(const std::vector<std::string> &words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        text += i == 0 ? "" : i + 1 == words.size() ? " or " : ", ";
        text += words[i];
    }
    return text;
}

} // namespace ispctl
