#ifndef SCALER_ISP_TESTS_UNIT_ENTRY_FAILING_HEAP_H
#define SCALER_ISP_TESTS_UNIT_ENTRY_FAILING_HEAP_H

/// While it lives, `new (std::nothrow)` of anything as large as a record fails after `successes`
/// more objects. This program has its own operator new; what it hands out in that size is not
/// clean.
class FailingHeap {
  public:
    explicit FailingHeap(int successes);
    ~FailingHeap();
    FailingHeap(const FailingHeap &) = delete;
    FailingHeap &operator=(const FailingHeap &) = delete;
};

/// While it lives, one `new` of this thread fails: the one after `successes` others of any size.
class FailingAllocation {
  public:
    explicit FailingAllocation(int successes);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation &) = delete;
    FailingAllocation &operator=(const FailingAllocation &) = delete;

    /// Whether a `new` has failed; if not, everything has been allocated.
    static bool HasStruck();

    /// Between Suspend(true) and Suspend(false) nothing fails and nothing counts, unless a second
    /// one is made there.
    static void Suspend(bool suspended);

  private:
    int m_previousSuccesses;
    int m_previousSuspensions;
};

/// Objects of the size of a record that live now.
int LivingObjects();

#endif
