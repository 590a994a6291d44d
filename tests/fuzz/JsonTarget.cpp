// Text of the library, its plug-ins and the file system on the way to a terminal, to JSON, to XML
// and to a shell: whatever the bytes are, no control character is left and JSON stays JSON.

#include <algorithm>
#include <nlohmann/json.hpp>

#include "FuzzCheck.h"
#include "FuzzInput.h"
#include "JsonText.h"
#include "LineBuffer.h"
#include "ShownText.h"
#include "Utf8.h"
#include "VisibleText.h"
#include "explain/XmlText.h"
#include "line/ShellQuote.h"

namespace {

using namespace ispctl;

bool ActsOnNothing(const std::string &text, bool withLines) {
    const auto wide = WideFromUtf8(text);
    return wide && std::none_of(wide->begin(), wide->end(), [&](wchar_t c) {
               const bool isLayout = c == L'\n' || c == L'\t';
               return IsControl(static_cast<char32_t>(c)) && !(withLines && isLayout);
           });
}

void CheckJson(const std::string &bytes, Charset charset) {
    Json object;
    SetText(object, "text", bytes);
    object["name"] = StringOrNull(bytes);
    object[EscapeBytes(bytes).text] = JsonString(bytes);
    for (const std::string &text : {JsonLine(object, charset), JsonDocument(object, charset)}) {
        FUZZ_CHECK(nlohmann::json::accept(text), text);
        FUZZ_CHECK(ActsOnNothing(text, true), text);
        FUZZ_CHECK(charset == Charset::Utf8 || IsPlainAscii(text), text);
        FUZZ_CHECK(Json::parse(text)["text"] == object["text"], text);
    }
    FUZZ_CHECK(JsonLine(object, charset).find('\n') == JsonLine(object, charset).size() - 1, bytes);
}

void CheckVisible(const std::string &bytes, Charset charset, std::size_t pieces) {
    FUZZ_CHECK(ActsOnNothing(Visible(bytes, Layout::OneLine, charset), false), bytes);
    FUZZ_CHECK(ActsOnNothing(Visible(bytes, Layout::Lines, charset), true), bytes);
    VisibleStream whole(charset, Colours::Drop);
    std::string expected = whole.Add(bytes); // operands of + may be called in any order
    expected += whole.Finish();
    FUZZ_CHECK(ActsOnNothing(expected, true), expected);
    VisibleStream stream(charset, Colours::Drop);
    std::string shown;
    for (std::size_t at = 0; at < bytes.size(); at += pieces) {
        shown += stream.Add(std::string_view(bytes).substr(at, pieces));
    }
    shown += stream.Finish();
    FUZZ_CHECK(shown == expected, shown + "\n---\n" + expected);
}

void CheckLines(const std::string &bytes, std::size_t pieces) {
    std::string joined;
    LineBuffer buffer([&](std::string_view piece) { joined += piece; });
    for (std::size_t at = 0; at < bytes.size(); at += pieces) {
        buffer.Add(std::string_view(bytes).substr(at, pieces));
        buffer.FlushCompleteCharacters();
    }
    buffer.EmitAll();
    FUZZ_CHECK(joined == bytes, joined);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    FuzzInput input(data, size);
    const unsigned int options = input.Below(32);
    const Charset charset = options % 2 == 0 ? Charset::Utf8 : Charset::Ascii;
    const std::size_t pieces = 1 + options / 2;
    const std::string bytes = input.Rest();
    CheckJson(bytes, charset);
    CheckVisible(bytes, charset, pieces);
    CheckLines(bytes, pieces);
    FUZZ_CHECK(ActsOnNothing(XmlText(bytes), true), XmlText(bytes));
    const std::string quoted = QuoteForShell(bytes, charset);
    FUZZ_CHECK(ActsOnNothing(quoted, false), quoted);
    FUZZ_CHECK(charset == Charset::Utf8 || IsPlainAscii(quoted), quoted);
    return 0;
}
