#ifndef SCALER_ISP_SIMULATOR_BUS_BUS_STATE_H
#define SCALER_ISP_SIMULATOR_BUS_BUS_STATE_H

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace virtual_scaler {

/// Bytes by address; 0 if never written.
class SparseBytes {
  public:
    static constexpr std::uint32_t kRowBytes = 16;
    using Row = std::array<std::uint8_t, kRowBytes>;

    std::uint8_t Read(std::uint32_t address) const;
    void Write(std::uint32_t address, std::uint8_t value);
    /// Rows by address / kRowBytes.
    const std::map<std::uint32_t, Row> &Rows() const {
        return m_rows;
    }

  private:
    std::map<std::uint32_t, Row> m_rows;
};

/// The state of the virtual bus between calls, with the format of registers.txt:
///
///     debug_slave = 0x6A                  a number; all are listed, so that a user can edit them
///     bytes reg 0x0010: 00 5A             bytes of a space from an address; all others are 0
///     box native 0xA0: 01 02              bytes written by one side for the other
struct BusState {
    /// The state of a new device.
    BusState();

    /// Throws Failure VIRTUAL_BUS_BAD_STATE, with the number of the line.
    static BusState FromText(const std::string &text);
    std::string ToText() const;

    /// REQUIRES: name is in the table in BusState.cpp.
    std::uint32_t &Number(const std::string &name);
    void ResetRegisters();

    std::map<std::string, std::uint32_t> numbers;
    std::map<std::string, SparseBytes> spaces;
    std::map<std::string, std::vector<std::uint8_t>> mailboxes;
};

} // namespace virtual_scaler

#endif
