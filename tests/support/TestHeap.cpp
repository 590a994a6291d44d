#include "support/TestHeap.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>

#include "scaler_isp/abi/ZeroedMemory.h"

namespace {

constexpr std::size_t kRecordBytes = 1840; // the smaller record; the others are larger
constexpr int kStaleByte = 0xA5;           // what a host may have left in memory
constexpr int kNever = -1;
constexpr int kStruck = -2;

thread_local int t_successes = kNever; // before the one that fails
thread_local int t_suspensions = 0;
thread_local int t_limit = kNever;       // before all fail
thread_local int t_recordLimit = kNever; // the same for records
std::atomic<void *> g_records[64];

bool CountsDown(int &count) {
    if (count == 0) {
        return true;
    }
    count -= count > 0 ? 1 : 0;
    return false;
}

void *Allocate(std::size_t size) {
    if (t_suspensions == 0 && CountsDown(t_successes)) {
        t_successes = kStruck;
        return nullptr;
    }
    void *memory = CountsDown(t_limit) ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory != nullptr) {
        std::memset(memory, kStaleByte, size);
    }
    return memory;
}

void *AllocateRecord(std::size_t size) {
    void *memory = CountsDown(t_recordLimit) ? nullptr : Allocate(size);
    if (memory != nullptr) {
        for (auto &record : g_records) {
            void *free = nullptr;
            if (record.compare_exchange_strong(free, memory)) {
                break;
            }
        }
    }
    return memory;
}

void Release(void *memory) {
    if (memory != nullptr) {
        for (auto &record : g_records) { // only its owner frees a record
            if (record.load(std::memory_order_relaxed) == memory) {
                record = nullptr;
            }
        }
        std::free(memory);
    }
}

} // namespace

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
    return size < kRecordBytes ? Allocate(size) : AllocateRecord(size);
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

void *AllocateZeroed(std::size_t size) {
    void *memory = AllocateRecord(size);
    return memory != nullptr ? std::memset(memory, 0, size) : nullptr;
}

void FreeZeroed(void *memory) {
    Release(memory);
}

AllocationFault::AllocationFault(int successes)
    : m_previousSuccesses(t_successes), m_previousSuspensions(t_suspensions) {
    t_successes = successes;
    t_suspensions = 0;
}

AllocationFault::~AllocationFault() {
    t_successes = m_previousSuccesses;
    t_suspensions = m_previousSuspensions;
}

bool AllocationFault::HasStruck() {
    return t_successes == kStruck;
}

void AllocationFault::Suspend(bool suspended) {
    t_suspensions += suspended ? 1 : -1;
}

AllocationLimit::AllocationLimit(int successes) {
    t_limit = successes;
}

AllocationLimit::~AllocationLimit() {
    t_limit = kNever;
}

RecordAllocationLimit::RecordAllocationLimit(int successes) {
    t_recordLimit = successes;
}

RecordAllocationLimit::~RecordAllocationLimit() {
    t_recordLimit = kNever;
}

int LivingRecords() {
    return static_cast<int>(
        std::count_if(std::begin(g_records), std::end(g_records),
                      [](const std::atomic<void *> &record) { return record != nullptr; }));
}
