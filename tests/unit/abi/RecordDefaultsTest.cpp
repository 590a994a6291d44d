#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "scaler_isp/abi/CommandSetting.h"
#include "scaler_isp/abi/DigitalSignArgs.h"

namespace {

using Bytes = std::vector<unsigned char>;

/// The bytes of a new record on memory that held 0xCC everywhere. The compiler does not see what
/// the memory held, so it cannot take it as undefined.
template <class Record> Bytes FreshBytes() {
    void *memory = ::operator new(sizeof(Record));
    std::memset(memory, 0xCC, sizeof(Record));
    asm volatile("" : "+r"(memory) : : "memory"); // NOLINT(*-no-assembler)
    void *record = ::new (memory) Record;
    asm volatile("" : "+r"(record) : : "memory"); // NOLINT(*-no-assembler)
    Bytes bytes(sizeof(Record));
    std::memcpy(bytes.data(), record, bytes.size());
    ::operator delete(memory);
    return bytes;
}

/// Expected bytes, written down range by range; what was never written stays 0xCC.
class Expected {
  public:
    explicit Expected(std::size_t size) : m_bytes(size, 0xCC) {}

    Expected &Fill(std::size_t offset, std::size_t width, unsigned char value) {
        for (std::size_t i = 0; i < width; ++i) {
            EXPECT_EQ(m_bytes[offset + i], 0xCC) << "written twice: " << offset + i;
            m_bytes[offset + i] = value;
        }
        return *this;
    }
    Expected &Word(std::size_t offset, std::uint32_t value) {
        for (std::size_t i = 0; i < 4; ++i) {
            Fill(offset + i, 1, static_cast<unsigned char>(value >> (8 * i)));
        }
        return *this;
    }
    const Bytes &Get() const {
        return m_bytes;
    }

  private:
    Bytes m_bytes;
};

void ExpectSame(const Bytes &actual, const Bytes &expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_EQ(actual[i], expected[i]) << "byte " << i;
    }
}

TEST(RecordDefaults, Constructor_of_command_record_sets_documented_defaults) {
    Expected expected(546704);
    for (const std::size_t offset : {0U, 4U, 8U, 16U, 20U, 24U, 28U, 32U, 36U, 44U}) {
        expected.Word(offset, 0);
    }
    expected.Word(12, 1);          // version location: register
    expected.Word(40, 2);          // merge info generation
    expected.Word(48, 0xFFFFFFFF); // slave address: not given
    expected.Fill(52, 1, 0x94);
    for (const std::size_t offset : {56U, 60U, 64U, 68U, 72U, 76U, 80U}) {
        expected.Word(offset, 0);
    }
    expected.Word(88, 0);      // number of banks
    expected.Fill(92, 512, 0); // of the 512 target banks the first 128
    for (std::size_t bank = 0; bank < 512; ++bank) {
        expected.Fill(2144 + bank * 1056, 1052, 0);
    }
    expected.Word(542816, 0);
    expected.Fill(542820, 1220, 0xFF);
    expected.Word(544040, 0).Word(544044, 0);
    expected.Fill(544048, 20, 0); // version in flash
    expected.Word(544068, 0);
    expected.Fill(544072, 1048, 0); // dump
    expected.Fill(545120, 2, 0xFF).Fill(545122, 1, 1).Fill(545123, 256, 0xFF);
    expected.Word(545380, 0);
    expected.Fill(545384, 1040, 0); // settings file
    expected.Fill(546424, 260, 0);  // boot firmware
    expected.Fill(546684, 20, 0);   // merge info
    ExpectSame(FreshBytes<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>(), expected.Get());
}

std::uint32_t WordAt(const Bytes &bytes, std::size_t offset) {
    std::uint32_t value = 0;
    std::memcpy(&value, bytes.data() + offset, 4);
    return value;
}

