#include <pthread.h>

#include "probe/Groups.h"
#include "probe/Platform.h"

namespace {

bool g_destructorRan = false;

struct OnTheStack {
    ~OnTheStack() {
        g_destructorRan = true;
    }
};

void *EndInside(void * /*argument*/) {
    const OnTheStack object;
    ::pthread_exit(nullptr);
}

} // namespace

void ProbeThreads(const Surroundings &surroundings) {
    pthread_attr_t attributes;
    std::size_t size = 0;
    ::pthread_attr_init(&attributes);
    ::pthread_attr_getstacksize(&attributes, &size);
    ::pthread_attr_destroy(&attributes);
    surroundings.results.Assume("stack_of_secondary_thread", PlatformAssumption("", "524288"),
                                std::to_string(size));
    pthread_t thread{};
    if (::pthread_create(&thread, nullptr, EndInside, nullptr) == 0) {
        ::pthread_join(thread, nullptr);
        surroundings.results.Assume("destructors_at_pthread_exit",
                                    PlatformAssumption("run", "do not run"),
                                    g_destructorRan ? "run" : "do not run");
    }
}
