#ifndef SCALER_ISP_TESTS_COMM_RECORD_H
#define SCALER_ISP_TESTS_COMM_RECORD_H

/// The last call of the recording communication library.
struct CommRecord {
    int calls;               ///< since the library was loaded
    const char *name;        ///< exported name of the function called last
    unsigned arguments;      ///< how many it had
    unsigned sizes[8];       ///< their sizes in bytes
    unsigned char bytes[64]; ///< and their bytes, one after the other
    unsigned byteCount;
};

#endif