TEST(RecordDefaults, Map_constructor_clears_only_128_target_banks) {
    const Bytes map = FreshBytes<STRUCT_C_STYLE_MAP_FW>();
    EXPECT_EQ(WordAt(map, 0), 0U);
    for (std::size_t bank = 0; bank < 512; ++bank) {
        EXPECT_EQ(WordAt(map, 4 + 4 * bank), bank < 128 ? 0U : 0xCCCCCCCCU) << bank;
    }
    EXPECT_EQ(WordAt(map, 2052), 0xCCCCCCCCU) << "padding";
    for (std::size_t bank = 0; bank < 512; ++bank) {
        for (std::size_t offset = 0; offset < 1056; offset += 4) {
            ASSERT_EQ(WordAt(map, 2056 + 1056 * bank + offset), offset < 1052 ? 0U : 0xCCCCCCCCU)
                << bank << " + " << offset;
        }
    }
}

TEST(RecordDefaults, Map_in_command_record_clears_same_target_banks) {
    const Bytes record = FreshBytes<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
    EXPECT_EQ(WordAt(record, 92 + 4 * 127), 0U);
    EXPECT_EQ(WordAt(record, 92 + 4 * 128), 0xCCCCCCCCU);
    EXPECT_EQ(WordAt(record, 92 + 4 * 511), 0xCCCCCCCCU);
    EXPECT_EQ(WordAt(record, 84), 0xCCCCCCCCU);
    EXPECT_EQ(record[53], 0xCC);
    EXPECT_EQ(record[55], 0xCC);
    EXPECT_EQ(record[545379], 0xCC);
}

TEST(RecordDefaults, Constructors_of_sub_records_set_documented_defaults) {
    ExpectSame(FreshBytes<STRUCT_C_STYLE_FW_BANK_SETTING>(), Expected(1056).Fill(0, 1052, 0).Get());
    ExpectSame(FreshBytes<STRUCT_FLAG_SETTING>(),
               Expected(1232).Word(0, 0).Fill(4, 1220, 0xFF).Word(1224, 0).Word(1228, 0).Get());
    ExpectSame(FreshBytes<STRUCT_READ_VERSION_FROM_FLASH_SETTING>(), Bytes(20, 0));
    ExpectSame(FreshBytes<STRUCT_READ_USER_DEFINED_VERSION_SETTING>(), Bytes(4, 0));
    ExpectSame(FreshBytes<STRUCT_DUMP_FLASH_SETTING>(), Bytes(1048, 0));
    ExpectSame(FreshBytes<STRUCT_I2C_WRITE_ACTION_TYPE_SETTING>(),
               Expected(264).Fill(0, 2, 0xFF).Fill(2, 1, 1).Fill(3, 256, 0xFF).Word(260, 0).Get());
    ExpectSame(FreshBytes<STRUCT_MERGE_FW_INFO_SETTING>(), Bytes(20, 0));
}

TEST(RecordDefaults, Constructor_of_sign_record_sets_1840_zero_bytes) {
    ExpectSame(FreshBytes<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS>(), Bytes(1840, 0));
}

TEST(RecordDefaults, Records_are_trivially_copyable_standard_layout) {
    const auto plain = [](auto *record) {
        using Record = std::remove_pointer_t<decltype(record)>;
        return std::is_trivially_copyable_v<Record> && std::is_standard_layout_v<Record> &&
               std::is_trivially_destructible_v<Record> && !std::is_polymorphic_v<Record> &&
               std::is_default_constructible_v<Record>;
    };
    EXPECT_TRUE(plain(static_cast<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING *>(nullptr)));
    EXPECT_TRUE(plain(static_cast<STRUCT_C_STYLE_MAP_FW *>(nullptr)));
    EXPECT_TRUE(plain(static_cast<STRUCT_C_STYLE_FW_BANK_SETTING *>(nullptr)));
    EXPECT_TRUE(plain(static_cast<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS *>(nullptr)));
}

} // namespace
