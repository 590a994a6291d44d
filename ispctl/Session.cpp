#include "Session.h"

#include "JsonEvents.h"
#include "Utf8.h"

namespace ispctl {

namespace {

/// How far a command was that fails.
std::string_view StageOf(ExitStatus status, bool isLibraryProcess) {
    switch (status) {
    case kExitFileError:
        return "files";
    case kExitNoPlugin:
        return "load";
    case kExitFailed:
    case kExitPluginEnded:
        return "call";
    default:
        return isLibraryProcess ? "open" : "usage";
    }
}

} // namespace

ExitStatus Session::Fail(ExitStatus status, std::string_view text, std::string_view stage) {
    streams.PrintMessage(text);
    if (!json) {
        return status;
    }
    if (stage.empty()) {
        stage = StageOf(status, link != nullptr);
    }
    const std::string event = JsonEvents::NotCalled(status, stage, text, {}, Charset::Ascii);
    if (link == nullptr) {
        streams.Write(Stream::Output, event);
    } else {
        // What this process writes is captured; only ispctl's own standard output is JSON.
        const std::wstring wide = WideFromUtf8(event).value_or(L"");
        link->Send(FrameKind::Message, {reinterpret_cast<const char *>(wide.data()),
                                        std::min(wide.size(), kMaxMessage) * sizeof(wchar_t)});
    }
    return status;
}

} // namespace ispctl
