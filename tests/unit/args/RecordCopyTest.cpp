#include "scaler_isp/args/CCpIspArgsParse.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Command = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using Sign = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;
using Bytes = std::vector<unsigned char>;

/// Bytes that repeat nowhere near, so that a shifted copy shows.
Bytes Pattern(std::size_t size, unsigned seed) {
    Bytes bytes(size);
    unsigned state = seed;
    for (unsigned char &byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<unsigned char>(state >> 24);
    }
    return bytes;
}

template <class Record> Bytes BytesOf(const Record &record) {
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

/// Memory of a record on the heap; the record is far too large for the stack.
template <class Record> struct Storage {
    std::unique_ptr<Record, void (*)(void *)> record;
    explicit Storage(unsigned char fill)
        : record(static_cast<Record *>(::operator new(sizeof(Record))),
                 [](void *memory) { ::operator delete(memory); }) {
        std::memset(static_cast<void *>(record.get()), fill, sizeof(Record));
    }
    explicit Storage(const Bytes &bytes) : Storage(0) {
        std::memcpy(static_cast<void *>(record.get()), bytes.data(), bytes.size());
    }
};

TEST(RecordCopy, GetISPCmdSetting_returns_record_that_was_set) {
    const Bytes pattern = Pattern(546704, 1);
    const Storage<Command> given(pattern);
    const auto parser = std::make_unique<CCpIspArgsParse>();
    parser->SetISPCmdSetting(*given.record);
    EXPECT_TRUE(BytesOf(*given.record) == pattern);

    const Storage<Command> returned(0x55);
    ::new (static_cast<void *>(returned.record.get())) Command(parser->GetISPCmdSetting());
    EXPECT_TRUE(BytesOf(*returned.record) == pattern);
}

TEST(RecordCopy, GetDigitalSignArgs_returns_record_that_was_set) {
    const Bytes pattern = Pattern(1840, 2);
    const Storage<Sign> given(pattern);
    const auto parser = std::make_unique<CCpIspArgsParse>();
    parser->SetDigitalSignArgs(*given.record);
    EXPECT_TRUE(BytesOf(*given.record) == pattern);
    EXPECT_TRUE(BytesOf(parser->GetDigitalSignArgs()) == pattern);
}

TEST(RecordCopy, Setting_one_record_keeps_other_record) {
    const Bytes command = Pattern(546704, 3);
    const Bytes sign = Pattern(1840, 4);
    const Storage<Command> givenCommand(command);
    const Storage<Sign> givenSign(sign);
    const auto parser = std::make_unique<CCpIspArgsParse>();
    parser->SetDigitalSignArgs(*givenSign.record);
    parser->SetISPCmdSetting(*givenCommand.record);
    EXPECT_TRUE(BytesOf(parser->GetDigitalSignArgs()) == sign);
    parser->SetDigitalSignArgs(*givenSign.record);
    const Storage<Command> returned(0x55);
    ::new (static_cast<void *>(returned.record.get())) Command(parser->GetISPCmdSetting());
    EXPECT_TRUE(BytesOf(*returned.record) == command);
}

TEST(RecordCopy, Sign_record_follows_command_record_directly) {
    const Bytes command = Pattern(546704, 5);
    const Bytes sign = Pattern(1840, 6);
    const Storage<Command> givenCommand(command);
    const Storage<Sign> givenSign(sign);
    const auto parser = std::make_unique<CCpIspArgsParse>();
    parser->SetISPCmdSetting(*givenCommand.record);
    parser->SetDigitalSignArgs(*givenSign.record);

    Bytes both = command;
    both.insert(both.end(), sign.begin(), sign.end());
    Bytes whole(sizeof(CCpIspArgsParse));
    std::memcpy(whole.data(), static_cast<const void *>(parser.get()), whole.size());
    const auto found = std::search(whole.begin(), whole.end(), both.begin(), both.end());
    ASSERT_NE(found, whole.end());
    // The records come after everything else that the parser has.
    EXPECT_LT(whole.end() - found - static_cast<std::ptrdiff_t>(both.size()), 8);
}

TEST(RecordCopy, Members_of_parser_have_documented_order) {
    const auto parser = std::make_unique<CCpIspArgsParse>();
    parser->SetCurrentDir("/folder/");
    EXPECT_EQ(parser->InsertCommandFwFile(3, "a.bin"), 1);
    const auto *place = reinterpret_cast<const char *>(parser.get());
    EXPECT_EQ(*reinterpret_cast<const std::string *>(place), "/folder/");
    place += sizeof(std::string);
    const auto &files = *reinterpret_cast<const FwBankMap *>(place);
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files.begin()->first, 3U);
    place += sizeof(FwBankMap) + sizeof(CCpTransform);
    const Storage<Command> given(Pattern(546704, 7));
    parser->SetISPCmdSetting(*given.record);
    EXPECT_EQ(std::memcmp(place, given.record.get(), 546704), 0);
    EXPECT_EQ(place + 546704 + 1840,
              reinterpret_cast<const char *>(parser.get()) + sizeof(CCpIspArgsParse));
}

TEST(RecordCopy, New_parser_holds_default_records) {
    const auto parser = std::make_unique<CCpIspArgsParse>();
    EXPECT_EQ(BytesOf(parser->GetDigitalSignArgs()), Bytes(1840, 0));
    const Storage<Command> returned(0x55);
    ::new (static_cast<void *>(returned.record.get())) Command(parser->GetISPCmdSetting());
    EXPECT_EQ(returned.record->enumVersionLocationType, ENUM_VER_LOC_REG);
    EXPECT_EQ(returned.record->enumMergeFWGeneration, 2U);
    EXPECT_EQ(returned.record->nSlaveAddressState, -1);
    EXPECT_EQ(returned.record->stFlagSetting.ucFlagData[1219], 0xFF);
}

TEST(RecordCopy, Boot_firmware_is_read_up_to_260_bytes) {
    static_assert(std::is_same_v<
                  decltype(std::declval<const CCpIspArgsParse &>().GetOneBootFactoryModeBootFw()),
                  std::string>);
    const auto parser = std::make_unique<CCpIspArgsParse>();
    EXPECT_EQ(parser->GetOneBootFactoryModeBootFw(), "");

    const Storage<Command> given(0);
    std::memcpy(given.record->szBootFwPath, "/fw/b\xC3\xA9.bin\0behind", 18);
    parser->SetISPCmdSetting(*given.record);
    EXPECT_EQ(parser->GetOneBootFactoryModeBootFw(), "/fw/b\xC3\xA9.bin");

    // A full field has no terminator; what stands after it is not part of the path.
    std::memset(given.record->szBootFwPath, 'p', 260);
    given.record->stMergeFwInfo.ulMergeDataCount = 0x41414141;
    parser->SetISPCmdSetting(*given.record);
    EXPECT_EQ(parser->GetOneBootFactoryModeBootFw(), std::string(260, 'p'));
}

} // namespace
