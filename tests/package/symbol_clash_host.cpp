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

/// Both programs hold the exported pointers at one place, although this one has copied them.
void TestPointers(const char *deviceFile) {
    const std::string file(deviceFile);
    std::wstring path(file.begin(), file.end()); // a build folder with an ASCII name
    Expect(nxdI2CWrite == nullptr && g_hDeviceDll == nullptr, "no device library is loaded");
    Expect(nxdLoadDeviceDllFile(path.data()) == 1, "the device library is loaded");
    Expect(nxdI2CWrite != nullptr && nxdSendUsbPacket != nullptr, "its functions are seen here");
    Expect(g_hDeviceDll != nullptr, "and so is its handle");
    nxdFreeDeviceDllFile();
    Expect(nxdI2CWrite == nullptr && g_hDeviceDll == nullptr, "and that they are gone");
}

int main(int argc, char **argv) {
    Expect(argc == 2, "the device library is named");
    std::vector<std::string> words;
    Expect(ParseCommandLineParameter(words, "a \"b c\" d") == 1, "the line is split");
    Expect(words == std::vector<std::string>{"a", "b c", "d"}, "by the library's StringSplit");

    // Accepted, and then there is no plug-in; a line whose words or numbers are misread gives -1.
    const int result = OperateScaler(L"tool --resetmcu --comm=3", nullptr, nullptr, nullptr);
    Expect(result == 0xD67, "the command line is accepted");
    Expect(hostCalls == 0, "no function of the host is called");

    StringSplit("", "", 0);
    Expect(hostCalls == 1, "the host uses its own");

    TestPointers(argv[1]);
    return failures == 0 ? 0 : 1;
}
