// A host that defines functions under names the library uses too, exports them, and links the
// library. Whatever such a host does, the library must go on using its own.

#include <cstdio>
#include <string>
#include <vector>

#include "scaler_isp/ScalerIsp.h"

namespace {

int hostCalls = 0;
int failures = 0;

void Expect(bool condition, const char *what) {
    if (!condition) {
        std::fprintf(stderr, "failed: %s\n", what);
        ++failures;
    }
}

} // namespace

std::vector<std::string> StringSplit(const std::string & /*text*/, const char * /*delimiters*/,
                                     int /*keepEmpty*/) {
    ++hostCalls;
    return {"the", "host's"};
}

int StringtoInt(const std::string & /*text*/, int &value) {
    ++hostCalls;
    value = -4711;
    return 0;
}

int main() {
    std::vector<std::string> words;
    Expect(ParseCommandLineParameter(words, "a \"b c\" d") == 1, "the line is split");
    Expect(words == std::vector<std::string>{"a", "b c", "d"}, "by the library's StringSplit");

    // Accepted, and then there is no plug-in; a line whose words or numbers are misread gives -1.
    const int result = OperateScaler(L"tool --resetmcu --comm=3", nullptr, nullptr, nullptr);
    Expect(result == 0xD67, "the command line is accepted");
    Expect(hostCalls == 0, "no function of the host is called");

    StringSplit("", "", 0);
    Expect(hostCalls == 1, "the host uses its own");
    return failures == 0 ? 0 : 1;
}
