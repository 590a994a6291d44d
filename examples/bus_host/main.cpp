// Reads a register and dumps the EDID through a communication library:
//
//   bus_host /opt/scaler-isp/share/scaler-isp/virtual/libVirtualComm.dylib
//
// The virtual bus stores registers in the directory that SCALER_ISP_VIRTUAL_DEVICE names.

#include <cstdio>
#include <string>
#include <vector>

#include "scaler_isp/ScalerIsp.h"

namespace {

constexpr unsigned char kEdidSlave = 0xA0;
constexpr unsigned char kSegmentSlave = 0x60; ///< selects 256 bytes of the EDID
constexpr unsigned short kBlockBytes = 128;
constexpr std::size_t kExtensionCount = 126; ///< index of the byte that says how many blocks follow

/// Status 0 is success; all others are specific to the communication library.
bool Succeeded(const char *what, unsigned int status) {
    if (status != 0) {
        std::fprintf(stderr, "%s: status 0x%X\n", what, status);
    }
    return status == 0;
}

bool ShowRegister(CNxComm &comm, unsigned char address) {
    unsigned char value = 0;
    if (!Succeeded("WriteReg", comm.WriteReg(address, 0x5A)) ||
        !Succeeded("ReadReg", comm.ReadReg(address, &value))) {
        return false;
    }
    std::printf("register 0x%02X = 0x%02X\n", address, value);
    return true;
}

/// Reads one block of the EDID to the end of the bytes.
bool ReadBlock(CNxComm &comm, unsigned int block, std::vector<unsigned char> &edid) {
    edid.resize(edid.size() + kBlockBytes);
    unsigned char *data = &edid[edid.size() - kBlockBytes];
    const auto segment = static_cast<unsigned char>(block / 2);
    const auto offset = static_cast<unsigned char>(block % 2 * kBlockBytes);
    return segment == 0
               ? Succeeded("I2CRead", comm.I2CRead(kEdidSlave, offset, kBlockBytes, data))
               : Succeeded("I2CReadSegment", comm.I2CReadSegment(kSegmentSlave, segment, kEdidSlave,
                                                                 offset, kBlockBytes, data));
}

bool DumpEdid(CNxComm &comm) {
    std::vector<unsigned char> edid;
    if (!ReadBlock(comm, 0, edid)) {
        return false;
    }
    // No further than declared: what follows the last block is not part of the EDID.
    for (unsigned int block = 1; block <= edid[kExtensionCount]; ++block) {
        if (!ReadBlock(comm, block, edid)) {
            return false;
        }
    }
    // The bytes of each block of 128 sum to 0 modulo 256.
    for (std::size_t block = 0; block < edid.size(); block += kBlockBytes) {
        if (CalculateByteChecksum(&edid[block], kBlockBytes) % 256 != 0) {
            std::fprintf(stderr, "block %zu has a wrong checksum\n", block / kBlockBytes);
            return false;
        }
    }
    for (std::size_t i = 0; i < edid.size(); ++i) {
        std::printf("%02X%c", edid[i], i % 16 == 15 ? '\n' : ' ');
    }
    return true;
}

/// Reads the same register by a script: the bytes that `ispctl script assemble` generates for
/// "ReadReg 0x10".
bool RunScript(CNxComm &comm) {
    unsigned char script[] = {0x05, 0x10};
    unsigned char out[1] = {};
    unsigned int count = 0;
    const int result = RunCommand(script, sizeof script, &comm, out, &count);
    if (!Succeeded("RunCommand", static_cast<unsigned int>(result))) {
        return false;
    }
    std::printf("script read %u byte: 0x%02X\n", count, out[0]);
    return true;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: bus_host COMMUNICATION-LIBRARY\n");
        return 2;
    }
    std::wstring path = CCpTransform().ConvertUTF8StringToUnicode(argv[1]);
    CNxComm comm;
    if (comm.LoadCommDllFile(path.data()) != 1) {
        std::fprintf(stderr, "cannot load %s as a communication library\n", argv[1]);
        return 1;
    }
    const bool done = Succeeded("Initiallize", comm.Initiallize()) && ShowRegister(comm, 0x10) &&
                      RunScript(comm) && DumpEdid(comm);
    comm.FreeCommDllFile(); // the destructor does not close it
    return done ? 0 : 1;
}
