#ifndef ISPCTL_EDID_EDID_INPUT_H
#define ISPCTL_EDID_EDID_INPUT_H

#include <optional>
#include <string>
#include <string_view>

#include "edid/EdidBytes.h"
#include "edid/Finding.h"

namespace ispctl::edid {

/// The forms of an input, one row per form: X(NAME, WORD, MEANING). WORD is stable.
/* clang-format off */
#define ISPCTL_EDID_FORMS(X) \
    X(Binary, "binary", "raw bytes") \
    X(Hex, "hex", "hexadecimal digits") \
    X(List, "list", "a list of numbers") \
    X(Array, "c-array", "an array in C") \
    X(Xxd, "xxd", "a dump of xxd") \
    X(HexDump, "hexdump", "a dump of hexdump or od") \
    X(Decoder, "edid-decode", "the hex block of a decoder's listing") \
    X(Property, "xrandr", "an EDID property in a listing of xrandr") \
    X(Registry, "registry", "digits in angle brackets") \
    X(RegFile, "reg-file", "a value \"EDID\" in a .reg file of Windows") \
    X(Bus, "bus", "read from the display")
/* clang-format on */

enum class Form {
#define ISPCTL_EDID_FORM(NAME, WORD, MEANING) NAME,
    ISPCTL_EDID_FORMS(ISPCTL_EDID_FORM)
#undef ISPCTL_EDID_FORM
};
const char *WordOf(Form form);
const char *MeaningOf(Form form);

/// The form that the user demands.
enum class FormOption { Detect, Binary, Hex, List };

/// What the form follows from.
enum class FormSource {
    Option,  ///< the user demands it
    Content, ///< the content shows it
    Guess    ///< it is the most likely one
};

/// What was read.
struct Input {
    Form form = Form::Binary;
    FormSource source = FormSource::Option;
    Bytes bytes;
    Findings problems; ///< why there are no bytes; names line and column
    Findings remarks;
    /// Of a guess that has no EDID: the value of --form that reads one; null if none does.
    const char *betterForm = nullptr;
};

/// Reads an EDID of any form. Detected are, in this order: binary, if the EDID header comes first;
/// listings; control characters, which make it binary; dumps; digits in angle brackets; arrays;
/// lists, if there is a 0x or decimal numbers; else hexadecimal digits.
Input ReadInput(std::string_view content, FormOption option);

} // namespace ispctl::edid

#endif
