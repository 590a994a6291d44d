// Records field by field: decoding, JSON and comparison.

#include <algorithm>
#include <cstring>
#include <gmock/gmock.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>

#include "explain/FieldValues.h"
#include "explain/RecordDiff.h"
#include "explain/RecordJson.h"
#include "explain/RecordRows.h"
#include "explain/ValueNames.h"
#include "scaler_isp/args/CommandFacts.h"

namespace ispctl {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

/// Bytes of a command record with the defaults of the table.
std::string DefaultCommand() {
    std::string bytes(SizeOf(RecordKind::Command), '\0');
    for (const RecordField &field : FieldsOf(RecordKind::Command)) {
        const bool array = field.kind == FieldKind::BYTES;
        for (std::size_t i = 0; i < field.width; ++i) {
            const bool isNumber = !array && field.width <= 8;
            const auto byte = array      ? field.defaultValue
                              : isNumber ? field.defaultValue >> (8 * i)
                                         : 0;
            bytes[field.offset + i] = static_cast<char>(byte);
        }
    }
    return bytes;
}

void Store(std::string &bytes, std::size_t offset, std::uint32_t number) {
    std::memcpy(bytes.data() + offset, &number, sizeof number);
}

void StoreWide(std::string &bytes, std::size_t offset, const std::wstring &text) {
    std::memcpy(bytes.data() + offset, text.data(), text.size() * sizeof(wchar_t));
}

std::string RandomRecord(RecordKind record, unsigned seed) {
    std::mt19937 random(seed);
    std::string bytes(SizeOf(record), '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    if (record == RecordKind::Command) {
        Store(bytes, 88, seed % 5);
    }
    return bytes;
}

std::string BytesFromHex(const std::string &hex) {
    std::string bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

FieldValue FieldNamed(RecordKind record, const std::string &bytes, const std::string &name) {
    for (FieldValue &field : ReadFields(record, bytes)) {
        if (field.name == name) {
            return field;
        }
    }
    ADD_FAILURE() << "no field " << name;
    return {};
}

std::vector<std::string> NamesOf(const std::vector<FieldDifference> &differences) {
    std::vector<std::string> names;
    for (const FieldDifference &difference : differences) {
        names.push_back(difference.name);
    }
    return names;
}

TEST(RecordRows, Default_record_has_no_row_that_differs) {
    EXPECT_THAT(RowsOf(RecordKind::Command, DefaultCommand(), FieldChoice::NotDefault), IsEmpty());
    EXPECT_THAT(RowsOf(RecordKind::Sign, std::string(SizeOf(RecordKind::Sign), '\0'),
                       FieldChoice::NotDefault),
                IsEmpty());
}

TEST(RecordRows, All_shows_every_field_but_no_unused_bank) {
    EXPECT_THAT(RowsOf(RecordKind::Command, DefaultCommand(), FieldChoice::All),
                SizeIs(FieldsOf(RecordKind::Command).size()));
}

TEST(RecordRows, Consecutive_banks_of_one_file_are_one_row) {
    std::string bytes = DefaultCommand();
    Store(bytes, 88, 3);
    for (std::uint32_t i = 0; i < 3; ++i) {
        const std::size_t entry = kBankEntriesOffset + i * kBankEntryBytes;
        Store(bytes, entry + 8, i == 2 ? 0 : i);
        StoreWide(bytes, entry + 12, i == 2 ? L"/b" : L"/a");
    }
    std::vector<std::string> rows;
    for (const RecordRow &row : RowsOf(RecordKind::Command, bytes, FieldChoice::NotDefault)) {
        rows.push_back(row.name + " " + row.value);
    }
    EXPECT_THAT(rows, ElementsAre("stMapFw.ulFwCount 3", "stMapFw.ulTargetBank 0, 0, 0",
                                  "stMapFw.stFwBank[0..1].ulFileBank 0 to 1",
                                  "stMapFw.stFwBank[0..1].wszFwPath \"/a\"",
                                  "stMapFw.stFwBank[2].ulFileBank 0",
                                  "stMapFw.stFwBank[2].wszFwPath \"/b\""));
}

TEST(RecordFields, Details_of_all_fields_rebuild_the_record) {
    for (const RecordKind record : {RecordKind::Command, RecordKind::Sign}) {
        for (unsigned seed = 0; seed < 5; ++seed) {
            const std::string bytes = RandomRecord(record, seed);
            std::string rebuilt(bytes.size(), '\0');
            const auto details = RecordFieldDetails(record, bytes, FieldChoice::All);
            for (const auto &[name, field] : details.items()) {
                const std::string part = BytesFromHex(field["bytes"]);
                rebuilt.replace(field["offset"], part.size(), part);
            }
            EXPECT_THAT(CompareRecords(record, bytes, rebuilt), IsEmpty());
            const auto differing = std::count_if(
                bytes.begin(), bytes.end(),
                [&, i = std::size_t{0}](char byte) mutable { return byte != rebuilt[i++]; });
            // Padding, unused target banks and unused bank entries.
            const std::size_t used = record == RecordKind::Command ? seed % 5 : 0;
            const std::size_t unused =
                record == RecordKind::Command
                    ? 3 + 4 + 4 + 1 + used * 4 + (512 - used) * (kBankEntryBytes + 4)
                    : 0;
            EXPECT_LE(static_cast<std::size_t>(differing), unused);
        }
    }
}

TEST(RecordJson, Values_are_nested_and_named_as_in_the_header) {
    std::string bytes = DefaultCommand();
    Store(bytes, 88, 1);
    Store(bytes, 92, 7);
    StoreWide(bytes, kBankEntriesOffset + 12, L"/\x20AC.bin");
    bytes[545123] = '\x01';
    const auto values = RecordValues(RecordKind::Command, bytes);
    EXPECT_EQ(values["stMapFw"]["ulFwCount"], 1);
    EXPECT_EQ(values["stMapFw"]["ulTargetBank"], nlohmann::ordered_json::array({7}));
    EXPECT_EQ(values["stMapFw"]["stFwBank"][0]["wszFwPath"], "/\xE2\x82\xAC.bin");
    EXPECT_EQ(values["stMapFw"]["stFwBank"].size(), 1U);
    EXPECT_EQ(values["stI2CWrite"]["ucI2CData"], nlohmann::ordered_json::array({1}));
    EXPECT_EQ(values["nSlaveAddressState"], -1);
    EXPECT_EQ(values["ucSlaveAddress"], 0x94);
}

TEST(RecordJson, Count_above_512_shows_512_banks) {
    std::string bytes = DefaultCommand();
    Store(bytes, 88, 0xFFFFFFFF);
    const auto values = RecordValues(RecordKind::Command, bytes);
    EXPECT_EQ(values["stMapFw"]["ulFwCount"], 0xFFFFFFFF);
    EXPECT_EQ(values["stMapFw"]["stFwBank"].size(), 512U);
}

struct TextCase {
    std::size_t offset;
    std::uint32_t number;
    const char *field;
    const char *text;
};

TEST(RecordFields, Numbers_are_shown_with_their_names) {
    const TextCase cases[] = {
        {0, 4, "enumActionType", "ENUM_ACTION_ISP (4)"},
        {0, 99, "enumActionType", "99 (0x63)"},
        {32, 2, "enumEdpIspMode", "readver (2)"},
        {32, 3, "enumEdpIspMode", "3"},
        {36, 4, "enumUserDefinedInfoType", "hphwcid (4)"},
        {48, 0xFFFFFFFF, "nSlaveAddressState", "not given (-1)"},
        {60, 1, "bCompareVersion", "yes (1)"},
        {60, 2, "bCompareVersion", "2"},
        {72, 2, "enumIspMode", "factory (2)"},
        {544072, 65536, "stDumpFlash.ulDumpAddr", "65536 (0x10000)"},
    };
    for (const TextCase &row : cases) {
        std::string bytes = DefaultCommand();
        Store(bytes, row.offset, row.number);
        EXPECT_EQ(TextOf(FieldNamed(RecordKind::Command, bytes, row.field)), row.text);
    }
}

TEST(RecordFields, Every_action_has_an_enumerator_name) {
    for (const auto &action : ScalerIspFacts::kActions) {
        EXPECT_THAT(std::string(NameOfValue("enumActionType", action.action)),
                    testing::StartsWith("ENUM_ACTION_"));
    }
}

TEST(RecordFields, Field_without_terminator_is_shown_completely) {
    std::string bytes(SizeOf(RecordKind::Sign), '\0');
    bytes.replace(20, 260, std::string(260, 'x'));
    EXPECT_EQ(TextOf(FieldNamed(RecordKind::Sign, bytes, "szFwFile")),
              "\"" + std::string(260, 'x') + "\" (fills the field, no terminator)");
}

TEST(RecordFields, Bytes_that_are_not_text_are_escaped) {
    std::string bytes(SizeOf(RecordKind::Sign), '\0');
    bytes.replace(20, 2, "\xFF\xFE");
    EXPECT_EQ(TextOf(FieldNamed(RecordKind::Sign, bytes, "szFwFile")), "\"\\xFF\\xFE\"");
    std::string command = DefaultCommand();
    Store(command, 545384, 0xFFFFFFFF);
    EXPECT_THAT(TextOf(FieldNamed(RecordKind::Command, command, "wszSettingFile")),
                HasSubstr("\\x{FFFFFFFF}"));
}

TEST(RecordDiff, Padding_and_unused_banks_are_no_difference) {
    std::string other = DefaultCommand();
    for (const std::size_t offset : {53U, 84U, 2140U, 545379U}) {
        other[offset] = 'x';
    }
    Store(other, 92, 3);
    Store(other, kBankEntriesOffset, 3);
    EXPECT_THAT(CompareRecords(RecordKind::Command, DefaultCommand(), other), IsEmpty());
}

TEST(RecordDiff, Every_other_byte_of_a_field_is_a_difference) {
    const std::string bytes = DefaultCommand();
    for (const RecordField &field : FieldsOf(RecordKind::Command)) {
        if (field.kind == FieldKind::BANKS || field.name == "stMapFw.ulFwCount") {
            continue;
        }
        for (const std::size_t at : {field.offset, field.offset + field.width - 1}) {
            std::string other = bytes;
            other[at] = static_cast<char>(other[at] ^ 0x41);
            EXPECT_THAT(NamesOf(CompareRecords(RecordKind::Command, bytes, other)),
                        ElementsAre(field.name));
        }
    }
}

TEST(RecordDiff, Bytes_after_terminator_are_named_as_such) {
    const std::string bytes(SizeOf(RecordKind::Sign), '\0');
    std::string other = bytes;
    other[30] = 'x';
    const auto differences = CompareRecords(RecordKind::Sign, bytes, other);
    ASSERT_THAT(differences, SizeIs(1));
    EXPECT_EQ(differences[0].second, "\"\", with other bytes after the terminator");
}

TEST(RecordDiff, Bank_of_one_record_only_is_not_in_use_in_the_other) {
    std::string other = DefaultCommand();
    Store(other, 88, 1);
    const auto differences = CompareRecords(RecordKind::Command, DefaultCommand(), other);
    EXPECT_THAT(NamesOf(differences),
                ElementsAre("stMapFw.ulFwCount", "stMapFw.ulTargetBank",
                            "stMapFw.stFwBank[0].ullBankValue", "stMapFw.stFwBank[0].ulFileBank",
                            "stMapFw.stFwBank[0].wszFwPath"));
    EXPECT_EQ(differences[2].first, "not in use");
}

} // namespace
} // namespace ispctl
