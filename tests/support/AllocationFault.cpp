#include "support/AllocationFault.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr int kNever = -1;
constexpr int kStruck = -2;

thread_local int t_successes = kNever;

void *Allocate(std::size_t size) {
    if (t_successes == 0) {
        t_successes = kStruck;
        return nullptr;
    }
    t_successes -= t_successes > 0 ? 1 : 0;
    return std::malloc(size == 0 ? 1 : size);
}

} // namespace

AllocationFault::AllocationFault(int successes) {
    t_successes = successes;
}

AllocationFault::~AllocationFault() {
    t_successes = kNever;
}

bool AllocationFault::HasStruck() {
    return t_successes == kStruck;
}

void *operator new(std::size_t size) {
    if (void *memory = Allocate(size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void *operator new[](std::size_t size) {
    return operator new(size);
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    return Allocate(size);
}

void *operator new[](std::size_t size, const std::nothrow_t &) noexcept {
    return Allocate(size);
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

void operator delete[](void *memory) noexcept {
    std::free(memory);
}

void operator delete[](void *memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete[](void *memory, const std::nothrow_t &) noexcept {
    std::free(memory);
}
