// A C++ host whose progress callback throws: the exception passes through a C++ plug-in and ends at
// the library's border. The library lies beside this program's folder of plug-ins.

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <initializer_list>
#include <stdexcept>

#include "scaler_isp/OperateScaler.h"

namespace {

bool g_throws = false;

void Progress(int percent) {
    if (g_throws) {
        throw std::runtime_error("thrown by the host");
    }
    std::printf("progress %d\n", percent);
}

void Expect(const char *what, int seen, int due) {
    if (seen != due) {
        std::printf("%s: %d where %d was due\n", what, seen, due);
        std::exit(1);
    }
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: throwing_host LIBRARY\n");
        return 2;
    }
    void *library = dlopen(argv[1], RTLD_NOW);
    void *symbol = library != nullptr ? dlsym(library, "OperateScaler") : nullptr;
    if (symbol == nullptr) {
        std::printf("%s\n", dlerror());
        return 1;
    }
    const auto operate = reinterpret_cast<decltype(&OperateScaler)>(symbol);
    for (const bool throws : {false, true, false}) {
        g_throws = throws;
        Expect(throws ? "a callback that throws" : "a callback that returns",
               operate(L"host --resetmcu", nullptr, &Progress, nullptr), throws ? -1 : 0);
    }
    return 0;
}
