#include "scaler_isp/common/ExceptionBarrier.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <pthread.h>

namespace {

TEST(ExceptionBarrier, CatchAll_returns_result_of_body) {
    EXPECT_EQ(CatchAll(-1, [] { return 5; }), 5);
    EXPECT_EQ(CatchAll(std::string("x"), [] { return std::string("y"); }), "y");
}

TEST(ExceptionBarrier, CatchAll_returns_fallback_for_any_exception) {
    EXPECT_EQ(CatchAll(-1, []() -> int { throw std::runtime_error("x"); }), -1);
    EXPECT_EQ(CatchAll(-1, []() -> int { throw 5; }), -1);
}

TEST(ExceptionBarrier, CatchAll_swallows_exceptions_of_void_functions) {
    int steps = 0;
    CatchAll([&] {
        ++steps;
        throw std::bad_alloc();
    });
    CatchAll([&] { ++steps; });
    EXPECT_EQ(steps, 2);
}

void *EndInside(void *unwound) {
    struct Mark {
        bool *flag;
        ~Mark() {
            *flag = true;
        }
    };
    CatchAll(0, [&]() -> int {
        const Mark mark{static_cast<bool *>(unwound)};
        pthread_exit(nullptr);
    });
    return unwound;
}

TEST(ExceptionBarrier, CatchAll_does_not_stop_thread_exit) {
    bool unwound = false;
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, nullptr, EndInside, &unwound), 0);
    void *result = &unwound;
    pthread_join(thread, &result);
    EXPECT_EQ(result, nullptr);
    EXPECT_TRUE(unwound);
}

} // namespace
