#include "scaler_isp/args/CommandFlow.h"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "scaler_isp/common/BoundedCopy.h"
#include "scaler_isp/common/SplitText.h"
#include "scaler_isp/common/TextConversion.h"
#include "scaler_isp/common/TextUtil.h"

namespace {

constexpr int kLastByteValue = 255;
constexpr int kFirstSignMode = 1;
constexpr int kLastSignMode = 4;
constexpr int kFirstCommId = 1;
constexpr int kLastCommId = 19;
constexpr int kFirstSlave = 1;
constexpr int kLastSlave = 254;
constexpr int kFirstUserDefinedVersion = 1;
constexpr int kLastUserDefinedVersion = 5;
constexpr std::uint32_t kMaxVersionBytes = 256;
constexpr std::uint64_t kFlashAddressEnd = 0x1000000;
constexpr std::uint32_t kDefaultRecordVerMode = 2;
constexpr std::size_t kMinI2CValues = 3;
constexpr std::size_t kMaxI2CValues = 258;
constexpr std::size_t kI2CHeaderValues = 2;
constexpr std::string_view kDumpExtension = ".bin";
constexpr const char *kDefaultDumpName = "dumpFile.bin";

// ConvertVersionLocation relies on this: the enumerators are numbered like the bits of the mask.
static_assert(ENUM_VER_LOC_REG == 1 && ENUM_VER_LOC_USERDEFINED == 8);
constexpr std::uint32_t kLastVersionLocationBit = 1U << (ENUM_VER_LOC_USERDEFINED - 1);

bool ToByte(const std::string &text, unsigned char &byte) {
    int value = 0;
    if (StringtoInt(text, value) == 0 || value < 0 || value > kLastByteValue) {
        return false;
    }
    byte = static_cast<unsigned char>(value);
    return true;
}

bool ToUnsigned(const std::string &text, std::uint32_t &number) {
    int value = 0;
    if (StringtoInt(text, value) == 0) {
        return false;
    }
    number = static_cast<std::uint32_t>(value);
    return true;
}

/// Appends one byte of the merge info. A byte beyond the capacity is counted, because the message
/// prints the count, but not stored.
bool AppendMergeByte(const std::string &piece, STRUCT_MERGE_FW_INFO_SETTING &setting) {
    unsigned char byte = 0;
    if (!ToByte(piece, byte)) {
        return false;
    }
    const std::uint32_t count = setting.ulMergeDataCount++;
    if (count >= SCALER_ISP_MAX_MERGE_BYTES) {
        std::printf("Input Flag Length: 0x%x ,Max Flag Count: 0x%x", setting.ulMergeDataCount,
                    static_cast<unsigned>(SCALER_ISP_MAX_MERGE_BYTES));
        return false;
    }
    setting.ucMergeData[count] = byte;
    return true;
}

/// The mode of --dsmode; 0 for an empty string, which is accepted, and -1 for a rejected one.
int ParseSignatureMode(const std::string &text) {
    if (text.empty()) {
        return 0;
    }
    int value = 0;
    if (StringtoInt(text, value) == 0) {
        std::printf("Parameter illegal! --dsmode %s \n", text.c_str());
        return -1;
    }
    if (value < kFirstSignMode || value > kLastSignMode) {
        std::printf("Parameter out of range! --dsmode %s \n", text.c_str());
        return -1;
    }
    return value;
}

template <class Mode> bool StoreSignatureMode(const std::string &text, Mode &mode) {
    const int value = ParseSignatureMode(text);
    if (value > 0) {
        mode = static_cast<Mode>(value);
    }
    return value >= 0;
}

/// Anything but 0 and 1 selects the default; even a string that is not a number is not an error.
std::uint32_t RecordVerMode(const std::string &text) {
    int value = 0;
    if (text.empty() || StringtoInt(text, value) == 0) {
        return kDefaultRecordVerMode;
    }
    return value == 0 || value == 1 ? static_cast<std::uint32_t>(value) : kDefaultRecordVerMode;
}

bool IsDumpName(const std::string &name) {
    return name.size() > kDumpExtension.size() && name.ends_with(kDumpExtension);
}

} // namespace

bool IsOneBit(std::uint32_t mask) {
    return std::popcount(mask) == 1;
}

