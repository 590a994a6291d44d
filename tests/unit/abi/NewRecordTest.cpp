#include "scaler_isp/abi/NewRecord.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include <gtest/gtest.h>

#include "scaler_isp/args/CCpIspArgsParse.h"
#include "support/TestHeap.h"

namespace {

using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using Bytes = std::vector<unsigned char>;

constexpr std::size_t kBytes = 546704;
constexpr std::size_t kFirstEntry = 2144;
constexpr std::size_t kEntryBytes = 1056;
constexpr std::size_t kBehindEntries = 542816;
constexpr unsigned char kStale = 0xA5;

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
    Bytes bytes(kBytes);
    std::memcpy(bytes.data(), &record, bytes.size());
    return bytes;
}

TEST(NewRecord, New_record_equals_constructed_one_in_zeroed_memory) {
    const Built<Command> onZeroes(0x00);
    const Built<Command> onStaleData(kStale);
    ASSERT_FALSE(BytesOf(*onStaleData) == BytesOf(*onZeroes));
    const auto record = NewCommandRecord();
    ASSERT_NE(record, nullptr);
    EXPECT_TRUE(BytesOf(*record) == BytesOf(*onZeroes));
}

TEST(NewRecord, Parser_in_any_memory_holds_new_record) {
    const Bytes expected = BytesOf(*NewCommandRecord());
    const Built<CCpIspArgsParse> onStaleData(kStale);
    EXPECT_TRUE(BytesOf((*onStaleData).Setting()) == expected);
    const auto parser = MakeInZeroedMemory<CCpIspArgsParse>();
    ASSERT_NE(parser, nullptr);
    EXPECT_TRUE(BytesOf(parser->Setting()) == expected);
}

TEST(NewRecord, Copy_has_every_byte_up_to_last_counted_entry) {
    const struct {
        unsigned int count;
        std::size_t entries;
    } rows[] = {{0, 0}, {1, 1}, {2, 2}, {511, 511}, {512, 512}, {513, 512}, {0xFFFFFFFF, 512}};
    for (const auto &row : rows) {
        const auto record = NewCommandRecord();
        ASSERT_NE(record, nullptr);
        const std::size_t end = kFirstEntry + row.entries * kEntryBytes;
        auto *bytes = reinterpret_cast<unsigned char *>(record.get());
        std::fill(bytes, bytes + end, kStale);
        std::fill(bytes + kBehindEntries, bytes + kBytes, kStale);
        record->stMapFw.ulFwCount = row.count;
        const auto copy = CopyCommandRecord(*record);
        ASSERT_NE(copy, nullptr);
        EXPECT_TRUE(BytesOf(*copy) == BytesOf(*record)) << row.count;
    }
}

TEST(NewRecord, Lack_of_memory_gives_no_record) {
    const auto record = NewCommandRecord();
    const RecordAllocationLimit heap(0);
    EXPECT_EQ(NewCommandRecord(), nullptr);
    EXPECT_EQ(CopyCommandRecord(*record), nullptr);
    EXPECT_EQ(MakeInZeroedMemory<CCpIspArgsParse>(), nullptr);
}

} // namespace
