#ifndef SCALER_ISP_TESTS_COMM_SYMBOLS_H
#define SCALER_ISP_TESTS_COMM_SYMBOLS_H

#include <algorithm>
#include <string>
#include <vector>

/// What CNxComm looks up, from the interface description.

inline const std::vector<std::string> kOptionalCommSymbols = {"SetI2CDebugPort",
                                                              "SetI2CoverAUXDebugPort",
                                                              "ReadDDRCPURegEx",
                                                              "WriteDDRCPURegEx",
                                                              "ReadDDRCPURegsEx",
                                                              "WriteDDRCPURegsEx",
                                                              "CheckSnifferBoardCustomerId",
                                                              "I2CSlaveWrite",
                                                              "I2CSlaveRead",
                                                              "Read32BitReg1Byte",
                                                              "I2CStretchRead",
                                                              "Write32BitReg1Byte"};

/// The required symbol that no method calls.
constexpr const char *kUncalledCommSymbol = "I2CMasterCurrentReadEx";

/// The required symbols of the methods, each once, in the order of the methods.
inline std::vector<std::string> CalledCommSymbols() {
    const char *const symbols[] = {
#define COMM_ROW(SLOT, METHOD, SYMBOL, ...) SYMBOL,
#include "comm_rows.def"
    };
    std::vector<std::string> required;
    for (const char *symbol : symbols) {
        if (symbol != nullptr &&
            std::count(kOptionalCommSymbols.begin(), kOptionalCommSymbols.end(), symbol) == 0 &&
            std::count(required.begin(), required.end(), symbol) == 0) {
            required.emplace_back(symbol);
        }
    }
    return required;
}

#endif
