// Checks what a shell cannot: run.sh starts this program once for each group, so that a crash ends
// one group only, and reads what it wrote into RESULTS.
//
//   probe GROUP RESULTS DIRECTORY LIBRARY-DIRECTORY
//   probe image FILE...
//   probe processor           prints the one that it was compiled for

#include <cstdio>
#include <cstring>
#include <unistd.h>

#include "probe/Groups.h"

namespace {

#if defined(__aarch64__)
constexpr const char *kProcessor = "arm64";
#elif defined(__x86_64__)
constexpr const char *kProcessor = "x86_64";
#else
constexpr const char *kProcessor = "other";
#endif

constexpr unsigned kLongestGroupSeconds = 300;

struct Group {
    const char *name;
    void (*run)(const Surroundings &);
};

constexpr Group kGroups[] = {
    {"calls", ProbeCalls},     {"iconv", ProbeIconv}, {"loading", ProbeLoading},
    {"locale", ProbeLocale},   {"names", ProbeNames}, {"realpath", ProbeRealpath},
    {"threads", ProbeThreads},
};

const Group *FindGroup(const char *name) {
    for (const Group &group : kGroups) {
        if (std::strcmp(group.name, name) == 0) {
            return &group;
        }
    }
    return nullptr;
}

} // namespace

int main(int argc, char **argv) {
    if (argc >= 2 && std::strcmp(argv[1], "image") == 0) {
        return DescribeImages(argc - 2, argv + 2);
    }
    if (argc == 2 && std::strcmp(argv[1], "processor") == 0) {
        std::printf("%s\n", kProcessor);
        return 0;
    }
    const Group *group = argc == 5 ? FindGroup(argv[1]) : nullptr;
    if (group == nullptr) {
        std::fprintf(stderr, "usage: probe GROUP RESULTS DIRECTORY LIBRARY-DIRECTORY\n"
                             "       probe image FILE...\n"
                             "       probe processor\n"
                             "run.sh, in the same directory, uses it\n");
        return 2;
    }
    ::alarm(kLongestGroupSeconds); // a hang ends the group, too
    Results results(argv[2], argv[1], argv[3]);
    group->run({results, argv[3], argv[4]});
    results.End();
    return 0;
}
