#include "explain/RecordRows.h"

#include <fmt/format.h>

#include "explain/FieldValues.h"

namespace ispctl {
namespace {

constexpr std::size_t kShownBytes = 16;
constexpr std::size_t kShownElements = 64;

std::string ShortHex(std::string_view bytes) {
    return bytes.size() <= kShownBytes ? HexOf(bytes) : HexOf(bytes.substr(0, kShownBytes)) + "...";
}

std::string ShortText(const FieldValue &field) {
    const std::size_t count = field.kind == FieldKind::BYTES ? ElementsOf(field).size() : 0;
    if (count <= kShownElements) {
        return TextOf(field);
    }
    return fmt::format("{}... ({} bytes)", TextOf(field).substr(0, kShownElements * 3), count);
}

RecordRow RowOf(const FieldValue &field) {
    return {fmt::format("0x{:04X}", field.offset), field.name, ShortHex(field.bytes),
            ShortText(field)};
}

/// The fields of one bank entry, by kind.
struct BankEntry {
    const FieldValue *value = nullptr;
    const FieldValue *fileBank = nullptr;
    const FieldValue *path = nullptr;
};

BankEntry EntryAt(const std::vector<FieldValue> &fields, std::size_t first) {
    return {&fields[first], &fields[first + 1], &fields[first + 2]};
}

/// Whether the entry is the next bank of the same file.
bool Continues(const BankEntry &last, const BankEntry &next) {
    return next.path->bytes == last.path->bytes && NumberOf(*next.value) == 0 &&
           NumberOf(*last.value) == 0 && NumberOf(*next.fileBank) == NumberOf(*last.fileBank) + 1;
}

/// The entries from fields[first] on that are one file; RETURNS the index of the first field after.
std::size_t AppendFile(std::vector<RecordRow> &rows, const std::vector<FieldValue> &fields,
                       std::size_t first) {
    const std::size_t width = BankEntryFields().size();
    const BankEntry entry = EntryAt(fields, first);
    BankEntry last = entry;
    std::size_t end = first + width;
    while (end < fields.size() && fields[end].bankEntry && Continues(last, EntryAt(fields, end))) {
        last = EntryAt(fields, end);
        end += width;
    }
    const std::size_t from = *entry.path->bankEntry;
    const std::size_t to = *last.path->bankEntry;
    const std::string name = from == to ? fmt::format("stMapFw.stFwBank[{}]", from)
                                        : fmt::format("stMapFw.stFwBank[{}..{}]", from, to);
    if (!entry.value->isDefault) {
        rows.push_back(RowOf(*entry.value));
    }
    RecordRow bank = RowOf(*entry.fileBank);
    bank.name = name + ".ulFileBank";
    if (from != to) {
        bank.value += " to " + TextOf(*last.fileBank);
    }
    rows.push_back(std::move(bank));
    RecordRow path = RowOf(*entry.path);
    path.name = name + ".wszFwPath";
    rows.push_back(std::move(path));
    return end;
}

} // namespace

std::vector<RecordRow> RowsOf(RecordKind record, std::string_view bytes, FieldChoice choice) {
    const std::vector<FieldValue> fields = ReadFields(record, bytes);
    std::vector<RecordRow> rows;
    for (std::size_t i = 0; i < fields.size();) {
        if (choice == FieldChoice::NotDefault && fields[i].bankEntry) {
            i = AppendFile(rows, fields, i);
            continue;
        }
        if (choice == FieldChoice::All || !fields[i].isDefault) {
            rows.push_back(RowOf(fields[i]));
        }
        ++i;
    }
    return rows;
}

} // namespace ispctl
