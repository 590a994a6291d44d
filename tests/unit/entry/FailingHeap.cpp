#include "FailingHeap.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>

namespace {

constexpr std::size_t kRecordBytes = 1840; // the smaller record; the others are larger
constexpr int kStaleByte = 0xCC;           // what a host may have left in memory

int g_successes = -1; // negative: never fails
void *g_living[64] = {};

constexpr int kNever = -1;
constexpr int kStruck = -2;
thread_local int t_successes = kNever; // of any size
thread_local int t_suspensions = 0;

/// Whether this allocation is the one that fails.
bool Strikes() {
    if (t_suspensions > 0) {
        return false;
    }
    if (t_successes == 0) {
        t_successes = kStruck;
        return true;
    }
    t_successes -= t_successes > 0 ? 1 : 0;
    return false;
}

void Release(void *memory) {
    if (memory != nullptr) {
        std::replace(std::begin(g_living), std::end(g_living), memory,
                     static_cast<void *>(nullptr));
        std::free(memory);
    }
}

} // namespace

void *operator new(std::size_t size) {
    if (void *memory = Strikes() ? nullptr : std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void *operator new[](std::size_t size) {
    return operator new(size);
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept {
    void *memory = nullptr;
    if (Strikes()) {
        return nullptr;
    }
    if (size < kRecordBytes || g_successes != 0) {
        memory = std::malloc(size == 0 ? 1 : size);
    }
    if (size >= kRecordBytes && memory != nullptr) {
        std::memset(memory, kStaleByte, size);
        g_successes -= g_successes > 0 ? 1 : 0;
        *std::find(std::begin(g_living), std::end(g_living), nullptr) = memory;
    }
    return memory;
}

void *operator new[](std::size_t size, const std::nothrow_t &tag) noexcept {
    return operator new(size, tag);
}

void operator delete(void *memory) noexcept {
    Release(memory);
}

void operator delete(void *memory, std::size_t) noexcept {
    Release(memory);
}

void operator delete(void *memory, const std::nothrow_t &) noexcept {
    Release(memory);
}

void operator delete[](void *memory) noexcept {
    Release(memory);
}

void operator delete[](void *memory, std::size_t) noexcept {
    Release(memory);
}

void operator delete[](void *memory, const std::nothrow_t &) noexcept {
    Release(memory);
}

FailingHeap::FailingHeap(int successes) {
    g_successes = successes;
}

FailingHeap::~FailingHeap() {
    g_successes = -1;
}

FailingAllocation::FailingAllocation(int successes)
    : m_previousSuccesses(t_successes), m_previousSuspensions(t_suspensions) {
    t_successes = successes;
    t_suspensions = 0;
}

FailingAllocation::~FailingAllocation() {
    t_successes = m_previousSuccesses;
    t_suspensions = m_previousSuspensions;
}

void FailingAllocation::Suspend(bool suspended) {
    t_suspensions += suspended ? 1 : -1;
}

bool FailingAllocation::HasStruck() {
    return t_successes == kStruck;
}

int LivingObjects() {
    return static_cast<int>(std::count_if(std::begin(g_living), std::end(g_living),
                                          [](const void *place) { return place != nullptr; }));
}
