#ifndef ISPCTL_CHECK_LEFT_BEHIND_H
#define ISPCTL_CHECK_LEFT_BEHIND_H

#include <cstddef>
#include <functional>

namespace ispctl::check {

/// What each call does not free or close.
struct LeftBehind {
    std::size_t bytes = 0;       ///< of the heap
    std::size_t descriptors = 0; ///< open files
};

/// For processes that this one starts: the C library normally keeps freed blocks of every size and
/// counts them as used. REQUIRES: no other thread uses the environment.
void CountHeapExactly();

/// Calls again and again. What a first call keeps, such as a buffer of the C library, does not
/// count.
LeftBehind MeasureLeftBehind(const std::function<void()> &call);

} // namespace ispctl::check

#endif
