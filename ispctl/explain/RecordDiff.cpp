#include "explain/RecordDiff.h"

#include <map>

#include "explain/FieldValues.h"

namespace ispctl {
namespace {

constexpr const char *kNotInUse = "not in use";

std::map<std::size_t, FieldValue> ByOffset(RecordKind record, std::string_view bytes) {
    std::map<std::size_t, FieldValue> fields;
    for (FieldValue &field : ReadFields(record, bytes)) {
        fields.emplace(field.offset, std::move(field));
    }
    return fields;
}

// Strings that read the same can differ in what follows their terminator.
std::string TextBesides(const FieldValue &field, const std::string &other) {
    std::string text = TextOf(field);
    return text == other ? text + ", with other bytes after the terminator" : text;
}

} // namespace

std::vector<FieldDifference> CompareRecords(RecordKind record, std::string_view first,
                                            std::string_view second) {
    const auto left = ByOffset(record, first);
    auto right = ByOffset(record, second);
    std::map<std::size_t, FieldDifference> differences;
    for (const auto &[offset, field] : left) {
        const auto found = right.find(offset);
        const bool isBoth = found != right.end();
        if (!isBoth || found->second.bytes != field.bytes) {
            const std::string text = TextOf(field);
            differences[offset] = {record, field.name, offset, text,
                                   isBoth ? TextBesides(found->second, text) : kNotInUse};
        }
        if (isBoth) {
            right.erase(found);
        }
    }
    for (const auto &[offset, field] : right) {
        differences[offset] = {record, field.name, offset, kNotInUse, TextOf(field)};
    }
    std::vector<FieldDifference> list;
    for (auto &[offset, difference] : differences) {
        list.push_back(std::move(difference));
    }
    return list;
}

} // namespace ispctl
