#include "scaler_isp/common/ZeroedHeap.h"

#include <cstring>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

int g_alive = 0;

/// Leaves half of itself as the memory held it.
struct Partial {
    Partial() {
        ++g_alive;
        set = 7;
    }
    Partial(const Partial &) = delete;
    Partial &operator=(const Partial &) = delete;
    ~Partial() {
        --g_alive;
    }
    int set;
    unsigned char left[1000];
};

/// Heap memory that was used before, so that it would show if nobody cleared it.
void SpoilTheHeap() {
    for (int i = 0; i < 8; ++i) {
        auto *block = static_cast<unsigned char *>(AcquireZeroed(sizeof(Partial)));
        std::memset(block, 0xCC, sizeof(Partial));
        ReleaseZeroed(block);
    }
}

TEST(ZeroedHeap, Object_starts_on_zeroes) {
    SpoilTheHeap();
    {
        const ZeroedPtr<Partial> object = NewZeroed<Partial>();
        ASSERT_NE(object, nullptr);
        EXPECT_EQ(g_alive, 1);
        EXPECT_EQ(object->set, 7);
        unsigned char bytes[sizeof object->left];
        std::memcpy(bytes, &object->left, sizeof bytes);
        for (const unsigned char byte : bytes) {
            ASSERT_EQ(byte, 0);
        }
    }
    EXPECT_EQ(g_alive, 0);
}

TEST(ZeroedHeap, Object_is_built_from_a_function) {
    const ZeroedPtr<int> number = NewZeroedFrom<int>([] { return 5; });
    ASSERT_NE(number, nullptr);
    EXPECT_EQ(*number, 5);
}

TEST(ZeroedHeap, Memory_is_freed_when_the_function_throws) {
    // The leak checker sees it if not.
    EXPECT_THROW(NewZeroedFrom<int>([]() -> int { throw std::runtime_error("x"); }),
                 std::runtime_error);
}

} // namespace
