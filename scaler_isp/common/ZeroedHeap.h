#ifndef SCALER_ISP_COMMON_ZEROED_HEAP_H
#define SCALER_ISP_COMMON_ZEROED_HEAP_H

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

/// Heap objects on zeroed memory. The command record leaves some of its bytes as the memory held
/// them; on zeroed memory no stale data of the host can reach a plug-in through them. The records
/// are also too large for the stack of a small thread, so nothing here ever makes a temporary of
/// one.

/// Zeroed bytes, or null. OWNS: the caller, who frees with ReleaseZeroed. Kept out of line, so that
/// no compiler drops the zeroes as dead before a constructor.
void *AcquireZeroed(std::size_t size);
void ReleaseZeroed(void *memory);

struct ZeroedDelete {
    template <class T> void operator()(T *object) const {
        object->~T();
        ReleaseZeroed(object);
    }
};

template <class T> using ZeroedPtr = std::unique_ptr<T, ZeroedDelete>;

/// A T built in place from what `make` returns by value; null when there is no memory.
template <class T, class Make> ZeroedPtr<T> NewZeroedFrom(Make &&make) {
    void *memory = AcquireZeroed(sizeof(T));
    if (memory == nullptr) {
        return nullptr;
    }
    struct Guard {
        void *memory;
        ~Guard() {
            ReleaseZeroed(memory);
        }
    } guard{memory};
    ZeroedPtr<T> object(::new (memory) T(std::forward<Make>(make)()));
    guard.memory = nullptr;
    return object;
}

/// A T with its own defaults; null when there is no memory.
template <class T> ZeroedPtr<T> NewZeroed() {
    return NewZeroedFrom<T>([] { return T(); });
}

#endif
