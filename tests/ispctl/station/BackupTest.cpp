#include "station/Backup.h"

#include <cstring>
#include <gmock/gmock.h>
#include <unistd.h>

#include "station/Sha256.h"
#include "support/TempFolder.h"

namespace {

using ispctl::BackupRange;
using ispctl::ParsedLine;
using ispctl::Records;
using testing::ElementsAre;
using testing::HasSubstr;
using Words = std::vector<std::string>;

/// A record that programs banks from the first one on.
std::shared_ptr<Records> Programming(std::initializer_list<std::uint32_t> banks) {
    auto records = std::make_shared<Records>();
    records->command.enumActionType = ENUM_ACTION_ISP;
    records->command.stMapFw.ulFwCount = static_cast<std::uint32_t>(banks.size());
    std::copy(banks.begin(), banks.end(), std::begin(records->command.stMapFw.ulTargetBank));
    return records;
}

class Backups : public testing::Test {
  protected:
    BackupRange Range(const std::string &file) const {
        return {3, 3, m_folder.Path(file)};
    }

    TempFolder m_folder;
    std::string m_error;
};

TEST_F(Backups, Flag_of_user_belongs_to_banks_of_ispuser_only) {
    const auto records = Programming({1, 2});
    records->command.stFlagSetting.ulFlagAddr = 5 * 65536 - 1;
    records->command.stFlagSetting.ulFlagCount = 2;
    EXPECT_THAT(ispctl::BanksToBackUp(*records, nullptr), ElementsAre(1, 2));
    records->command.enumActionType = ENUM_ACTION_ISPUSER;
    EXPECT_THAT(ispctl::BanksToBackUp(*records, nullptr), ElementsAre(1, 2, 4, 5));
    records->command.stFlagSetting.ulFlagCount = 1;
    EXPECT_THAT(ispctl::BanksToBackUp(*records, nullptr), ElementsAre(1, 2, 4));
    records->command.stFlagSetting.ulFlagCount = 0;
    EXPECT_THAT(ispctl::BanksToBackUp(*records, nullptr), ElementsAre(1, 2));
}

TEST_F(Backups, Banks_of_boot_firmware_belong_to_factory_mode_only) {
    const auto records = Programming({7});
    auto &command = records->command;
    std::strcpy(command.szBootFwPath, "/boot.bin");
    command.enumBootCodeType = SCALER_ISP_NEW_BOOT_CODE;
    Words parsed;
    const auto parse = [&](const Words &line) {
        parsed = line;
        return ParsedLine{true, "", Programming({0, 1})};
    };
    EXPECT_THAT(ispctl::BanksToBackUp(*records, parse), ElementsAre(7));
    command.enumIspMode = SCALER_ISP_MODE_FACTORY;
    EXPECT_THAT(ispctl::BanksToBackUp(*records, parse), ElementsAre(0, 1, 7));
    EXPECT_THAT(parsed, ElementsAre("--isp", "--fw", "/boot.bin"));
    const auto refuse = [](const Words &) { return ParsedLine{false, "", Programming({0})}; };
    EXPECT_THAT(ispctl::BanksToBackUp(*records, refuse), ElementsAre(7));
    command.enumBootCodeType = 0;
    EXPECT_THAT(ispctl::BanksToBackUp(*records, parse), ElementsAre(7));
}

TEST_F(Backups, Neighbouring_banks_are_one_file) {
    const auto ranges = ispctl::BackupRanges({0, 1, 2, 9, 511}, m_folder.Path(), "id");
    ASSERT_EQ(ranges.size(), 3U);
    EXPECT_EQ(ranges[0].file, m_folder.Path("id-bank-0-2.bin"));
    EXPECT_EQ(ranges[0].Bytes(), 3U * 65536);
    EXPECT_EQ(ranges[0].Banks(), "banks 0 to 2");
    EXPECT_EQ(ranges[1].Banks(), "bank 9");
    EXPECT_EQ(ranges[2].Address(), 511U * 65536);
}

TEST_F(Backups, File_of_other_size_is_no_backup) {
    EXPECT_EQ(ispctl::CheckBackup(Range("missing"), m_error), "");
    EXPECT_THAT(m_error, HasSubstr("the plug-in reported success, but cannot read " +
                                   m_folder.Path("missing")));
    for (const std::size_t size : {std::size_t(65535), std::size_t(65537), std::size_t(0)}) {
        m_folder.Write("dump", std::string(size, 'd'));
        EXPECT_EQ(ispctl::CheckBackup(Range("dump"), m_error), "");
        EXPECT_THAT(m_error, HasSubstr("has " + std::to_string(size) + " bytes instead of 65536"));
    }
    m_folder.Write("dump", std::string(65536, 'd'));
    EXPECT_THAT(ispctl::CheckBackup(Range("dump"), m_error),
                HasSubstr(ispctl::Sha256Of(std::string(65536, 'd'))));
}

TEST_F(Backups, Directory_is_made_or_reason_is_named) {
    EXPECT_TRUE(ispctl::PrepareBackupDirectory(m_folder.Path("new"), m_error)) << m_error;
    EXPECT_TRUE(ispctl::PrepareBackupDirectory(m_folder.Path("new"), m_error)) << m_error;
    EXPECT_FALSE(ispctl::PrepareBackupDirectory(m_folder.Path("no/such"), m_error));
    EXPECT_THAT(m_error, HasSubstr("cannot make the directory for backups " +
                                   m_folder.Path("no/such") + ": "));
    const std::string file = m_folder.Write("file", "");
    EXPECT_FALSE(ispctl::PrepareBackupDirectory(file, m_error));
    EXPECT_EQ(m_error, file + " is not a directory for backups; name another");
}

} // namespace
