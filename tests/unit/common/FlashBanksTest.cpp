#include "scaler_isp/common/FlashBanks.h"

#include <cstdint>

#include <gtest/gtest.h>
#include <unistd.h>

#include "scaler_isp/args/CCpIspArgsParse.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "support/TestLocale.h"

namespace {

/// A file of that size that takes no space on the disk.
std::string SparseFile(const TempFolder &folder, std::int64_t size) {
    const std::string path = folder.Write("sparse.bin", "");
    EXPECT_EQ(truncate(path.c_str(), size), 0) << size;
    return path;
}

CCpNxString Wide(const std::string &utf8) {
    CCpNxString wide;
    wide = utf8;
    return wide;
}

TEST(FlashBanks, GetFwBankCount_rounds_size_up_to_64_KiB) {
    const struct {
        std::int64_t size;
        unsigned banks;
    } rows[] = {
        {0, 0},
        {1, 1},
        {65535, 1},
        {65536, 1},
        {65537, 2},
        {131071, 2},
        {131072, 2},
        {131073, 3},
        {16777216, 256},
        {16777217, 257},
        {2147483648, 32768},
        {4294967294, 65536},
        {4294967295, 65536},
    };
    const TempFolder folder;
    for (const auto &row : rows) {
        const std::string path = SparseFile(folder, row.size);
        unsigned count = 4711;
        EXPECT_EQ(OutputOf([&] { EXPECT_EQ(GetFwBankCount(Wide(path), count), 1) << row.size; }),
                  "");
        EXPECT_EQ(count, row.banks) << row.size;
        std::string given = path;
        count = 4711;
        EXPECT_EQ(CCpIspArgsParse().GetFwBankCount(given, count), 1) << row.size;
        EXPECT_EQ(count, row.banks) << row.size;
    }
}

TEST(FlashBanks, File_of_4_GiB_and_a_byte_is_one_bank) {
    const struct {
        std::int64_t size;
        unsigned ofFile;
        unsigned ofCommandFile; ///< which takes the size as 32 bits
    } rows[] = {
        {4294967296, 65536, 0},
        {4294967297, 65537, 1},
        {4294967296 + 65537, 65538, 2},
        {1099511627776, 16777216, 0},
    };
    const TempFolder folder;
    for (const auto &row : rows) {
        std::string path = SparseFile(folder, row.size);
        unsigned count = 4711;
        EXPECT_EQ(GetFwBankCount(Wide(path), count), 1) << row.size;
        EXPECT_EQ(count, row.ofFile) << row.size;
        EXPECT_EQ(CCpIspArgsParse().GetFwBankCount(path, count), 1) << row.size;
        EXPECT_EQ(count, row.ofCommandFile) << row.size;
    }
}

TEST(FlashBanks, GetFwBankCount_prints_given_path_if_open_fails) {
    const TempFolder folder;
    const CurrentFolderGuard current(folder.Path());
    unsigned count = 4711;
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(GetFwBankCount(L"miss\u00E9ng.bin", count), 0); }),
              "File open fail! miss\xC3\xA9ng.bin\n");
    EXPECT_EQ(count, 4711U);
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(GetFwBankCount(L"", count), 0); }), "File open fail! \n");
    EXPECT_EQ(count, 4711U);
}

TEST(FlashBanks, File_name_is_UTF8_in_every_locale) {
    const EnvironmentLocaleGuard environment("C");
    const TempFolder folder;
    const std::string path = folder.Write("\xE2\x82\xAC.bin", std::string(65537, 'x'));
    unsigned count = 0;
    EXPECT_EQ(GetFwBankCount(Wide(path), count), 1);
    EXPECT_EQ(count, 2U);
}

#ifdef __linux__
TEST(FlashBanks, Directory_is_opened_like_file) {
    // Its end is the largest position there is, or none at all: 65,536 banks either way.
    unsigned count = 4711;
    EXPECT_EQ(GetFwBankCount(L"/dev/shm", count), 1);
    EXPECT_EQ(count, 65536U);
}
#endif

} // namespace
