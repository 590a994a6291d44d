#ifndef SCALER_ISP_COMMON_SCRIPT_REGISTER_SCRIPT_H
#define SCALER_ISP_COMMON_SCRIPT_REGISTER_SCRIPT_H

#include "scaler_isp/abi/Export.h"

class CNxComm;

/// Results of RunCommand that are no status of the communication library.
enum ScalerIspScriptResult : int {
    SCALER_ISP_SCRIPT_UNKNOWN_OPCODE = 1,
    SCALER_ISP_SCRIPT_UNSUPPORTED = 2,
    SCALER_ISP_SCRIPT_POLL_FAILED = 3
};

/// Carries out a register script: records of an opcode byte and operands, listed in
/// script_opcodes.def. Stops at the first record that does not succeed.
///
/// \param script  the records. REQUIRES: every record whose opcode lies within `length` is
///                whole; the operands are read wherever they lie.
/// \param length  UNITS: bytes.
/// \param comm    where the records act; null: records that need it end with 6.
/// \param out     receives the bytes that records read, one after the other; may be null
///                where nothing is read. REQUIRES: room for all of them.
/// \param count   raised by the number of bytes read; may be null.
/// RETURNS 0 when every record succeeded; the status of the call that failed; or 1 for an unknown
/// opcode, 2 for an unsupported one and for a read without `out`, 3 for a poll that ran out of
/// tries.
// QUIRK Opcode_26_skips_the_last_block_length: behind a record 26 the script goes on L bytes
// further, L being the length of the last block record, 0 before the first one.
// QUIRK Block_reads_do_not_ask_for_an_output_pointer: opcodes 21, 23 and 25 pass a null pointer on.
SCALER_ISP_API int RunCommand(unsigned char *script, unsigned int length, CNxComm *comm,
                              unsigned char *out, unsigned int *count);

#endif
