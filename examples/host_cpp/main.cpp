// A host in C++ that links the library:
//
//   host_cpp --isp --fw "$PWD/monitor.bin"
//
// CMakeLists.txt lets it find the library in the virtual scaler's directory.

#include <cstdio>
#include <exception>
#include <string>

#include <scaler_isp/ScalerIsp.h>

namespace {

// Both callbacks run on this thread, during the call. Do not use std::wcout: the library prints to
// stdout with printf.
void OnProgress(int percent) {
    std::fprintf(stderr, "progress %d %%\n", percent);
}

void OnMessage(wchar_t *text) {
    std::string utf8 = CCpTransform().ConvertUnicodeStringToUTF8(text);
    if (utf8.empty() || utf8.back() != '\n') {
        utf8 += '\n';
    }
    std::fprintf(stderr, "message: %s", utf8.c_str());
}

const char *MeaningOf(int code) {
    switch (code) {
#define ROW(NAME, VALUE, MEANING, ...)                                                             \
    case VALUE:                                                                                    \
        return MEANING;
        SCALER_ISP_RESULT_CODES(ROW)
#undef ROW
    default:
        return "an error code of the plug-in";
    }
}

} // namespace

int main(int argc, char **argv) {
    std::string line = "host"; // the first word of a line is the program's name
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.find('"') != std::string::npos) {
            // The library would split the line elsewhere.
            std::fprintf(stderr, "an argument cannot contain a quote: %s\n", argv[i]);
            return 2;
        }
        const bool quoted = argument.find(' ') != std::string::npos;
        line += quoted ? " \"" + argument + '"' : ' ' + argument;
    }
    const std::wstring wide = CCpTransform().ConvertUTF8StringToUnicode(line);
    const int code = OperateScaler(wide.c_str(), nullptr, OnProgress, OnMessage);
    std::fprintf(stderr, "result 0x%X: %s\n", static_cast<unsigned>(code), MeaningOf(code));
    return code == SCALER_ISP_SUCCESS ? 0 : 1;
}
