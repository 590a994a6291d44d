#ifndef SCALER_ISP_SIMULATOR_BUS_BUS_STATE_H
#define SCALER_ISP_SIMULATOR_BUS_BUS_STATE_H

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace virtual_scaler {

/// Bytes by address, 0 where nothing was written.
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

/// All that the virtual bus remembers between two calls, as registers.txt holds it:
///
///     debug_slave = 0x6A                  a number; all are listed
///     bytes reg 0x0010: 00 5A             bytes of a space from an address on; the rest is 0
///     box native 0xA0: 01 02              the bytes that one end left for the other
struct BusState {
    /// A new device.
    BusState();

    /// Throws Failure VIRTUAL_BUS_BAD_STATE, with the number of the line.
    static BusState FromText(const std::string &text);
    std::string ToText() const;

    /// A number by its name; it must be one of the table in the source.
    std::uint32_t &Number(const std::string &name);
    void ResetRegisters();

    std::map<std::string, std::uint32_t> numbers;
    std::map<std::string, SparseBytes> spaces;
    std::map<std::string, std::vector<std::uint8_t>> mailboxes;
};

} // namespace virtual_scaler

#endif
