#include "explain/ValueNames.h"

#include <algorithm>
#include <iterator>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/args/CommandFacts.h"

namespace ispctl {
namespace {

struct ValueName {
    std::string_view field;
    std::uint32_t value;
    std::string_view name;
};

#define NAMED(FIELD, ENUMERATOR)                                                                   \
    { #FIELD, ENUMERATOR, #ENUMERATOR }
constexpr ValueName kValueNames[] = {
    NAMED(enumActionType, ENUM_ACTION_NONE),
#define SCALER_ISP_ACTION(NAME, BIT, ENUMERATOR, ...) NAMED(enumActionType, ENUMERATOR),
#include "scaler_isp/args/actions.def"
    NAMED(enumDigitalSignatureType, ENUM_SIGN_TYPE_NONE),
    NAMED(enumDigitalSignatureType, ENUM_SIGN_TYPE_SW),
    NAMED(enumDigitalSignatureType, ENUM_SIGN_TYPE_HW),
    NAMED(enumSWDigitalSignatureMode, ENUM_SIGN_SW_MODE_NONE),
    NAMED(enumSWDigitalSignatureMode, ENUM_SIGN_SW_MODE_LENOVO),
    NAMED(enumSWDigitalSignatureMode, ENUM_SIGN_SW_MODE_VXM_INTERNAL),
    NAMED(enumSWDigitalSignatureMode, ENUM_SIGN_SW_MODE_VXM_EXTERNAL),
    NAMED(enumSWDigitalSignatureMode, ENUM_SIGN_SW_MODE_VXM_EXTERNAL_NEXT),
    NAMED(enumHWDigitalSignatureMode, ENUM_SIGN_HW_MODE_NONE),
    NAMED(enumHWDigitalSignatureMode, ENUM_SIGN_HW_MODE_1),
    NAMED(enumHWDigitalSignatureMode, ENUM_SIGN_HW_MODE_2),
    NAMED(enumHWDigitalSignatureMode, ENUM_SIGN_HW_MODE_3),
    NAMED(enumHWDigitalSignatureMode, ENUM_SIGN_HW_MODE_4),
    NAMED(enumSignActionType, ENUM_SIGN_ACTION_NONE),
    NAMED(enumSignActionType, ENUM_SIGN_ACTION_SIGN),
    NAMED(enumSignActionType, ENUM_SIGN_ACTION_VERIFY),
    NAMED(enumVersionLocationType, ENUM_VER_LOC_NONE),
    NAMED(enumVersionLocationType, ENUM_VER_LOC_REG),
    NAMED(enumVersionLocationType, ENUM_VER_LOC_DDCCI),
    NAMED(enumVersionLocationType, ENUM_VER_LOC_FLASH),
    NAMED(enumVersionLocationType, ENUM_VER_LOC_FWBIN),
    NAMED(enumVersionLocationType, ENUM_VER_LOC_CMD),
    NAMED(enumVersionLocationType, ENUM_VER_LOC_FWBINCMD),
    NAMED(enumVersionLocationType, ENUM_VER_LOC_COPYDIFFER),
    NAMED(enumVersionLocationType, ENUM_VER_LOC_USERDEFINED),
    NAMED(enumUserDefinedVersionType, ENUM_USER_DEFINED_VERSION_NONE),
    NAMED(enumUserDefinedVersionType, ENUM_USER_DEFINED_VERSION_1),
    NAMED(enumUserDefinedVersionType, ENUM_USER_DEFINED_VERSION_2),
    NAMED(enumUserDefinedVersionType, ENUM_USER_DEFINED_VERSION_3),
    NAMED(enumUserDefinedVersionType, ENUM_USER_DEFINED_VERSION_4),
    NAMED(enumUserDefinedVersionType, ENUM_USER_DEFINED_VERSION_5),
    NAMED(enumMergeFWInfoMode, ENUM_MERGE_INFO_READ),
    NAMED(enumMergeFWInfoMode, ENUM_MERGE_INFO_WRITE),
    NAMED(enumCommID, COMM_ID_NONE),
    NAMED(enumCommID, COMM_ID_HUB),
    {"enumIspMode", SCALER_ISP_MODE_NORMAL, "normal"},
    {"enumIspMode", SCALER_ISP_MODE_FACTORY, "factory"},
    {"enumBootCodeType", SCALER_ISP_NEW_BOOT_CODE, "new boot code"},
    {"nSlaveAddressState", 0xFFFFFFFF, "not given"},
    {"nSlaveAddressState", 0, "see ucSlaveAddress"},
    {"nSlaveAddressState", 1, "default address"},
};
#undef NAMED

/// A field that holds the position of a keyword, 1 first.
struct KeywordField {
    std::string_view field;
    std::string_view option;
};

constexpr KeywordField kKeywordFields[] = {
    {"enumEdpIspMode", "edpmode"},
    {"enumUserDefinedInfoType", "infotype"},
    {"enumMergeFWGeneration", "mergefwgen"},
    {"enumMergeFWInfoType", "mergeinfotype"},
    {"enumSendExtraCmdMode", "sendextracmd"},
};

/// By index: under the undefined behaviour sanitizer g++ takes pointers into the table for no
/// constants.
constexpr bool HaveKeywords() {
    for (const KeywordField &row : kKeywordFields) {
        bool found = false;
        for (std::size_t i = 0; i < ScalerIspFacts::kOptions.size(); ++i) {
            const auto &option = ScalerIspFacts::kOptions[i];
            found = found || (option.name == row.option && !option.effect.keywords.empty());
        }
        if (!found) {
            return false;
        }
    }
    return true;
}
static_assert(HaveKeywords(), "a row names an option without keywords");

std::string_view KeywordAt(std::string_view keywords, std::uint32_t position) {
    for (; position > 1 && !keywords.empty(); --position) {
        const auto space = keywords.find(' ');
        keywords.remove_prefix(space == std::string_view::npos ? keywords.size() : space + 1);
    }
    return position == 0 ? std::string_view() : keywords.substr(0, keywords.find(' '));
}

} // namespace

std::string_view NameOfValue(std::string_view field, std::uint32_t value) {
    for (const KeywordField &row : kKeywordFields) {
        if (row.field == field) {
            return KeywordAt(ScalerIspFacts::FindOption(row.option)->effect.keywords, value);
        }
    }
    const auto *found =
        std::find_if(std::begin(kValueNames), std::end(kValueNames), [&](const ValueName &row) {
            return row.field == field && row.value == value;
        });
    return found != std::end(kValueNames) ? found->name : std::string_view();
}

} // namespace ispctl
