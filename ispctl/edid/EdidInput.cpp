#include "edid/EdidInput.h"

#include <algorithm>
#include <utility>

#include "edid/input/Dump.h"
#include "edid/input/Listing.h"
#include "edid/input/Numbers.h"

namespace ispctl::edid {
namespace {

constexpr std::string_view kHeaderBytes("\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00", 8);
constexpr std::string_view kWhitespace = " \t\r\n\v\f";

struct FormRow {
    const char *word;
    const char *meaning;
};
constexpr FormRow kForms[] = {
#define ISPCTL_EDID_FORM(NAME, WORD, MEANING) {WORD, MEANING},
    ISPCTL_EDID_FORMS(ISPCTL_EDID_FORM)
#undef ISPCTL_EDID_FORM
};

bool IsControlByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 || byte == 0x7F) && kWhitespace.find(c) == std::string_view::npos;
}

void SetBytes(Input &input, std::string_view content) {
    input.form = Form::Binary;
    input.bytes.assign(content.begin(), content.end());
}

/// RETURNS whether the text is a listing; then its digits are read.
bool ReadListing(std::string_view text, Input &input) {
    constexpr struct {
        Listing (*find)(std::string_view);
        Form form;
    } kListings[] = {{FindProperty, Form::Property},
                     {FindDecoderBlock, Form::Decoder},
                     {FindRegFileValue, Form::RegFile}};
    for (const auto &row : kListings) {
        const Listing listing = row.find(text);
        if (listing.count == 0) {
            continue;
        }
        input.form = row.form;
        if (listing.count > 1) {
            input.remarks.push_back(
                MakeFinding(FindingId::MoreListings, std::nullopt, listing.count));
        }
        input.bytes = ParseHex(BlankComments(listing.digits.text), listing.digits.offset);
        return true;
    }
    return false;
}

bool ReadDump(std::string_view text, Input &input) {
    const DumpKind kind = DetectDump(text);
    if (kind == DumpKind::None) {
        return false;
    }
    input.form = kind == DumpKind::Colon ? Form::Xxd : Form::HexDump;
    DumpBytes dump = ParseDump(text, kind);
    input.bytes = std::move(dump.bytes);
    if (dump.isSwapped) {
        input.remarks.push_back(MakeFinding(FindingId::WordOrder, std::nullopt));
    }
    return true;
}

/// RETURNS whether a prefix makes this a list of numbers.
bool HasPrefix(std::string_view text) {
    return text.find("0x") != std::string_view::npos || text.find("0X") != std::string_view::npos ||
           text.find("\\x") != std::string_view::npos;
}

void ReadNumbers(std::string_view text, FormOption option, Input &input) {
    if (option == FormOption::Hex) {
        input.form = Form::Hex;
    } else if (text.find('{') != std::string_view::npos) {
        input.form = Form::Array;
    } else if (option == FormOption::List || HasPrefix(text) || AreDecimal(text)) {
        input.form = Form::List;
    } else {
        input.form = Form::Hex;
    }
    input.bytes = input.form == Form::Hex ? ParseHex(text, 0) : ParseList(text, 0);
}

void ReadText(std::string_view text, FormOption option, Input &input) {
    if (option == FormOption::Detect) {
        input.source = FormSource::Content;
        if (ReadListing(text, input)) {
            return;
        }
        if (IsListingWithoutEdid(text)) {
            input.form = Form::Property;
            input.problems.push_back(MakeFinding(
                FindingId::Syntax, std::nullopt,
                "no output in this listing has an EDID; it is shown by xrandr --verbose only"));
            return;
        }
        if (std::any_of(text.begin(), text.end(), IsControlByte)) {
            SetBytes(input, text);
            return;
        }
        input.source = FormSource::Guess;
        if (ReadDump(text, input)) {
            return;
        }
    }
    const std::string numbers = BlankComments(text);
    const Listing brackets = FindAngleBrackets(numbers);
    if (option != FormOption::List && brackets.count > 0) {
        input.form = Form::Registry;
        input.bytes = ParseHex(brackets.digits.text, brackets.digits.offset);
        return;
    }
    ReadNumbers(numbers, option, input);
}

void AddProblem(Input &input, std::string_view text, const SyntaxError &error) {
    const Position position = LineAndColumn(text, error.Offset());
    Finding problem = MakeFinding(
        FindingId::Syntax, std::nullopt,
        fmt::format("line {}, column {}: {}", position.line, position.column, error.Message()));
    problem.line = position.line;
    problem.column = position.column;
    input.problems.push_back(std::move(problem));
}

Input ReadAs(std::string_view content, FormOption option) {
    Input input;
    const bool isBinary = option == FormOption::Binary ||
                          (option == FormOption::Detect && content.starts_with(kHeaderBytes));
    const auto text = isBinary ? std::nullopt : WithoutByteOrderMark(content);
    if (!text) {
        input.source = option == FormOption::Detect ? FormSource::Content : FormSource::Option;
        SetBytes(input, content);
        return input;
    }
    try {
        ReadText(*text, option, input);
        if (input.bytes.empty() && input.problems.empty()) {
            input.problems.push_back(MakeFinding(FindingId::NoBytes, std::nullopt));
        }
    } catch (const SyntaxError &error) {
        input.bytes.clear();
        AddProblem(input, *text, error);
    }
    return input;
}

const char *FormThatReadsEdid(std::string_view content) {
    for (const auto &[option, form] :
         {std::pair(FormOption::Hex, Form::Hex), std::pair(FormOption::List, Form::List)}) {
        if (HasBaseBlock(ReadAs(content, option).bytes)) {
            return WordOf(form);
        }
    }
    return nullptr;
}

} // namespace

const char *WordOf(Form form) {
    return kForms[static_cast<std::size_t>(form)].word;
}

const char *MeaningOf(Form form) {
    return kForms[static_cast<std::size_t>(form)].meaning;
}

Input ReadInput(std::string_view content, FormOption option) {
    Input input = ReadAs(content, option);
    if (input.source == FormSource::Guess && !HasBaseBlock(input.bytes)) {
        input.betterForm = FormThatReadsEdid(content);
    }
    return input;
}

} // namespace ispctl::edid
