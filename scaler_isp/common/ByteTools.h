#ifndef SCALER_ISP_COMMON_BYTE_TOOLS_H
#define SCALER_ISP_COMMON_BYTE_TOOLS_H

#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// The sum of the bytes modulo 2^32. Null counts as no bytes.
SCALER_ISP_API int CalculateByteChecksum(unsigned char *data, unsigned int size);

/// The sum of little-endian 16-bit words modulo 2^16; an odd last byte is added unchanged.
SCALER_ISP_API unsigned int CalculateWordChecksum(unsigned char *data, unsigned int size);

/// Writes a string to a file, in the encoding of the environment's locale.
/// \param charCount  0: writes the string and one zero byte; otherwise charCount * 4 + 1 bytes, the
///                   string padded with zero bytes.
/// \param append     non-zero: appends to the file; 0: replaces its contents.
/// RETURNS 1 if written, 0 if the file cannot be opened. A string that the encoding cannot express
/// is written as zero bytes only.
// QUIRK Saved_text_ends_in_a_zero_byte: the terminator is written as well.
SCALER_ISP_API int CpNxSaveAnsiFile(CCpNxString path, CCpNxString text, unsigned int charCount,
                                    int append);

#endif
