#include "scaler_isp/common/ExceptionBarrier.h"

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <pthread.h>

namespace {

TEST(Boundary, Result_of_the_body_passes) {
    EXPECT_EQ(CatchAll(-1, [] { return 5; }), 5);
    EXPECT_EQ(CatchAll(std::string("x"), [] { return std::string("y"); }), "y");
}

TEST(Boundary, Any_exception_becomes_the_other_result) {
    EXPECT_EQ(CatchAll(-1, []() -> int { throw std::runtime_error("x"); }), -1);
    EXPECT_EQ(CatchAll(-1, []() -> int { throw 5; }), -1);
}

TEST(Boundary, Nothing_leaves_a_function_without_a_result) {
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

TEST(Boundary, Thread_that_ends_inside_ends) {
    bool unwound = false;
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, nullptr, EndInside, &unwound), 0);
    void *result = &unwound;
    pthread_join(thread, &result);
    EXPECT_EQ(result, nullptr);
    EXPECT_TRUE(unwound);
}

} // namespace
