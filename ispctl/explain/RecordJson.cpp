#include "explain/RecordJson.h"

#include "JsonText.h"
#include "explain/FieldValues.h"

namespace ispctl {
namespace {

Json PlainValue(const FieldValue &field) {
    switch (field.kind) {
    case FieldKind::WIDE:
    case FieldKind::NARROW:
        return StringOf(field).text;
    case FieldKind::BYTES:
    case FieldKind::BANKS:
        return ElementsOf(field);
    case FieldKind::U64:
        return static_cast<std::uint64_t>(NumberOf(field));
    default:
        return NumberOf(field);
    }
}

/// The object that holds the last part of a dotted name, which is left in name.
Json &ObjectOf(Json &record, const FieldValue &field, std::string &name) {
    name = field.name;
    Json *object = &record;
    for (auto dot = name.find('.'); dot != std::string::npos; dot = name.find('.')) {
        const std::string part = name.substr(0, dot);
        name.erase(0, dot + 1);
        object = field.bankEntry && part.ends_with(']') ? &(*object)["stFwBank"][*field.bankEntry]
                                                        : &(*object)[part];
    }
    return *object;
}

} // namespace

Json RecordValues(RecordKind record, std::string_view bytes) {
    Json values = Json::object();
    for (const FieldValue &field : ReadFields(record, bytes)) {
        std::string name;
        Json &object = ObjectOf(values, field, name);
        object[name] = PlainValue(field);
        if (field.kind == FieldKind::BANKS) {
            object["stFwBank"] = Json::array();
        }
    }
    return values;
}

Json RecordFieldDetails(RecordKind record, std::string_view bytes, FieldChoice choice) {
    Json details = Json::object();
    for (const FieldValue &field : ReadFields(record, bytes)) {
        if (choice == FieldChoice::NotDefault && field.isDefault) {
            continue;
        }
        details[field.name] = Json{{"offset", field.offset},
                                   {"bytes", HexOf(field.bytes)},
                                   {"text", TextOf(field)},
                                   {"default", field.isDefault}};
    }
    return details;
}

} // namespace ispctl
