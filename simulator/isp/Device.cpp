#include "isp/Device.h"

#include <cerrno>
#include <cstring>

#include "common/Files.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {
namespace {

std::string MadeFolder(const std::string &folder) {
    if (!MakeFolder(folder)) {
        throw Failure{VIRTUAL_ISP_NO_DEVICE,
                      Format("The device's folder cannot be made: %s: %s. Another device can be "
                             "chosen with SCALER_ISP_VIRTUAL_DEVICE.",
                             folder.c_str(), std::strerror(errno))};
    }
    return folder;
}

Faults CheckedFaults(const std::string &path) {
    Faults faults = LoadFaults(path);
    if (faults.refuseOpen) {
        throw Failure{VIRTUAL_ISP_NO_DEVICE, "The device refuses to open, as faults.txt asks for"};
    }
    return faults;
}

} // namespace

Device::Device(const std::string &deviceFolder)
    : folder(MadeFolder(deviceFolder)), faults(CheckedFaults(folder + "faults.txt")),
      description(LoadDescription(folder + "device.ini")),
      flash(folder + "flash.bin", "flash", kFlashBanks * kBankBytes),
      eeprom(folder + "eeprom.bin", "EEPROM", description.eepromBanks * kBankBytes) {}

void Device::SetMode(const char *mode) const {
    const std::string text = std::string(mode) + '\n';
    if (!ReplaceFile(folder + "mode.txt", text.data(), text.size())) {
        throw Failure{VIRTUAL_ISP_WRITE_FAILED,
                      Format("The device's mode cannot be written: %s", std::strerror(errno))};
    }
}

} // namespace virtual_scaler