ENUM_CP_DIGITAL_SIGNATURE_TYPE SignatureTypeOfBit(std::uint32_t bit) {
    return bit == 1 ? ENUM_SIGN_TYPE_SW : bit == 2 ? ENUM_SIGN_TYPE_HW : ENUM_SIGN_TYPE_NONE;
}

ENUM_CP_MERGE_FW_INFO_MODE MergeModeOfMask(std::uint32_t mask) {
    return mask == 2 ? ENUM_MERGE_INFO_WRITE : ENUM_MERGE_INFO_READ;
}

bool ConvertSignatureMode(const std::string &text, ENUM_CP_DIGITAL_SIGNATURE_SW_MODE &mode) {
    return StoreSignatureMode(text, mode);
}

bool ConvertSignatureMode(const std::string &text, ENUM_CP_DIGITAL_SIGNATURE_HW_MODE &mode) {
    return StoreSignatureMode(text, mode);
}

bool ConvertMergeInfo(const std::string &text, STRUCT_MERGE_FW_INFO_SETTING &setting) {
    if (text.empty()) {
        return true;
    }
    setting = STRUCT_MERGE_FW_INFO_SETTING();
    for (const std::string &piece : SplitText(text, ".")) {
        if (!AppendMergeByte(piece, setting)) {
            std::printf("Parameter illegal! --MergeFw --write %s \n", text.c_str());
            return false;
        }
    }
    return true;
}

bool ConvertVersionLocation(std::uint32_t bit, const std::string &modeText,
                            ENUM_VERSION_LOCATION_TYPE &location,
                            ENUM_USER_DEFINED_VERSION_TYPE &mode) {
    location = IsOneBit(bit) && bit <= kLastVersionLocationBit
                   ? static_cast<ENUM_VERSION_LOCATION_TYPE>(std::bit_width(bit))
                   : ENUM_VER_LOC_NONE;
    if (location != ENUM_VER_LOC_USERDEFINED) {
        return true;
    }
    int value = 0;
    if (StringtoInt(modeText, value) == 0) {
        std::printf("User defined version mode illegal, mode is: %s\n", modeText.c_str());
        return false;
    }
    if (value < kFirstUserDefinedVersion || value > kLastUserDefinedVersion) {
        std::printf("Get user defined version mode fail, mode is: %s\n", modeText.c_str());
        return false;
    }
    mode = static_cast<ENUM_USER_DEFINED_VERSION_TYPE>(value);
    return true;
}

bool ConvertFlashVersion(const RawArgs &args, STRUCT_READ_VERSION_FROM_FLASH_SETTING &setting) {
    if (args.strVerAddr.empty() && args.strTotalVerLen.empty() && args.strMajorVerLen.empty() &&
        args.strSubVerLen.empty()) {
        return true;
    }
    if (args.strVerAddr.empty() || args.strTotalVerLen.empty() || args.strMajorVerLen.empty()) {
        return false;
    }
    // An absent sub length is the empty string, which converts to 0.
    if (!ToUnsigned(args.strVerAddr, setting.ulVerAddr) ||
        !ToUnsigned(args.strTotalVerLen, setting.ulTotalVerLen) ||
        !ToUnsigned(args.strMajorVerLen, setting.ulMajorVerLen) ||
        !ToUnsigned(args.strSubVerLen, setting.ulSubVerLen)) {
        return false;
    }
    setting.enumRecordVerMode = RecordVerMode(args.strRecordVerMode);
    // In 64 bits, because an address near 4 GiB must not wrap into the accepted range.
    const std::uint64_t total = setting.ulTotalVerLen;
    return total <= kMaxVersionBytes &&
           std::uint64_t{setting.ulMajorVerLen} + setting.ulSubVerLen <= total &&
           setting.ulMajorVerLen != 0 && setting.ulVerAddr + total < kFlashAddressEnd;
}

bool ConvertCommId(const std::string &text, STRUCT_ENUM_COMM_ID &id) {
    id = COMM_ID_NONE;
    if (text.empty()) {
        return true;
    }
    int value = 0;
    if (StringtoInt(text, value) == 0) {
        std::printf("Parameter illegal! --comm %s \n", text.c_str());
        return false;
    }
    if (value < kFirstCommId || value > kLastCommId) {
        std::printf("Parameter out of range! --comm %s\n", text.c_str());
        return false;
    }
    id = static_cast<STRUCT_ENUM_COMM_ID>(value);
    return true;
}

