#include "scaler_isp/common/ZeroedHeap.h"

#include <cstdlib>

void *AcquireZeroed(std::size_t size) {
    return std::calloc(1, size);
}

void ReleaseZeroed(void *memory) {
    std::free(memory);
}
