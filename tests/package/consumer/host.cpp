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

int main(int argc, char **argv) {
    Expect(OperateScaler(L"", nullptr, nullptr, nullptr) == -1, "an empty line is refused");

    std::vector<std::string> words;
    Expect(ParseCommandLineParameter(words, "a \"b c\" d") == 1, "a line is split");
    Expect(words == std::vector<std::string>{"a", "b c", "d"}, "quotes keep blanks");

    CCpNxString text(L"left");
    Expect(text + CCpNxString(L"right") == CCpNxString(L"leftright"), "texts are joined");

    STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS args;
    Expect(sizeof args == 1840 && args.nKeyPair == 0, "the sign record is empty");

    // The library is in the named directory, or in one called lib, wherever the prefix was moved.
    CCpNxString folder = GetCurrentProcessDir(reinterpret_cast<void *>(&OperateScaler));
    const std::string path = folder.GetStringBufferBaseOnOS();
    const std::string end = argc > 1 ? argv[1] + std::string("/") : "/lib/";
    Expect(path.size() > end.size() - 1 && path.substr(path.size() - end.size()) == end,
           "the library is found in its directory");
    return failures == 0 ? 0 : 1;
}
