#ifndef SCALER_ISP_SIMULATOR_ISP_RECORD_LINE_H
#define SCALER_ISP_SIMULATOR_ISP_RECORD_LINE_H

#include <string>

#include "isp/Device.h"

namespace virtual_scaler {

/// RETURNS the journal line of a call that receives the command: the fields that differ from their
/// defaults in the order of the record, the bank map as runs, for example banks=[3..5 <-
/// "/fw/a.bin" 0..2].
std::string RecordLine(const char *function, const Setting &setting);

} // namespace virtual_scaler

#endif
