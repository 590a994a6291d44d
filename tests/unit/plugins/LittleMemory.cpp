#include "LittleMemory.h"

#include <cstdlib>
#include <new>

namespace {

int g_left = -1; // objects until none is left; negative: no end

void *Take(std::size_t size) {
    if (g_left == 0) {
        return nullptr;
    }
    g_left -= g_left > 0 ? 1 : 0;
    return std::malloc(size == 0 ? 1 : size);
}

} // namespace

LittleMemory::LittleMemory(int objects) {
    g_left = objects;
}

LittleMemory::~LittleMemory() {
    g_left = -1;
}

void *operator new(std::size_t size) {
    if (void *memory = Take(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return Take(size);
}

void operator delete(void *memory) noexcept {
    std::free(memory);
}

void operator delete(void *memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete(void *memory, const std::nothrow_t &) noexcept {
    std::free(memory);
}
