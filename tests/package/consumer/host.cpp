#include <cstdio>
#include <string>
#include <vector>

#include <scaler_isp/ScalerIsp.h>

namespace {

int failures = 0;

void Expect(bool condition, const char *what) {
    if (!condition) {
        std::fprintf(stderr, "failed: %s\n", what);
        ++failures;
    }
}

} // namespace

int main() {
    Expect(OperateScaler(L"", nullptr, nullptr, nullptr) == -1, "an empty line is refused");

    std::vector<std::string> words;
    Expect(ParseCommandLineParameter(words, "a \"b c\" d") == 1, "a line is split");
    Expect(words == std::vector<std::string>{"a", "b c", "d"}, "quotes keep blanks");

    CCpNxString text(L"left");
    Expect(text + CCpNxString(L"right") == CCpNxString(L"leftright"), "texts are joined");

    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS args;
    Expect(sizeof args == 1840 && args.nKeyPair == 0, "the sign record is empty");

    // The library lies in a folder named lib, wherever the prefix was moved.
    CCpNxString folder = GetCurrentProcessDir(reinterpret_cast<void *>(&OperateScaler));
    const std::string path = folder.GetStringBufferBaseOnOS();
    Expect(path.size() > 5 && path.substr(path.size() - 5) == "/lib/",
           "the library's folder is lib");
    return failures == 0 ? 0 : 1;
}
