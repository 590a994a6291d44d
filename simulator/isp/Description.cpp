#include "isp/Description.h"

#include <cerrno>
#include <string_view>

#include "common/Files.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {
namespace {

/// One key: a string or a number, its default, its maximum, and the comment above it in the file.
struct Row {
    const char *key;
    std::string Description::*text;
    std::uint32_t Description::*number;
    const char *defaultValue;
    std::uint32_t maximum;
    const char *comment;
};

constexpr std::uint32_t kLastAddress = 0xFFFFFF;

constexpr Row kRows[] = {
    {"scaler_type", &Description::scalerType, nullptr, "VIRTUAL-1", 0,
     "What getscalertype and --infotype hpscaler report."},
    {"firmware_name", &Description::firmwareName, nullptr, "Virtual firmware", 0,
     "What --infotype hpfwname reports."},
    {"model", &Description::model, nullptr, "Virtual monitor", 0,
     "What --infotype hpmodelname reports."},
    {"hardware_id", &Description::hardwareId, nullptr, "VHW-0001", 0,
     "What --infotype hphwcid reports."},
    {"version", &Description::version, nullptr, "1.00", 0,
     "Version of the running firmware while the version area of the flash is erased."},
    {"version_address", nullptr, &Description::versionAddress, "0xFFE0", kLastAddress,
     "Where a firmware keeps its version, in flash and in its file: text, ended by 0x00 or 0xFF."},
    {"version_length", nullptr, &Description::versionLength, "16", 256, nullptr},
    {"key_address", nullptr, &Description::keyAddress, "0xFF0000", kLastAddress,
     "Where the verify key of the next key generation lies, at most 1220 bytes: PEM, or the 65 "
     "bytes\n"
     "# of an uncompressed P-256 point."},
    {"key_length", nullptr, &Description::keyLength, "1220", 1220, nullptr},
    {"copy_bank", nullptr, &Description::copyBank, "128", 255,
     "ispcopy programs each bank a second time, this many banks higher."},
    {"eeprom_banks", nullptr, &Description::eepromBanks, "1", 256,
     "Banks of 64 KiB in eeprom.bin, and where its version lies."},
    {"eeprom_version_address", nullptr, &Description::eepromVersionAddress, "0xFFE0", kLastAddress,
     nullptr},
    {"eeprom_version_length", nullptr, &Description::eepromVersionLength, "16", 256, nullptr},
};

bool Assign(Description &description, const Row &row, std::string_view value) {
    if (row.text != nullptr) {
        description.*row.text = value;
        return true;
    }
    return ParseNumber(value, row.maximum, description.*row.number);
}

bool ParseLine(Description &description, std::string_view line) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return false;
    }
    for (const Row &row : kRows) {
        if (Trimmed(line.substr(0, equals)) == row.key) {
            return Assign(description, row, Trimmed(line.substr(equals + 1)));
        }
    }
    return false;
}

std::string DefaultText() {
    std::string text =
        "# The virtual scaler. One key a line; numbers are decimal or begin with 0x.\n";
    for (const Row &row : kRows) {
        if (row.comment != nullptr) {
            text += Format("\n# %s\n", row.comment);
        }
        text += Format("%s = %s\n", row.key, row.defaultValue);
    }
    return text;
}

void WriteDefaults(const std::string &path) {
    const std::string text = DefaultText();
    if (!ReplaceFile(path, text.data(), text.size())) {
        throw Failure{
            VIRTUAL_ISP_NO_DEVICE,
            Format("The device's description cannot be written: %s: %s. Another device can "
                   "be chosen with SCALER_ISP_VIRTUAL_DEVICE.",
                   path.c_str(), ErrorText(errno))};
    }
}

} // namespace

Description LoadDescription(const std::string &path) {
    Description description;
    for (const Row &row : kRows) {
        Assign(description, row, row.defaultValue);
    }
    std::string text;
    if (!ReadText(path, text)) {
        if (errno != ENOENT) {
            throw Failure{VIRTUAL_ISP_NO_DEVICE,
                          Format("The device's description cannot be read: %s: %s", path.c_str(),
                                 ErrorText(errno))};
        }
        WriteDefaults(path);
        return description;
    }
    ForEachLine(text, [&](int number, std::string_view line) {
        if (!ParseLine(description, line)) {
            throw Failure{VIRTUAL_ISP_BAD_DESCRIPTION,
                          Format("device.ini, line %d cannot be understood: %s", number,
                                 std::string(line).c_str())};
        }
    });
    return description;
}

} // namespace virtual_scaler
