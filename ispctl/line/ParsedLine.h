#ifndef ISPCTL_LINE_PARSED_LINE_H
#define ISPCTL_LINE_PARSED_LINE_H

#include <memory>
#include <string>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"

namespace ispctl {

/// Both records of a command line, as large as they are: keep them on the heap.
struct Records {
    STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING command;
    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS sign;
};

/// What the library's parser makes of a command line, before any plug-in is loaded.
struct ParsedLine {
    bool accepted = false;
    std::string printed; ///< what the library wrote to standard output and standard error meanwhile
    std::shared_ptr<const Records> records; ///< of a refused line, too: what was stored until then
};

} // namespace ispctl

#endif