bool ConvertSlaveAddress(const std::string &text, int &state, unsigned char &address) {
    if (text.empty()) {
        return true;
    }
    int value = 0;
    if (StringtoInt(text, value) == 0) {
        std::printf("Parameter illegal! --slave %s \n", text.c_str());
        return false;
    }
    if (value == 0) {
        state = 1;
        return true;
    }
    state = 0;
    if (value < kFirstSlave || value > kLastSlave) {
        std::printf("Parameter out of range! --slave %s \n", text.c_str());
        return false;
    }
    address = static_cast<unsigned char>(value);
    return true;
}

// QUIRK Flag_count_wraps_at_256: the number of flag bytes is stored modulo 256, so it never exceeds
// the capacity of 1,220 bytes and no check can reject the data; bytes beyond the capacity are
// counted but not stored.
bool ConvertUserFlag(const std::string &address, const std::string &data,
                     STRUCT_FLAG_SETTING &setting) {
    if (address.empty()) {
        return true;
    }
    std::uint32_t number = 0;
    if (!ToUnsigned(address, number)) {
        std::printf("Parameter illegal! --flagaddr %s \n", address.c_str());
        return false;
    }
    setting.ulFlagAddr = number;
    setting.ulFlagCount = 0;
    std::memset(setting.ucFlagData, 0xFF, sizeof setting.ucFlagData);
    std::size_t count = 0;
    for (const std::string &piece : SplitText(data, ",")) {
        unsigned char byte = 0;
        if (!ToByte(piece, byte)) {
            std::printf("Parameter illegal! --flagdata %s \n", data.c_str());
            return false;
        }
        if (count < SCALER_ISP_MAX_FLAG_BYTES) {
            setting.ucFlagData[count] = byte;
        }
        setting.ulFlagCount = static_cast<std::uint8_t>(++count);
    }
    return true;
}

bool ConvertDumpRange(const RawArgs &args, STRUCT_DUMP_FLASH_SETTING &setting) {
    if (args.strDumpAddr.empty() && args.strDumpLen.empty()) {
        return false;
    }
    if (!ToUnsigned(args.strDumpAddr, setting.ulDumpAddr) ||
        !ToUnsigned(args.strDumpLen, setting.ulDumpLen) || setting.ulDumpLen == 0) {
        return false;
    }
    const std::string name = IsDumpName(args.strDumpName) ? args.strDumpName : kDefaultDumpName;
    CopyBounded(setting.wszDumpFile, std::wstring_view(WideFromUtf8(name)));
    return true;
}

bool ConvertI2CBytes(const std::string &text, std::vector<unsigned char> &bytes) {
    for (const std::string &piece : SplitText(text, ",")) {
        unsigned char byte = 0;
        if (!ToByte(piece, byte)) {
            return false;
        }
        bytes.push_back(byte);
    }
    return bytes.size() >= kMinI2CValues;
}

// QUIRK I2C_write_of_256_bytes_has_length_0: the length is stored in 8 bits.
bool ConvertI2CWrite(const RawArgs &args, STRUCT_I2C_WRITE_ACTION_TYPE_SETTING &setting) {
    std::vector<unsigned char> values;
    if (!ConvertI2CBytes(args.strWriteData, values) || values.size() > kMaxI2CValues) {
        return false;
    }
    setting.bDdcciCmd = args.bDdcciCmd;
    setting.ucI2CSlaveAddr = values[0];
    setting.ucI2CSubAddr = values[1];
    std::size_t header = kI2CHeaderValues;
    if (args.bDdcciCmd != 0) {
        // The third value is the length byte of the DDC/CI message, whose bit 7 is always set.
        constexpr unsigned char kLengthBits = 0x7F;
        setting.ucI2CDataLen = values[header] & kLengthBits;
        ++header;
        if (setting.ucI2CDataLen != values.size() - header) {
            return false;
        }
    } else {
        setting.ucI2CDataLen = static_cast<std::uint8_t>(values.size() - header);
    }
    std::memcpy(setting.ucI2CData, values.data() + header, values.size() - header);
    return true;
}
