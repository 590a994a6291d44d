#include "isp/Device.h"

#include <cerrno>

#include "common/Files.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {
namespace {

std::string CreatedDirectory(const std::string &directory) {
    if (!MakeDirectory(directory)) {
        throw Failure{VIRTUAL_ISP_NO_DEVICE,
                      Format("The device's directory cannot be made: %s: %s. Another device can be "
                             "chosen with SCALER_ISP_VIRTUAL_DEVICE.",
                             directory.c_str(), ErrorText(errno))};
    }
    return directory;
}

Faults CheckedFaults(const std::string &path) {
    Faults faults = LoadFaults(path);
    if (faults.refuseOpen) {
        throw Failure{VIRTUAL_ISP_NO_DEVICE,
                      Format("The device refuses to open, as %s asks for", path.c_str())};
    }
    return faults;
}

} // namespace

Device::Device(const std::string &deviceDirectory)
    : directory(CreatedDirectory(deviceDirectory)), faults(CheckedFaults(directory + "faults.txt")),
      description(LoadDescription(directory + "device.ini")),
      flash(directory + "flash.bin", "flash", kFlashBanks * kBankBytes),
      eeprom(directory + "eeprom.bin", "EEPROM", description.eepromBanks * kBankBytes) {}

void Device::SetMode(const char *mode) const {
    const std::string text = std::string(mode) + '\n';
    const std::string path = directory + "mode.txt";
    if (!ReplaceFile(path, text.data(), text.size())) {
        throw Failure{
            VIRTUAL_ISP_WRITE_FAILED,
            Format("The device's mode cannot be written: %s: %s", path.c_str(), ErrorText(errno))};
    }
}

} // namespace virtual_scaler
