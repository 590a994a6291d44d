#include "isp/RecordLine.h"

#include <algorithm>

#include "common/FieldList.h"
#include "common/Text.h"

namespace virtual_scaler {
namespace {

using Map = STRUCT_C_STYLE_MAP_FW;

bool Continues(const Map &map, std::uint32_t i) {
    const auto &previous = map.stFwBank[i - 1];
    const auto &entry = map.stFwBank[i];
    return map.ulTargetBank[i] == map.ulTargetBank[i - 1] + 1 &&
           entry.ulFileBank == previous.ulFileBank + 1 &&
           entry.ullBankValue == previous.ullBankValue &&
           std::equal(std::begin(entry.wszFwPath), std::end(entry.wszFwPath), previous.wszFwPath);
}

std::string Range(std::uint32_t first, std::uint32_t last) {
    return first == last ? Format("%u", first) : Format("%u..%u", first, last);
}

std::string BankRun(const Map &map, std::uint32_t first, std::uint32_t last) {
    const auto &entry = map.stFwBank[first];
    std::string text = Range(map.ulTargetBank[first], map.ulTargetBank[last]) + " <- " +
                       Quoted(FromWide(entry.wszFwPath, SCALER_ISP_PATH_CHARS)) + ' ' +
                       Range(entry.ulFileBank, map.stFwBank[last].ulFileBank);
    if (entry.ullBankValue != 0) {
        text += Format(" value 0x%llX", static_cast<unsigned long long>(entry.ullBankValue));
    }
    return text;
}

void AddBankMap(FieldList &fields, const Map &map) {
    const std::uint32_t count = std::min<std::uint32_t>(map.ulFwCount, SCALER_ISP_MAX_BANKS);
    std::string runs;
    for (std::uint32_t first = 0; first < count;) {
        std::uint32_t last = first;
        while (last + 1 < count && Continues(map, last + 1)) {
            ++last;
        }
        runs += (runs.empty() ? "" : ", ") + BankRun(map, first, last);
        first = last + 1;
    }
    if (!runs.empty()) {
        fields.Add("banks", '[' + runs + ']');
    }
}

} // namespace

// One macro per kind of field in the table. The target banks are printed with the entries of the
// bank map.
#define ADD_U32(NAME, VALUE, DEFAULT) fields.AddNumber(NAME, VALUE, DEFAULT);
#define ADD_I32(NAME, VALUE, DEFAULT) ADD_U32(NAME, VALUE, DEFAULT)
#define ADD_U8(NAME, VALUE, DEFAULT) ADD_U32(NAME, VALUE, DEFAULT)
#define ADD_BYTES(NAME, VALUE, DEFAULT) fields.AddBytes(NAME, VALUE, DEFAULT);
#define ADD_WIDE(NAME, VALUE, DEFAULT) fields.AddText(NAME, VALUE);
#define ADD_NARROW(NAME, VALUE, DEFAULT) ADD_WIDE(NAME, VALUE, DEFAULT)
#define ADD_BANKS(NAME, VALUE, DEFAULT)

std::string RecordLine(const char *function, const Setting &setting) {
    FieldList fields(function);
#define SCALER_ISP_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT)                                     \
    ADD_##KIND(#MEMBER, setting.MEMBER, DEFAULT)
#define SCALER_ISP_BANK_ENTRIES(OFFSET, WIDTH) AddBankMap(fields, setting.stMapFw);
#include "scaler_isp/abi/command_setting_fields.def"
    return fields.Line();
}

} // namespace virtual_scaler
