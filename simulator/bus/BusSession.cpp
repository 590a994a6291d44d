#include "bus/BusSession.h"

#include <cerrno>
#include <map>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "bus/BusStatus.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {
namespace {

std::map<std::pair<std::string, std::uint32_t>, std::uint32_t> g_busyReads;

Faults CheckedFaults(const std::string &directory) {
    if (!MakeDirectory(directory)) {
        throw Failure{VIRTUAL_ISP_NO_DEVICE, Format("The device's directory cannot be made: %s: %s",
                                                    directory.c_str(), ErrorText(errno))};
    }
    Faults faults = LoadFaults(directory + "faults.txt");
    if (faults.refuseOpen) {
        throw Failure{VIRTUAL_ISP_NO_DEVICE, "The device refuses to open, as faults.txt asks for"};
    }
    return faults;
}

[[noreturn]] void FailOnFile(const char *verb) {
    throw Failure{VIRTUAL_BUS_NO_STATE,
                  Format("registers.txt cannot be %s: %s", verb, ErrorText(errno))};
}

} // namespace

BusSession::BusSession(std::string directory)
    : m_directory(std::move(directory)), m_faults(CheckedFaults(m_directory)),
      m_file(OpenRegular(m_directory + "registers.txt", O_RDWR | O_CREAT)) {
    if (!m_file.IsOpen()) {
        FailOnFile("opened");
    }
    while (flock(m_file.Get(), LOCK_EX) != 0) {
        if (errno != EINTR) {
            FailOnFile("locked");
        }
    }
    if (!ReadText(m_directory + "registers.txt", m_text)) {
        FailOnFile("read");
    }
    state = BusState::FromText(m_text);
}

void BusSession::Save() {
    const std::string text = state.ToText();
    if (text == m_text) {
        return;
    }
    if (!WriteAllAt(m_file.Get(), text.data(), text.size(), 0) ||
        ftruncate(m_file.Get(), static_cast<off_t>(text.size())) != 0) {
        FailOnFile("written");
    }
    m_text = text;
}

std::uint8_t BusSession::ReadByte(const std::string &space, std::uint32_t address) {
    const auto busy = m_faults.busy.find({space, address});
    if (busy != m_faults.busy.end()) {
        std::uint32_t &reads = g_busyReads[busy->first];
        if (reads < busy->second.reads) {
            ++reads;
            return busy->second.value;
        }
    }
    return state.spaces[space].Read(address);
}

void BusSession::RestartBusyReads() {
    g_busyReads.clear();
}

void BusSession::RequirePresent() {
    if (state.Number("removed") != 0) {
        throw Failure{VIRTUAL_BUS_REMOVED, "The device was removed"};
    }
}

} // namespace virtual_scaler
