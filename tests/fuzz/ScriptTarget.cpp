// Register scripts. Text: what is assembled, listed and assembled again is the same. Bytes: what is
// listed and assembled is the same; what the check accepts runs within its buffers. The first
// character, t or b, decides.

#include <array>

#include <unistd.h>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "ShownText.h"
#include "scaler_isp/common/CommandText.h"
#include "scaler_isp/common/script/RegisterScript.h"
#include "script/ScriptCheck.h"
#include "script/ScriptText.h"
#include "unit/common/script/RecordingComm.h"

// Waits of a script would only cost time.
extern "C" int usleep(useconds_t /*microseconds*/) {
    return 0;
}

namespace {

using namespace ispctl;
using Bytes = std::vector<std::uint8_t>;

/// All records of a script without requests over DDC/CI; nothing if it has errors or requests.
std::optional<Bytes> RecordsOf(const std::string &text) {
    const AssembledScript script = AssembleScript(text);
    if (!script.errors.First().empty() || script.steps.size() != 1 || script.steps[0].ddc) {
        return std::nullopt;
    }
    return script.steps[0].records;
}

void CheckRoundTrip(const Bytes &bytes) {
    const std::string text = ListScript(bytes);
    FUZZ_CHECK(IsPlainAscii(text), text);
    const auto again = RecordsOf(text);
    FUZZ_CHECK(again && *again == bytes, text);
    const std::string list = ByteListOfScript(bytes);
    std::wstring wide(list.begin(), list.end());
    Bytes read(bytes.size() + 1);
    const int count = CmdToBin(wide.data(), static_cast<unsigned int>(wide.size()), read.data(),
                               static_cast<unsigned int>(read.size()));
    read.resize(static_cast<std::size_t>(count));
    FUZZ_CHECK(read == bytes, list);
}

/// Runs what the check accepts. The buffers have exactly the size that it states.
void CheckRun(Bytes bytes) {
    constexpr std::size_t kLongestOutput = 1 << 20;
    const ScriptReport report = CheckScript(bytes);
    FUZZ_CHECK((report.problemCount == 0) == report.problems.empty(), "problems");
    if (report.problemCount != 0 || report.outputBytes > kLongestOutput) {
        return;
    }
    RecordingComm comm;
    Bytes out(report.outputBytes);
    unsigned int count = 0;
    const int result = RunCommand(bytes.data(), static_cast<unsigned int>(bytes.size()), &comm,
                                  out.empty() ? nullptr : out.data(), &count);
    // A poll may give up; whatever else was accepted succeeds on a bus that never fails.
    FUZZ_CHECK(result == 0 || result == SCALER_ISP_SCRIPT_POLL_FAILED, ListScript(bytes));
    FUZZ_CHECK(result != 0 || count == report.outputBytes, ListScript(bytes));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    FuzzInput input(data, size);
    const unsigned int kind = input.Byte();
    const std::string content = input.Rest();
    Bytes bytes(content.begin(), content.end());
    if (kind == 't') {
        const auto records = RecordsOf(content);
        if (!records) {
            return 0;
        }
        bytes = *records;
    }
    CheckRoundTrip(bytes);
    CheckRun(bytes);
    return 0;
}
