#include "scaler_isp/abi/ZeroUninitializedBytes.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include <gtest/gtest.h>

#include "scaler_isp/args/CCpIspArgsParse.h"

namespace {

using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using Bytes = std::vector<unsigned char>;

/// An object built on memory that held `fill` everywhere; the compiler does not see what it held.
template <class Object> class Built {
  public:
    explicit Built(unsigned char fill) : m_memory(::operator new(sizeof(Object))) {
        void *volatile memory = m_memory;
        std::memset(memory, fill, sizeof(Object));
        m_object = ::new (static_cast<void *>(memory)) Object;
    }
    ~Built() {
        m_object->~Object();
        ::operator delete(m_memory);
    }
    Built(const Built &) = delete;
    Built &operator=(const Built &) = delete;

    Object &operator*() const {
        return *m_object;
    }

  private:
    void *m_memory;
    Object *m_object;
};

Bytes BytesOf(const Command &record) {
    Bytes bytes(546704);
    std::memcpy(bytes.data(), &record, bytes.size());
    return bytes;
}

TEST(ZeroUninitializedBytes, Cleared_record_equals_record_in_zeroed_memory) {
    const Built<Command> onZeroes(0x00);
    const Built<Command> onStaleData(0xCC);
    ASSERT_FALSE(BytesOf(*onStaleData) == BytesOf(*onZeroes));
    ZeroUninitializedBytes(*onStaleData);
    EXPECT_TRUE(BytesOf(*onStaleData) == BytesOf(*onZeroes));
}

TEST(ZeroUninitializedBytes, Parser_returns_no_stale_byte) {
    const Built<CCpIspArgsParse> onStaleData(0xCC);
    const std::unique_ptr<Command> record(new Command((*onStaleData).GetISPCmdSetting()));
    const Bytes bytes = BytesOf(*record);
    EXPECT_EQ(std::count(bytes.begin(), bytes.end(), 0xCC), 0);
}

} // namespace
