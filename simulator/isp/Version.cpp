#include "isp/Version.h"

#include <algorithm>
#include <optional>

#include "common/Text.h"
#include "device/Failure.h"
#include "isp/Ui.h"

namespace virtual_scaler {
namespace {

bool IsErased(const Bytes &bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b == kErased; });
}

/// RETURNS the text up to the first 0x00 or 0xFF, in hexadecimal if it is not printable ASCII.
std::string VersionText(const std::uint8_t *bytes, std::size_t count) {
    const std::uint8_t *end =
        std::find_if(bytes, bytes + count, [](std::uint8_t b) { return b == 0 || b == kErased; });
    const bool plain = std::all_of(bytes, end, [](std::uint8_t b) { return b >= 32 && b < 127; });
    return plain ? std::string(bytes, end) : HexBytes(bytes, static_cast<std::size_t>(end - bytes));
}

std::string VersionNumber(const std::uint8_t *bytes, std::size_t count, std::uint32_t mode) {
    if (mode == 0) {
        return VersionText(bytes, count);
    }
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += Format(mode == 1 ? "%s%u" : "%s%02X", i == 0 ? "" : ".",
                       static_cast<unsigned>(bytes[i]));
    }
    return text;
}

/// RETURNS whether the command itself specifies the location of the version.
bool HasExplicitLocation(const Setting &setting) {
    return setting.enumVersionLocationType == ENUM_VER_LOC_FLASH &&
           setting.stReadVersionFromFlash.ulTotalVerLen != 0;
}

/// \param read  read(address, count) returns the bytes, or nothing
template <class Read>
std::string VersionFrom(const Description &description, const Setting &setting, Read &&read) {
    if (!HasExplicitLocation(setting)) {
        const std::optional<Bytes> area =
            read(description.versionAddress, description.versionLength);
        return area ? VersionText(area->data(), area->size()) : std::string();
    }
    const STRUCT_READ_VERSION_FROM_FLASH_SETTING &location = setting.stReadVersionFromFlash;
    const std::optional<Bytes> bytes = read(location.ulVerAddr, location.ulTotalVerLen);
    if (!bytes || IsErased(*bytes)) {
        return {};
    }
    const std::uint32_t major = std::min(location.ulMajorVerLen, location.ulTotalVerLen);
    const std::uint32_t sub = std::min(location.ulSubVerLen, location.ulTotalVerLen - major);
    const std::string text = VersionNumber(bytes->data(), major, location.enumRecordVerMode);
    return sub == 0
               ? text
               : text + '.' + VersionNumber(bytes->data() + major, sub, location.enumRecordVerMode);
}

std::string FlashVersion(const Device &device, const Setting &setting, std::uint32_t shift) {
    return VersionFrom(device.description, setting,
                       [&](std::uint32_t address, std::uint32_t count) -> std::optional<Bytes> {
                           device.flash.RequireInside(std::uint64_t{address} + shift, count);
                           return device.flash.Read(address + shift, count);
                       });
}

void SendVersion(const char *what, const std::string &version) {
    if (version.empty()) {
        throw Failure{VIRTUAL_ISP_NO_VERSION, Format("%s: there is none", what)};
    }
    SendMessage(Format("%s: %s", what, version.c_str()));
}

std::size_t CountDifferentCopies(const Device &device) {
    const std::uint32_t offset = device.description.copyBank;
    std::size_t different = 0;
    for (std::uint32_t bank = 0; bank < offset && bank + offset < kFlashBanks; ++bank) {
        different += device.flash.Read(bank * kBankBytes, kBankBytes) !=
                     device.flash.Read((bank + offset) * kBankBytes, kBankBytes);
    }
    return different;
}

void ReportCopy(const Device &device, const Setting &setting) {
    const std::string copy =
        FlashVersion(device, setting, device.description.copyBank * kBankBytes);
    SendMessage("Version of the copy: " + (copy.empty() ? std::string("none") : copy));
    SendMessage(Format("Banks whose copy differs: %zu", CountDifferentCopies(device)));
}

} // namespace

std::string DeviceVersion(const Device &device, const Setting &setting) {
    const std::string version = FlashVersion(device, setting, 0);
    return version.empty() && setting.enumVersionLocationType != ENUM_VER_LOC_FLASH
               ? device.description.version
               : version;
}

std::string PlannedVersion(const Device &device, const Setting &setting, const Plan &plan) {
    return VersionFrom(device.description, setting,
                       [&](std::uint32_t address, std::uint32_t count) {
                           return PlannedBytes(plan, address, count);
                       });
}

std::string EepromVersion(const Device &device) {
    const Bytes area = device.eeprom.Read(device.description.eepromVersionAddress,
                                          device.description.eepromVersionLength);
    return VersionText(area.data(), area.size());
}

void ReportVersion(const Device &device, const Setting &setting) {
    const auto location = setting.enumVersionLocationType;
    if (location == ENUM_VER_LOC_FWBIN || location == ENUM_VER_LOC_FWBINCMD) {
        SendVersion("Version of the firmware file",
                    PlannedVersion(device, setting, LoadPlan(setting.stMapFw, device.flash)));
    }
    if (location != ENUM_VER_LOC_FWBIN) {
        SendVersion("Version", DeviceVersion(device, setting));
    }
    if (location == ENUM_VER_LOC_COPYDIFFER) {
        ReportCopy(device, setting);
    }
}

} // namespace virtual_scaler
