#ifndef SCALER_ISP_COMMON_SCRIPT_REGISTER_SCRIPT_H
#define SCALER_ISP_COMMON_SCRIPT_REGISTER_SCRIPT_H

#include "scaler_isp/abi/Export.h"

class CNxComm;

/// Results of RunCommand that do not come from the communication library.
enum ScalerIspScriptResult : int {
    SCALER_ISP_SCRIPT_UNKNOWN_OPCODE = 1,
    SCALER_ISP_SCRIPT_UNSUPPORTED = 2,
    SCALER_ISP_SCRIPT_POLL_FAILED = 3
};

/// Runs a register script: records of an opcode byte and operands, listed in script_opcodes.def.
/// Stops at the first record that fails.
///
/// \param script  the records. REQUIRES: every record whose opcode is within `length` is complete,
///                because its operands are read even beyond `length`.
/// \param length  UNITS: bytes.
/// \param comm    receives the calls; null: records that need it end with 6.
/// \param out     receives the bytes that records read, consecutively; may be null if nothing is
///                read. REQUIRES: capacity for all of them.
/// \param count   incremented by the number of bytes read; may be null.
/// RETURNS 0 if every record succeeded; otherwise the status of the failed call, or 1 for an
/// unknown opcode, 2 for an unsupported one or a read without `out`, 3 for a poll that ran out of
/// attempts.
// QUIRK Opcode_26_skips_the_last_block_length: after a record with opcode 26 the script skips L
// bytes, where L is the length of the last block record, or 0 before the first one.
// QUIRK Block_reads_do_not_ask_for_an_output_pointer: opcodes 21, 23 and 25 pass a null output
// pointer to the communication library.
SCALER_ISP_API int RunCommand(unsigned char *script, unsigned int length, CNxComm *comm,
                              unsigned char *out, unsigned int *count);

#endif
