#ifndef SCALER_ISP_COMMON_BYTE_TOOLS_H
#define SCALER_ISP_COMMON_BYTE_TOOLS_H

#include "scaler_isp/abi/Export.h"
#include "scaler_isp/common/CCpNxString.h"

/// The sum of the bytes, cut to 32 bits. Null counts as no bytes.
SCALER_ISP_API int CalculateByteChecksum(unsigned char *data, unsigned int size);

/// The sum of little-endian 16-bit words, kept to 16 bits; a lone last byte is added as it is.
SCALER_ISP_API unsigned int CalculateWordChecksum(unsigned char *data, unsigned int size);

/// Writes a text to a file, in the encoding of the environment's locale.
/// \param charCount  0: the text and one zero byte are written; otherwise charCount * 4 + 1
///                   bytes, the text followed by zero bytes.
/// \param append     non-zero: behind what the file holds; 0: instead of it.
/// RETURNS 1 when written, 0 where the file cannot be opened. A text that cannot be expressed
/// leaves zero bytes only.
// QUIRK Saved_text_ends_in_a_zero_byte: the terminator is written too.
SCALER_ISP_API int CpNxSaveAnsiFile(CCpNxString path, CCpNxString text, unsigned int charCount,
                                    int append);

#endif
