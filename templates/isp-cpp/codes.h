#ifndef CODES_H
#define CODES_H

/// Result codes of this plug-in, explained to users in libIsp.codes.
enum Code {
    kNoChip = 0x7001,
    kNoFirmware = 0x7002,
    kTooLarge = 0x7003,
    kNotVerified = 0x7004,
    kNoDump = 0x7005,
    kNoKey = 0x7006,
    kInternal = 0x7007
};

#endif
