#ifndef SCALER_ISP_TESTS_SUPPORT_TEST_HEAP_H
#define SCALER_ISP_TESTS_SUPPORT_TEST_HEAP_H

/// \file
/// A heap that fails on demand, and whose memory is never clean: every `new` gives bytes of 0xA5. A
/// program that uses any of this has its own operator new and its own AllocateZeroed.

/// While it lives, one `new` of this thread fails: the one after `successes` others.
class AllocationFault {
  public:
    explicit AllocationFault(int successes);
    ~AllocationFault();
    AllocationFault(const AllocationFault &) = delete;
    AllocationFault &operator=(const AllocationFault &) = delete;

    /// Whether a `new` has failed; if not, everything has been allocated.
    static bool HasStruck();

    /// Between Suspend(true) and Suspend(false) nothing fails and nothing counts, unless another
    /// AllocationFault is made there.
    static void Suspend(bool suspended);

  private:
    int m_previousSuccesses;
    int m_previousSuspensions;
};

/// Calls `function` with the first, second, ... allocation failing, until a call needs no more.
/// \param function  is called with the number of allocations that succeed; it makes an
///                  AllocationFault with it and returns HasStruck() of it.
template <class Function> int FailEachAllocation(Function &&function) {
    int successes = 0;
    while (function(successes)) {
        ++successes;
    }
    return successes;
}

/// While it lives, every `new` of this thread fails after `successes` others.
class AllocationLimit {
  public:
    explicit AllocationLimit(int successes);
    ~AllocationLimit();
    AllocationLimit(const AllocationLimit &) = delete;
    AllocationLimit &operator=(const AllocationLimit &) = delete;
};

/// While it lives, `new (std::nothrow)` of anything as large as a record, and every AllocateZeroed,
/// fail after `successes` others.
class RecordAllocationLimit {
  public:
    explicit RecordAllocationLimit(int successes);
    ~RecordAllocationLimit();
    RecordAllocationLimit(const RecordAllocationLimit &) = delete;
    RecordAllocationLimit &operator=(const RecordAllocationLimit &) = delete;
};

/// Objects as large as a record that `new (std::nothrow)` or AllocateZeroed has made and nobody has
/// deleted.
int LivingRecords();

#endif
