#ifndef SCALER_ISP_TESTS_SUPPORT_ALLOCATION_FAULT_H
#define SCALER_ISP_TESTS_SUPPORT_ALLOCATION_FAULT_H

/// While it lives, one `new` of this thread fails: the one after `successes` others.
///
/// A program that uses it has its own operator new, so it cannot use another one that replaces it.
class AllocationFault {
  public:
    explicit AllocationFault(int successes);
    ~AllocationFault();
    AllocationFault(const AllocationFault &) = delete;
    AllocationFault &operator=(const AllocationFault &) = delete;

    /// Whether a `new` has failed; if not, everything has been allocated.
    static bool HasStruck();
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

#endif
