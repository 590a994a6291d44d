// Whatever an EDID file holds: what is shown of it is text, the JSON is JSON, and the byte list is
// read back as the same bytes. The first character demands a form.

#include <algorithm>
#include <nlohmann/json.hpp>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "ShownText.h"
#include "edid/EdidJson.h"
#include "edid/EdidReport.h"
#include "edid/EdidView.h"

namespace {

using namespace ispctl::edid;

constexpr FormOption kForms[] = {FormOption::Detect, FormOption::Binary, FormOption::Hex,
                                 FormOption::List};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size > kMaxInputBytes) {
        return -1;
    }
    FuzzInput input(data, size);
    const FormOption form = kForms[input.Below(4)];
    const Report report = MakeReport("f\xC3\xA4\x1B[2J.bin", ReadInput(input.Rest(), form));
    const std::string json = WriteJson({report});
    FUZZ_CHECK(nlohmann::json::accept(json), json);
    FUZZ_CHECK(IsPlainAscii(json), json);
    if (!report.HasFacts()) {
        FUZZ_CHECK(!report.Reason().empty(), "no reason");
        return 0;
    }
    FUZZ_CHECK(HasNoControlByte(WriteView(report)), WriteView(report));
    const Input again = ReadInput(WriteByteList(report.input.bytes), FormOption::Detect);
    FUZZ_CHECK(again.bytes == report.input.bytes, WriteByteList(report.input.bytes));
    return 0;
}
