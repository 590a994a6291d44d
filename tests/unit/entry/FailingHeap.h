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

/// Such objects that live now.
int LivingObjects();

#endif
