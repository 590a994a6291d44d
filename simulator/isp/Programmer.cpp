#include "isp/Programmer.h"

#include <algorithm>

#include "common/Text.h"
#include "device/Failure.h"
#include "isp/Ui.h"
#include "isp/Version.h"

namespace virtual_scaler {
namespace {

constexpr std::size_t kStepsPerBank = 3; // erase, write, verify

/// Programs banks of one memory and reports the progress.
class Programmer {
  public:
    Programmer(MemoryFile &memory, const Faults &faults, std::size_t banks)
        : m_memory(memory), m_faults(faults), m_progress(banks * kStepsPerBank) {}

    void Program(const BankImage &image) {
        m_faults.Delay();
        if (const auto fault = m_faults.failBank.find(image.bank);
            fault != m_faults.failBank.end()) {
            throw Failure{fault->second,
                          Format("Bank %u: fails, as faults.txt asks for", image.bank)};
        }
        m_memory.Erase(image.bank * kBankBytes, Length(image));
        m_progress.Step();
        Write(image);
        m_progress.Step();
        Verify(image);
        m_progress.Step();
        SendMessage(
            Format("Bank %u: erased, written, verified (%s)", image.bank, image.source.c_str()));
    }

    void Skip(const BankImage &image) {
        m_progress.Step(kStepsPerBank);
        SendMessage(Format("Bank %u: unchanged", image.bank));
    }

    void Finish() {
        m_progress.Finish();
    }

    bool Differs(const BankImage &image) const {
        return m_memory.Read(image.bank * kBankBytes, Length(image)) != image.bytes;
    }

  private:
    static std::uint32_t Length(const BankImage &image) {
        return static_cast<std::uint32_t>(image.bytes.size());
    }

    void Write(const BankImage &image) {
        const std::uint32_t address = image.bank * kBankBytes;
        if (m_faults.powerLoss.contains(image.bank)) {
            m_memory.Write(address, image.bytes.data(), Length(image) / 2);
            throw Failure{
                VIRTUAL_ISP_POWER_LOST,
                Format("Bank %u: the power is lost, as faults.txt asks for; half of the bank is "
                       "written",
                       image.bank)};
        }
        m_memory.Write(address, image.bytes.data(), Length(image));
        if (m_faults.flipBit.contains(image.bank)) {
            // Simulates a defective cell: the wrong bit is in the flash itself, so a dump shows it.
            Bytes flipped = image.bytes;
            flipped.front() ^= 1U;
            m_memory.Erase(address, Length(image));
            m_memory.Write(address, flipped.data(), Length(image));
        }
    }

    void Verify(const BankImage &image) const {
        const Bytes read = m_memory.Read(image.bank * kBankBytes, Length(image));
        const auto [want, got] =
            std::mismatch(image.bytes.begin(), image.bytes.end(), read.begin());
        if (want != image.bytes.end()) {
            throw Failure{VIRTUAL_ISP_VERIFY_FAILED,
                          Format("Bank %u: verify fails at offset 0x%04X: written 0x%02X, read "
                                 "0x%02X",
                                 image.bank, static_cast<unsigned>(want - image.bytes.begin()),
                                 static_cast<unsigned>(*want), static_cast<unsigned>(*got))};
        }
    }

    MemoryFile &m_memory;
    const Faults &m_faults;
    Progress m_progress;
};

Plan MakePlan(const Device &device, const Setting &setting) {
    Plan plan = LoadPlan(setting.stMapFw, device.flash);
    if (setting.enumActionType == ENUM_ACTION_ISPCOPY) {
        AddCopies(plan, device.description.copyBank, device.flash);
    }
    if (setting.enumActionType == ENUM_ACTION_ISPUSER) {
        const STRUCT_FLAG_SETTING &flag = setting.stFlagSetting;
        const auto count = std::min<std::uint32_t>(flag.ulFlagCount, SCALER_ISP_MAX_FLAG_BYTES);
        AddBytes(plan, flag.ulFlagAddr, Bytes(flag.ucFlagData, flag.ucFlagData + count),
                 device.flash);
    }
    if (plan.empty()) {
        throw Failure{VIRTUAL_ISP_NOTHING_TO_PROGRAM,
                      "There is nothing to program: the bank map is empty"};
    }
    return plan;
}

bool HasSameVersion(const Device &device, const Setting &setting, const Plan &plan) {
    const std::string offered = PlannedVersion(device, setting, plan);
    const std::string present = DeviceVersion(device, setting);
    SendMessage(Format("Version of the firmware file: %s; version of the device: %s",
                       offered.empty() ? "unknown" : offered.c_str(),
                       present.empty() ? "unknown" : present.c_str()));
    return !offered.empty() && offered == present;
}

} // namespace

void ProgramFlash(Device &device, const Setting &setting) {
    const Plan plan = MakePlan(device, setting);
    Programmer programmer(device.flash, device.faults, plan.size());
    if (setting.bCompareVersion != 0 && HasSameVersion(device, setting, plan)) {
        SendMessage("The device holds this version; nothing is programmed");
        programmer.Finish();
        return;
    }
    if (setting.enumActionType == ENUM_ACTION_FACTORYISP) {
        SendMessage("The complete flash is erased");
        device.flash.Erase(0, device.flash.Size());
    }
    std::size_t programmed = 0;
    for (const BankImage &image : plan) {
        if (setting.enumActionType == ENUM_ACTION_ISPDIFF && !programmer.Differs(image)) {
            programmer.Skip(image);
        } else {
            programmer.Program(image);
            ++programmed;
        }
    }
    SendMessage(Format("Banks programmed: %zu of %zu", programmed, plan.size()));
    programmer.Finish();
}

void RunEepromAction(Device &device, const Setting &setting) {
    constexpr std::uint32_t kModeIsp = 1;
    constexpr std::uint32_t kModeReadVersion = 2;
    if (setting.enumEdpIspMode == kModeReadVersion) {
        const std::string version = EepromVersion(device);
        if (version.empty()) {
            throw Failure{VIRTUAL_ISP_NO_VERSION, "The EEPROM holds no version"};
        }
        SendMessage("EEPROM version: " + version);
        return;
    }
    if (setting.enumEdpIspMode != kModeIsp) {
        throw Failure{VIRTUAL_ISP_BAD_MODE,
                      Format("EEPROM mode %u is unknown: there are 1 (isp) and 2 (readver)",
                             setting.enumEdpIspMode)};
    }
    const Plan plan = LoadPlan(setting.stMapFw, device.eeprom);
    if (plan.empty()) {
        throw Failure{VIRTUAL_ISP_NOTHING_TO_PROGRAM,
                      "There is nothing to program: the bank map is empty"};
    }
    Programmer programmer(device.eeprom, device.faults, plan.size());
    for (const BankImage &image : plan) {
        programmer.Program(image);
    }
    SendMessage(Format("EEPROM banks programmed: %zu", plan.size()));
    programmer.Finish();
}

} // namespace virtual_scaler
