#include "ExpectedRecords.h"

#include <cstring>

#include "support/ProgramDirectory.h"

namespace {

using Command = ExpectedRecords::Command;
using Sign = ExpectedRecords::Sign;

struct Field {
    const char *name;
    std::size_t offset;
    std::size_t width;
};

constexpr Field kCommandFields[] = {
#define SCALER_ISP_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT) {#MEMBER, OFFSET, WIDTH},
#include "scaler_isp/abi/command_setting_fields.def"
};

constexpr Field kBankFields[] = {
#define SCALER_ISP_BANK_FIELD(KIND, MEMBER, OFFSET, WIDTH, DEFAULT) {#MEMBER, OFFSET, WIDTH},
#include "scaler_isp/abi/command_setting_fields.def"
};

constexpr Field kSignFields[] = {
#define SCALER_ISP_SIGN_FIELD(KIND, MEMBER, OFFSET, WIDTH) {#MEMBER, OFFSET, WIDTH},
#include "scaler_isp/abi/digital_sign_fields.def"
};

template <std::size_t N, class Record>
void AddDifferences(const Field (&fields)[N], const Record &expected, const Record &found,
                    const std::string &prefix, std::vector<std::string> &names) {
    for (const Field &field : fields) {
        const auto *left = reinterpret_cast<const unsigned char *>(&expected) + field.offset;
        const auto *right = reinterpret_cast<const unsigned char *>(&found) + field.offset;
        if (std::memcmp(left, right, field.width) != 0) {
            names.push_back(prefix + field.name);
        }
    }
}

template <class Record> void FillBytes(Record &record, unsigned seed) {
    unsigned state = seed;
    for (std::size_t i = 0; i < sizeof record; ++i) {
        state = state * 1664525U + 1013904223U;
        // 0x61 to 0xE0: never zero, so a number of 32 bits is none that an option gives.
        reinterpret_cast<unsigned char *>(&record)[i] =
            static_cast<unsigned char>(0x61 + (state >> 24) % 128);
    }
}

} // namespace

std::string LibraryPath() {
    return ProgramDirectory().string() + "/";
}

void FillRecords(CCpIspArgsParse &parser) {
    const auto command = std::make_unique<Command>();
    FillBytes(*command, 1);
    // A string: the search for a prefix opens the file that this field names.
    std::fill(std::begin(command->wszSettingFile), std::end(command->wszSettingFile), L'w');
    parser.SetISPCmdSetting(*command);
    Sign sign;
    FillBytes(sign, 0x9E3779B9U); // not the same bytes: some fields are in both records
    parser.SetDigitalSignArgs(sign);
}

ExpectedRecords::ExpectedRecords(const CCpIspArgsParse &parser, std::string directory)
    : m_command(new Command(parser.GetISPCmdSetting())), m_sign(parser.GetDigitalSignArgs()),
      m_directory(std::move(directory)) {}

void ExpectedRecords::Plain(ENUM_CP_ISPTOOL_ACTION_TYPE action, Step last) {
    c.enumActionType = action;
    c.enumBootCodeType = 0;
    c.enumIspMode = 1;
    if (last >= Step::Signature) {
        c.enumDigitalSignatureType = ENUM_SIGN_TYPE_NONE;
    }
    if (last >= Step::Location) {
        c.enumVersionLocationType = ENUM_VER_LOC_NONE;
    }
    if (last >= Step::Channel) {
        c.enumCommID = COMM_ID_NONE;
    }
    if (last >= Step::AutoSearch) {
        c.bAutoSearchFW = 0;
    }
    if (last >= Step::Banks) {
        c.stMapFw.ulFwCount = 0;
    }
    if (last >= Step::Switches) {
        c.bCompareVersion = 0;
        c.bIspChannel = 0;
    }
    if (last >= Step::All) {
        DefaultSettingFile();
        NoKeywords();
    }
}

void ExpectedRecords::NoKeywords() {
    c.enumEdpIspMode = 0;
    c.enumUserDefinedInfoType = 0;
    c.enumMergeFWGeneration = 2;
    c.enumMergeFWInfoType = 0;
    c.enumSendExtraCmdMode = 0;
}

void ExpectedRecords::Signed(ENUM_CP_ISPTOOL_ACTION_TYPE action,
                             ENUM_CP_DIGITAL_SIGNATURE_TYPE type, int mode) {
    Plain(action, Step::Action);
    c.enumDigitalSignatureType = type;
    s.enumDigitalSignatureType = type;
    if (mode != 0 && type == ENUM_SIGN_TYPE_SW) {
        s.enumSWDigitalSignatureMode = static_cast<ENUM_CP_DIGITAL_SIGNATURE_SW_MODE>(mode);
    }
    if (mode != 0 && type == ENUM_SIGN_TYPE_HW) {
        s.enumHWDigitalSignatureMode = static_cast<ENUM_CP_DIGITAL_SIGNATURE_HW_MODE>(mode);
    }
    // With either type, whatever the signature record holds.
    c.enumSWDigitalSignatureMode = s.enumSWDigitalSignatureMode;
    for (auto *field : {&s.szFwFile, &s.szSignatureFile, &s.szKeyPair, &s.szVerifyKeyFile,
                        &s.szSignKeyFile, &s.szSubCertFile, &s.szNextVerifyKeyFile}) {
        Text(*field, "");
    }
    Text(c.szBootFwPath, "");
}

void ExpectedRecords::Bank(unsigned target, unsigned fileBank, const std::string &file) {
    const unsigned i = c.stMapFw.ulFwCount++;
    c.stMapFw.ulTargetBank[i] = target;
    c.stMapFw.stFwBank[i].ullBankValue = 0;
    c.stMapFw.stFwBank[i].ulFileBank = fileBank;
    Text(c.stMapFw.stFwBank[i].wszFwPath, Full(file));
}

void ExpectedRecords::FlagData(const std::vector<unsigned char> &bytes) {
    auto &flags = c.stFlagSetting;
    flags.ulFlagCount = static_cast<unsigned>(bytes.size());
    std::fill(std::copy(bytes.begin(), bytes.end(), flags.ucFlagData), std::end(flags.ucFlagData),
              0xFF);
}

void ExpectedRecords::DefaultSettingFile() {
    SettingFileCharacters(LibraryPath() + "IspSetting.ini" + '\0');
}

void ExpectedRecords::SettingFileCharacters(const std::string &path) {
    std::copy(path.begin(), path.end(), c.wszSettingFile);
}

std::vector<std::string> ExpectedRecords::FieldsThatDiffer(const CCpIspArgsParse &parser) const {
    const std::unique_ptr<Command> found(new Command(parser.GetISPCmdSetting()));
    std::vector<std::string> names;
    AddDifferences(kCommandFields, c, *found, "", names);
    for (std::size_t i = 0; i < SCALER_ISP_MAX_BANKS; ++i) {
        AddDifferences(kBankFields, c.stMapFw.stFwBank[i], found->stMapFw.stFwBank[i],
                       "stFwBank[" + std::to_string(i) + "].", names);
    }
    AddDifferences(kSignFields, s, parser.GetDigitalSignArgs(), "sign record: ", names);
    return names;
}
