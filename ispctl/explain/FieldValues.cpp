#include "explain/FieldValues.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

#include "Utf8.h"
#include "explain/ValueNames.h"
#include "scaler_isp/abi/CommandSetting.h"

namespace ispctl {
namespace {

template <class Number> Number LoadNumber(std::string_view bytes) {
    Number number{};
    std::memcpy(&number, bytes.data(), std::min(sizeof number, bytes.size()));
    return number;
}

bool AllAre(std::string_view bytes, std::int64_t value) {
    return std::all_of(bytes.begin(), bytes.end(),
                       [=](char byte) { return static_cast<unsigned char>(byte) == value; });
}

bool IsNumber(FieldKind kind) {
    return kind == FieldKind::U32 || kind == FieldKind::I32 || kind == FieldKind::U8 ||
           kind == FieldKind::U64;
}

FieldValue ReadField(RecordKind record, const RecordField &row, std::string_view bytes) {
    FieldValue value{record,
                     std::string(row.name),
                     row.kind,
                     row.offset,
                     bytes.substr(row.offset, row.width),
                     std::nullopt,
                     row.defaultValue};
    value.isDefault = IsNumber(row.kind) ? NumberOf(value) == row.defaultValue
                                         : AllAre(value.bytes, row.defaultValue);
    return value;
}

void AppendBankEntries(std::vector<FieldValue> &values, std::string_view record) {
    for (std::size_t i = 0; i < UsedBanks(record); ++i) {
        const std::size_t offset = kBankEntriesOffset + i * kBankEntryBytes;
        const std::string_view entry = record.substr(offset, kBankEntryBytes);
        for (const RecordField &row : BankEntryFields()) {
            FieldValue value = ReadField(RecordKind::Command, row, entry);
            value.name = fmt::format("stMapFw.stFwBank[{}].{}", i, row.name);
            value.offset += offset;
            value.bankEntry = i;
            values.push_back(std::move(value));
        }
    }
}

std::string_view LastPart(std::string_view name) {
    return name.substr(name.rfind('.') + 1);
}

std::string TextOfNumber(const FieldValue &field) {
    const std::int64_t number = NumberOf(field);
    const std::string_view last = LastPart(field.name);
    const auto name = NameOfValue(last, static_cast<std::uint32_t>(number));
    if (!name.empty()) {
        return fmt::format("{} ({})", name, number);
    }
    if (field.kind == FieldKind::U64) {
        return fmt::format("0x{:X}", static_cast<std::uint64_t>(number));
    }
    if (last.starts_with('b') && number <= 1) {
        return number == 0 ? "no (0)" : "yes (1)";
    }
    return number < 10 ? fmt::format("{}", number) : fmt::format("{} (0x{:X})", number, number);
}

std::string TextOfBytes(const FieldValue &field) {
    std::string text;
    for (const std::uint32_t byte : ElementsOf(field)) {
        text += fmt::format("{}{:02X}", text.empty() ? "" : " ", byte);
    }
    const std::string rest = fmt::format("0x{:02X}", field.defaultValue);
    return text.empty() ? "all " + rest : text + ", the rest " + rest;
}

} // namespace

std::size_t UsedBanks(std::string_view commandRecord) {
    const auto count = LoadNumber<std::uint32_t>(
        commandRecord.substr(offsetof(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, stMapFw.ulFwCount)));
    return std::min<std::size_t>(count, SCALER_ISP_MAX_BANKS);
}

std::vector<FieldValue> ReadFields(RecordKind record, std::string_view bytes) {
    std::vector<FieldValue> values;
    for (const RecordField &row : FieldsOf(record)) {
        FieldValue value = ReadField(record, row, bytes);
        if (row.kind != FieldKind::BANKS) {
            values.push_back(std::move(value));
            continue;
        }
        value.bytes = value.bytes.substr(0, UsedBanks(bytes) * sizeof(std::uint32_t));
        value.isDefault = value.bytes.empty();
        values.push_back(std::move(value));
        AppendBankEntries(values, bytes);
    }
    return values;
}

std::int64_t NumberOf(const FieldValue &field) {
    switch (field.kind) {
    case FieldKind::I32:
        return LoadNumber<std::int32_t>(field.bytes);
    case FieldKind::U64:
        return static_cast<std::int64_t>(LoadNumber<std::uint64_t>(field.bytes));
    default:
        return LoadNumber<std::uint32_t>(field.bytes);
    }
}

std::vector<std::uint32_t> ElementsOf(const FieldValue &field) {
    const std::size_t width = field.kind == FieldKind::BANKS ? sizeof(std::uint32_t) : 1;
    std::vector<std::uint32_t> elements;
    for (std::size_t i = 0; i < field.bytes.size(); i += width) {
        elements.push_back(LoadNumber<std::uint32_t>(field.bytes.substr(i, width)));
    }
    while (field.kind == FieldKind::BYTES && !elements.empty() &&
           elements.back() == field.defaultValue) {
        elements.pop_back();
    }
    return elements;
}

FieldString StringOf(const FieldValue &field) {
    if (field.kind == FieldKind::NARROW) {
        const std::string_view text = field.bytes.substr(0, field.bytes.find('\0'));
        auto [shown, escaped] = EscapeBytes(text);
        return {std::move(shown), escaped, text.size() < field.bytes.size()};
    }
    std::wstring text(field.bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), field.bytes.data(), text.size() * sizeof(wchar_t));
    const std::size_t length = std::min(text.find(L'\0'), text.size());
    auto [shown, escaped] = EscapeWide(std::wstring_view(text).substr(0, length));
    return {std::move(shown), escaped, length < text.size()};
}

std::string TextOf(const FieldValue &field) {
    switch (field.kind) {
    case FieldKind::WIDE:
    case FieldKind::NARROW: {
        const FieldString text = StringOf(field);
        return fmt::format("\"{}\"{}", text.text,
                           text.terminated ? "" : " (fills the field, no terminator)");
    }
    case FieldKind::BYTES:
        return TextOfBytes(field);
    case FieldKind::BANKS:
        return field.bytes.empty() ? "none" : RangesOf(ElementsOf(field));
    default:
        return TextOfNumber(field);
    }
}

std::string HexOf(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        hex += kDigits[value >> 4U];
        hex += kDigits[value & 0xFU];
    }
    return hex;
}

std::string RangesOf(const std::vector<std::uint32_t> &numbers) {
    std::string text;
    for (std::size_t i = 0; i < numbers.size();) {
        std::size_t end = i + 1;
        while (end < numbers.size() && numbers[end] - numbers[end - 1] == 1) {
            ++end;
        }
        text += text.empty() ? "" : ", ";
        text += end - i > 1 ? fmt::format("{}-{}", numbers[i], numbers[end - 1])
                            : fmt::format("{}", numbers[i]);
        i = end;
    }
    return text;
}

} // namespace ispctl
