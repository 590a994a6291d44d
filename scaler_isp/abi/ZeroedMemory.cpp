#include "scaler_isp/abi/ZeroedMemory.h"

#include <cstdlib>

// Alone in this file, so that a test program can have its own functions.
void *AllocateZeroed(std::size_t size) {
    return std::calloc(1, size);
}

void FreeZeroed(void *memory) {
    std::free(memory);
}
