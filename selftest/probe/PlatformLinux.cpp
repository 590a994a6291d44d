#if !defined(__APPLE__)

#include "probe/Platform.h"

#include <pthread.h>

namespace {

constexpr std::size_t kSmallStack = 512 * 1024;

struct Call {
    void (*function)(void *);
    void *argument;
};

void *Run(void *argument) {
    const Call *call = static_cast<const Call *>(argument);
    call->function(call->argument);
    return nullptr;
}

} // namespace

const char *PlatformAssumption(const char *onLinux, const char * /*onMac*/) {
    return onLinux;
}

const char *PlatformAssumptionSince(int /*version*/, const char * /*before*/,
                                    const char * /*since*/) {
    return "";
}

bool PlatformCallOnSmallStack(void (*function)(void *), void *argument) {
    Call call{function, argument};
    pthread_attr_t attributes;
    pthread_t thread{};
    ::pthread_attr_init(&attributes);
    const bool runs = ::pthread_attr_setstacksize(&attributes, kSmallStack) == 0 &&
                      ::pthread_create(&thread, &attributes, Run, &call) == 0;
    ::pthread_attr_destroy(&attributes);
    return runs && ::pthread_join(thread, nullptr) == 0;
}

std::string PlatformLibraryName() {
    return "libScalerIsp.so";
}

#endif
