#include "bus/DdcCi.h"

#include <algorithm>
#include <string>

#include "bus/BusStatus.h"
#include "bus/VcpFeatures.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {
namespace {

constexpr std::uint8_t kDisplay = 0x6E;     // also the source of its replies
constexpr std::uint8_t kHost = 0x51;        // source of the host's messages
constexpr std::uint8_t kHostVirtual = 0x50; // destination included in the checksum of replies
constexpr std::uint8_t kLengthMark = 0x80;
constexpr const char *kMailbox = "ddcci";

enum Command : std::uint8_t {
    kGetFeature = 0x01,
    kFeatureReply = 0x02,
    kSetFeature = 0x03,
    kCapabilitiesReply = 0xE3,
    kGetCapabilities = 0xF3,
};

std::uint8_t Checksum(std::uint8_t destination, const std::uint8_t *bytes, std::size_t count) {
    std::uint8_t sum = destination;
    for (std::size_t i = 0; i < count; ++i) {
        sum = static_cast<std::uint8_t>(sum ^ bytes[i]);
    }
    return sum;
}

const VcpFeature *FindFeature(std::uint8_t code) {
    for (const VcpFeature &feature : kVcpFeatures) {
        if (feature.code == code) {
            return &feature;
        }
    }
    return nullptr;
}

std::string Capabilities() {
    std::string text = "(prot(monitor)type(lcd)model(VIRTUAL-1)cmds(01 02 03 0C E3 F3)vcp(04";
    for (const VcpFeature &feature : kVcpFeatures) {
        text += Format(" %02X", static_cast<unsigned>(feature.code));
    }
    return text + ")mccs_ver(2.2))";
}

std::uint8_t High(std::uint32_t value) {
    return static_cast<std::uint8_t>(value >> 8);
}
std::uint8_t Low(std::uint32_t value) {
    return static_cast<std::uint8_t>(value);
}

} // namespace

void DdcCi::Receive(const std::vector<std::uint8_t> &message) {
    if (message.size() < 3 || message[0] != kHost || (message[1] & kLengthMark) == 0 ||
        message.size() != (message[1] & 0x7FU) + 3U) {
        throw Failure{VIRTUAL_BUS_BAD_MESSAGE,
                      "A DDC/CI message is 0x51, 0x80 + length, its bytes and a checksum"};
    }
    const std::uint8_t expected = Checksum(kDisplay, message.data(), message.size() - 1);
    if (message.back() != expected) {
        throw Failure{VIRTUAL_BUS_BAD_MESSAGE,
                      Format("The checksum of the DDC/CI message is 0x%02X, expected 0x%02X",
                             static_cast<unsigned>(message.back()),
                             static_cast<unsigned>(expected))};
    }
    m_session.state.mailboxes.erase(kMailbox);
    Execute({message.begin() + 2, message.end() - 1});
}

std::vector<std::uint8_t> DdcCi::TakeReply() {
    if (m_session.state.mailboxes.count(kMailbox) == 0) {
        Reply({});
    }
    std::vector<std::uint8_t> reply = m_session.state.mailboxes[kMailbox];
    m_session.state.mailboxes.erase(kMailbox);
    return reply;
}

// Unknown commands are ignored, so that the next read gets the null message.
void DdcCi::Execute(const std::vector<std::uint8_t> &command) {
    if (command.size() == 2 && command[0] == kGetFeature) {
        GetFeature(command[1]);
    } else if (command.size() == 4 && command[0] == kSetFeature) {
        SetFeature(command[1], static_cast<std::uint16_t>(command[2] << 8 | command[3]));
    } else if (command.size() == 3 && command[0] == kGetCapabilities) {
        GetCapabilities(std::size_t{command[1]} << 8 | command[2]);
    }
}

void DdcCi::GetFeature(std::uint8_t code) {
    const VcpFeature *feature = FindFeature(code);
    if (feature == nullptr) {
        Reply({kFeatureReply, 1, code, 0, 0, 0, 0, 0}); // 1: unsupported
        return;
    }
    const std::uint32_t value = m_session.state.Number(feature->name);
    Reply({kFeatureReply, 0, code, 0, High(feature->maximum), Low(feature->maximum), High(value),
           Low(value)});
}

void DdcCi::SetFeature(std::uint8_t code, std::uint16_t value) {
    if (code == kRestoreDefaults && value != 0) {
        for (const VcpFeature &feature : kVcpFeatures) {
            m_session.state.Number(feature.name) = feature.defaultValue;
        }
    }
    const VcpFeature *feature = FindFeature(code);
    if (feature != nullptr && feature->writable && value <= feature->maximum) {
        m_session.state.Number(feature->name) = value;
    }
}

void DdcCi::GetCapabilities(std::size_t offset) {
    constexpr std::size_t kPiece = 32;
    const std::string text = Capabilities();
    std::vector<std::uint8_t> bytes{kCapabilitiesReply, High(static_cast<std::uint32_t>(offset)),
                                    Low(static_cast<std::uint32_t>(offset))};
    for (std::size_t i = offset; i < std::min(offset + kPiece, text.size()); ++i) {
        bytes.push_back(static_cast<std::uint8_t>(text[i]));
    }
    Reply(bytes);
}

void DdcCi::Reply(std::vector<std::uint8_t> bytes) {
    const auto length = static_cast<std::uint8_t>(kLengthMark | bytes.size());
    bytes.insert(bytes.begin(), {kDisplay, length});
    std::uint8_t checksum = Checksum(kHostVirtual, bytes.data(), bytes.size());
    if (m_session.Fault().wrongChecksum) {
        checksum = static_cast<std::uint8_t>(~checksum);
    }
    bytes.push_back(checksum);
    m_session.state.mailboxes[kMailbox] = bytes;
}

} // namespace virtual_scaler
