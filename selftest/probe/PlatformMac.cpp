#if defined(__APPLE__)

#include "probe/Platform.h"

#include <cstdlib>
#include <dispatch/dispatch.h>
#include <sys/sysctl.h>

const char *PlatformAssumption(const char * /*onLinux*/, const char *onMac) {
    return onMac;
}

const char *PlatformAssumptionSince(int version, const char *before, const char *since) {
    char running[32] = "";
    std::size_t size = sizeof running - 1;
    if (::sysctlbyname("kern.osproductversion", running, &size, nullptr, 0) != 0) {
        return "";
    }
    return std::atoi(running) >= version ? since : before;
}

bool PlatformCallOnSmallStack(void (*function)(void *), void *argument) {
    dispatch_queue_t queue = ::dispatch_queue_create("selftest", nullptr);
    dispatch_group_t group = ::dispatch_group_create();
    ::dispatch_group_async_f(group, queue, argument, function);
    const bool ran = ::dispatch_group_wait(group, DISPATCH_TIME_FOREVER) == 0;
    ::dispatch_release(group);
    ::dispatch_release(queue);
    return ran;
}

std::string PlatformLibraryName() {
    return "libScalerIsp.dylib";
}

#endif
