#include "bus/BusState.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "bus/BusStatus.h"
#include "bus/VcpFeatures.h"
#include "common/Text.h"
#include "device/Failure.h"

namespace virtual_scaler {
namespace {

struct NumberRow {
    const char *name;
    std::uint32_t defaultValue;
};

constexpr NumberRow kNumbers[] = {
    {"comm_id", 0},
    {"special_comm_type", 0},
    {"debug_slave", 0x6A},
    {"isp_slave", 0x94},
    {"isp_continuous_slave", 0x94},
    {"debug_mode", 0},
    {"i2c_speed", 100},
    {"waiting_0", 0},
    {"waiting_1", 0},
    {"smbus_data_type", 0},
    {"ftdi_get_ack", 1},
    {"debug_port", 0},
    {"debug_port_mode", 0},
    {"debug_port_over_aux", 0},
    {"master_speed", 0},
    {"usb_mode", 0},
    {"flash_config", 0},
    {"scaler_stopped", 0},
    {"removed", 0},
    {"sniffer_started", 0},
    {"register_address", 0},
    {"edid_address", 0},
};

// In addition to these: "ddr" followed by the number of a CPU.
constexpr std::string_view kSpaces[] = {"reg", "port", "mcu", "sys", "reg32", "pwm_reg", "pwm_dev"};

constexpr std::string_view kBytesKeyword = "bytes";
constexpr std::string_view kBoxKeyword = "box";

bool ParseBytes(std::string_view text, std::vector<std::uint8_t> &bytes) {
    bytes.clear();
    for (text = Trimmed(text); !text.empty(); text = Trimmed(text)) {
        const std::string_view word = text.substr(0, text.find_first_of(" \t"));
        std::uint32_t value = 0;
        if (word.size() > 2 || !ParseNumber("0x" + std::string(word), 255, value)) {
            return false;
        }
        bytes.push_back(static_cast<std::uint8_t>(value));
        text.remove_prefix(word.size());
    }
    return true;
}

bool IsSpace(std::string_view name) {
    std::uint32_t cpu = 0;
    return std::find(std::begin(kSpaces), std::end(kSpaces), name) != std::end(kSpaces) ||
           (name.substr(0, 3) == "ddr" && ParseNumber(name.substr(3), 0xFFFFFFFF, cpu));
}

/// Stores bytes at "SPACE ADDRESS".
bool ParseSpace(BusState &state, std::string_view location,
                const std::vector<std::uint8_t> &bytes) {
    const std::size_t separator = location.find_first_of(" \t");
    std::uint32_t address = 0;
    if (separator == std::string_view::npos || !IsSpace(location.substr(0, separator)) ||
        !ParseNumber(Trimmed(location.substr(separator)), 0xFFFFFFFF, address)) {
        return false;
    }
    SparseBytes &space = state.spaces[std::string(location.substr(0, separator))];
    for (const std::uint8_t byte : bytes) {
        space.Write(address++, byte);
    }
    return true;
}

bool ParseLine(BusState &state, std::string_view line) {
    const std::size_t colon = line.find(':');
    const std::string_view word = line.substr(0, line.find_first_of(" \t"));
    if (colon != std::string_view::npos && (word == kBytesKeyword || word == kBoxKeyword)) {
        const std::string_view location = Trimmed(line.substr(word.size(), colon - word.size()));
        std::vector<std::uint8_t> bytes;
        if (!ParseBytes(line.substr(colon + 1), bytes)) {
            return false;
        }
        if (word == kBytesKeyword) {
            return ParseSpace(state, location, bytes);
        }
        state.mailboxes[std::string(location)] = bytes;
        return true;
    }
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) {
        return false;
    }
    const auto number = state.numbers.find(std::string(Trimmed(line.substr(0, equals))));
    return number != state.numbers.end() &&
           ParseNumber(Trimmed(line.substr(equals + 1)), 0xFFFFFFFF, number->second);
}

} // namespace

std::uint8_t SparseBytes::Read(std::uint32_t address) const {
    const auto row = m_rows.find(address / kRowBytes);
    return row == m_rows.end() ? std::uint8_t{0} : row->second[address % kRowBytes];
}

void SparseBytes::Write(std::uint32_t address, std::uint8_t value) {
    m_rows[address / kRowBytes][address % kRowBytes] = value;
}

BusState::BusState() {
    for (const NumberRow &row : kNumbers) {
        numbers[row.name] = row.defaultValue;
    }
    for (const VcpFeature &feature : kVcpFeatures) {
        numbers[feature.name] = feature.defaultValue;
    }
}

BusState BusState::FromText(const std::string &text) {
    BusState state;
    ForEachLine(text, [&](int number, std::string_view line) {
        if (!ParseLine(state, line)) {
            throw Failure{VIRTUAL_BUS_BAD_STATE,
                          Format("registers.txt, line %d cannot be understood: %s", number,
                                 std::string(line).c_str())};
        }
    });
    return state;
}

std::string BusState::ToText() const {
    std::string text = "# The virtual bus. Remove this file and its registers are new.\n";
    for (const auto &[name, value] : numbers) {
        text += Format("%s = 0x%X\n", name.c_str(), value);
    }
    for (const auto &[name, space] : spaces) {
        for (const auto &[index, row] : space.Rows()) {
            if (std::any_of(row.begin(), row.end(), [](std::uint8_t byte) { return byte != 0; })) {
                text += Format("bytes %s 0x%04X: ", name.c_str(), index * SparseBytes::kRowBytes) +
                        HexBytes(row.data(), row.size()) + '\n';
            }
        }
    }
    for (const auto &[name, bytes] : mailboxes) {
        text += "box " + name + ": " + HexBytes(bytes.data(), bytes.size()) + '\n';
    }
    return text;
}

std::uint32_t &BusState::Number(const std::string &name) {
    return numbers.at(name);
}

void BusState::ResetRegisters() {
    spaces.clear();
    mailboxes.clear();
    Number("scaler_stopped") = 0;
    Number("register_address") = 0;
}

} // namespace virtual_scaler
