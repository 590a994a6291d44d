#include "edid/EdidSource.h"

#include "FileIo.h"
#include "edid/EdidBytes.h"

namespace ispctl::edid {

std::optional<std::string> ReadSource(const std::string &name, Finding &problem) {
    const bool isStandardInput = name == "-";
    InputFault fault;
    auto content =
        ReadInput(isStandardInput ? InputSource::StandardInput() : InputSource::Open(name),
                  isStandardInput ? "standard input" : name, kMaxInputBytes, fault);
    if (!content) {
        problem = MakeFinding(fault.kind == InputFault::Kind::TooLarge ? FindingId::TooLarge
                                                                       : FindingId::Unreadable,
                              std::nullopt, fault.text);
    }
    return content;
}

} // namespace ispctl::edid
