#include "station/BackupCall.h"

#include <fmt/format.h>
#include <unistd.h>

#include "CommandLine.h"
#include "scaler_isp/abi/ResultCodes.h"

namespace ispctl {
namespace {

JudgedResult NotProgrammed() {
    JudgedResult judged;
    judged.result.code = SCALER_ISP_REFUSED;
    judged.result.fromLibrary = 1;
    return judged;
}

JudgedResult Refuse(ParentLink &link, const std::string &reason) {
    link.Send(FrameKind::Refused, EncodeRefusal({kExitFileError, "backup", reason}));
    return NotProgrammed();
}

std::optional<JudgedResult> BackUpRange(const BackupRange &range,
                                        const std::vector<std::string> &arguments,
                                        const ScalerLibrary &library, const LineContext &context,
                                        const LibraryCall &call, ParentLink &link) {
    if (!link.Send(FrameKind::Notice,
                   fmt::format("backup: reading {} into {}", range.Banks(), range.file.string()))) {
        return NotProgrammed();
    }
    const std::vector<std::string> dump = BackupLine(range, arguments);
    const CommandLine line =
        BuildCommandLine(dump, [&](const std::string &text) { return library.Split(text); });
    if (!line.IsValid()) {
        return Refuse(link, line.error);
    }
    JudgedResult judged = call(line.line, context.parse(dump).records.get());
    std::string error;
    const std::string record = judged.result.code == 0 ? CheckBackup(range, error) : "";
    if (record.empty()) {
        ::unlink(range.file.c_str());
        return judged.result.code == 0 ? Refuse(link, error) : judged;
    }
    if (!link.Send(FrameKind::Backup, record)) {
        return NotProgrammed();
    }
    return std::nullopt;
}

} // namespace

std::optional<JudgedResult> BackUp(const std::vector<BackupRange> &ranges,
                                   const std::vector<std::string> &arguments,
                                   const ScalerLibrary &library, const LineContext &context,
                                   const LibraryCall &call, ParentLink &link) {
    if (ranges.empty()) {
        return std::nullopt;
    }
    // Without an answer ispctl has ended or wants the run to end, and nothing is programmed yet.
    if (!link.Send(FrameKind::Stage, BytesOf(RunStage::Backup))) {
        return NotProgrammed();
    }
    try {
        for (const BackupRange &range : ranges) {
            auto failed = BackUpRange(range, arguments, library, context, call, link);
            if (failed) {
                return failed;
            }
        }
    } catch (const std::exception &) {
        return NotProgrammed(); // a plug-in may have used up the memory
    }
    if (!link.Send(FrameKind::Stage, BytesOf(RunStage::Call))) {
        return NotProgrammed();
    }
    return std::nullopt;
}

} // namespace ispctl
