#include "station/BackupCall.h"

#include <fmt/format.h>
#include <unistd.h>

#include "CommandLine.h"

namespace ispctl {
namespace {

JudgedResult Refuse(ParentLink &link, const std::string &reason) {
    link.Send(FrameKind::Refused, EncodeRefusal({kExitFileError, "backup", reason}));
    JudgedResult judged;
    judged.result.fromLibrary = 1;
    return judged;
}

std::optional<JudgedResult> BackUpRange(const BackupRange &range,
                                        const std::vector<std::string> &arguments,
                                        const ScalerLibrary &library, const LineContext &context,
                                        const LibraryCall &call, ParentLink &link) {
    link.Send(FrameKind::Notice,
              fmt::format("backup: reading {} into {}", range.Banks(), range.file.string()));
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
    link.Send(FrameKind::Backup, record);
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
    link.Send(FrameKind::Stage, BytesOf(RunStage::Backup));
    for (const BackupRange &range : ranges) {
        auto failed = BackUpRange(range, arguments, library, context, call, link);
        if (failed) {
            return failed;
        }
    }
    link.Send(FrameKind::Stage, BytesOf(RunStage::Call));
    return std::nullopt;
}

} // namespace ispctl
