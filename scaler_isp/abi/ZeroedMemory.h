#ifndef SCALER_ISP_ABI_ZEROED_MEMORY_H
#define SCALER_ISP_ABI_ZEROED_MEMORY_H

#include <cstddef>
#include <memory>
#include <new>

/// Memory of zeroes for objects with a command record. The system gives large blocks as pages that
/// cost nothing until something else than zero is stored in them, and most of a record stays zero.

/// RETURNS null if there is no memory.
void *AllocateZeroed(std::size_t size);
void FreeZeroed(void *memory);

template <class Object> struct ZeroedMemoryDeleter {
    void operator()(Object *object) const {
        object->~Object();
        FreeZeroed(object);
    }
};

/// Owns an object in such memory.
template <class Object> using ZeroedPointer = std::unique_ptr<Object, ZeroedMemoryDeleter<Object>>;

/// Selects a constructor that relies on it.
struct InZeroedMemory {};

/// RETURNS null if there is no memory.
template <class Object> ZeroedPointer<Object> MakeInZeroedMemory() {
    static_assert(noexcept(Object(InZeroedMemory())));
    void *memory = AllocateZeroed(sizeof(Object));
    return ZeroedPointer<Object>(memory != nullptr ? ::new (memory) Object(InZeroedMemory())
                                                   : nullptr);
}

#endif
