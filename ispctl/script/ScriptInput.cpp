#include "script/ScriptInput.h"

#include <fmt/format.h>

#include "FileIo.h"
#include "Utf8.h"

namespace ispctl {
namespace {

// Far more than any script needs. UNITS: bytes.
constexpr std::size_t kMaxScript = 16 * 1024 * 1024;

constexpr std::string_view kSpaces = "\t\n\r";

bool IsControl(char c) {
    constexpr unsigned char kFirstPrintable = 0x20;
    return static_cast<unsigned char>(c) < kFirstPrintable &&
           kSpaces.find(c) == std::string_view::npos;
}

constexpr std::string_view kStandardInput = "-";

void PrintErrors(const std::string &file, const ScriptErrors &errors, Session &session) {
    for (const auto &[line, error] : errors.First()) {
        session.streams.Print(
            Stream::Error, fmt::format("{}:{}:{}: {}\n", file, line, error.Column(), error.Text()));
    }
    if (errors.Unlisted() > 0) {
        session.streams.Print(
            Stream::Error, fmt::format("{}: {} more lines have errors\n", file, errors.Unlisted()));
    }
}

} // namespace

std::string ShownName(const std::string &file) {
    return file == kStandardInput ? "standard input" : file;
}

std::optional<std::size_t> FirstByteOfBinary(std::string_view content) {
    for (std::size_t i = 0; i < content.size(); ++i) {
        if (IsControl(content[i])) {
            return i;
        }
    }
    // Three opcodes look like spaces. A text may begin with one, but bytes are seldom UTF-8.
    const bool mayBeOpcode =
        !content.empty() && kSpaces.find(content.front()) != std::string_view::npos;
    return mayBeOpcode && !WideFromUtf8(std::string(content)) ? std::optional<std::size_t>(0)
                                                              : std::nullopt;
}

std::optional<ScriptInput> ReadScript(const std::string &file, ScriptForm form, ExitStatus &status,
                                      Session &session) {
    const std::string shown = ShownName(file);
    InputFault fault;
    const auto content =
        ReadInput(file == kStandardInput ? InputSource::StandardInput() : InputSource::Open(file),
                  shown, kMaxScript, fault);
    if (!content) {
        status = session.Fail(kExitFileError, fault.text);
        return std::nullopt;
    }
    const auto binary = FirstByteOfBinary(*content);
    if (form == ScriptForm::Bytes || (form == ScriptForm::Detected && binary)) {
        ScriptInput input;
        input.steps.resize(1);
        input.steps.front().records.assign(content->begin(), content->end());
        if (form == ScriptForm::Detected) {
            input.whyBytes = fmt::format("{} was read as bytes, because its byte {} is none of a "
                                         "text; --text reads it as script text",
                                         shown, *binary);
        }
        return input;
    }
    AssembledScript script = AssembleScript(*content);
    if (!script.errors.First().empty()) {
        PrintErrors(shown, script.errors, session);
        status = kExitFailed;
        return std::nullopt;
    }
    return ScriptInput{std::move(script.steps), ""};
}

} // namespace ispctl
