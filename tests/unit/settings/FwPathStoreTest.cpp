#include "scaler_isp/settings/FwPathStore.h"

#include <gtest/gtest.h>

#include "scaler_isp/common/FlashBanks.h"
#include "scaler_isp/settings/ProfileStore.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "unit/settings/ProfileFamilies.h"

namespace {

class FwPathStore : public testing::Test {
  protected:
    /// Saves a firmware of this size. RETURNS the settings file.
    std::string Saved(std::size_t size, unsigned int startBank, const std::string &before = "") {
        m_folder.Write("f.bin", std::string(size, 'x'));
        const std::string ini = m_folder.Write("s.ini", before);
        SaveFwPathFromFile(Wide(m_firmware).c_str(), Wide(ini).c_str(), startBank);
        return m_folder.Read("s.ini");
    }
    TempFolder m_folder;
    std::string m_firmware = m_folder.Path("f.bin");
};

TEST_F(FwPathStore, Banks_of_file_are_stored_for_consecutive_flash_banks) {
    EXPECT_EQ(Saved(131073, 16),
              "[ISP_Fw]\nfwFileCount=3\n"
              "fw0_TargetBank=16\nfw0_FileBank=0\nfw0_Path=" +
                  m_firmware + "\nfw1_TargetBank=17\nfw1_FileBank=1\nfw1_Path=" + m_firmware +
                  "\nfw2_TargetBank=18\nfw2_FileBank=2\nfw2_Path=" + m_firmware + "\n");
}

TEST_F(FwPathStore, Empty_firmware_writes_count_only) {
    EXPECT_EQ(Saved(0, 3), "[ISP_Fw]\nfwFileCount=0\n");
}

TEST_F(FwPathStore, Bank_numbers_wrap_at_32_bits) {
    EXPECT_EQ(Saved(65537, 4294967295U),
              "[ISP_Fw]\nfwFileCount=2\n"
              "fw0_TargetBank=-1\nfw0_FileBank=0\nfw0_Path=" +
                  m_firmware + "\nfw1_TargetBank=0\nfw1_FileBank=1\nfw1_Path=" + m_firmware + "\n");
}

TEST_F(FwPathStore, Missing_firmware_is_reported_and_no_key_written) {
    const std::string ini = m_folder.Write("s.ini", " [ISP_Fw] \nx");
    const std::string missing = m_folder.Path("no.bin");
    EXPECT_EQ(OutputOf([&] {
                  SaveFwPathFromFile(Wide(missing).c_str(), Wide(ini).c_str(), 0);
                  SaveFwPathFromFile(Wide(missing).c_str(), Wide(m_folder.Path("new.ini")).c_str(),
                                     0);
              }),
              "File open fail! " + missing + "\nFile open fail! " + missing + "\n");
    EXPECT_EQ(m_folder.Read("s.ini"), " [ISP_Fw] \nx");
    EXPECT_FALSE(m_folder.Exists("new.ini"));
}

TEST_F(FwPathStore, Unwritable_settings_are_reported_for_every_key) {
    const std::string firmware = m_folder.Write("f.bin", "x");
    const std::string folder = m_folder.MakeFolder("d");
    EXPECT_EQ(
        OutputOf([&] { SaveFwPathFromFile(Wide(firmware).c_str(), Wide(folder).c_str(), 0); }),
        "Open file error \nOpen file error \nOpen file error \nOpen file error \n");
}

TEST_F(FwPathStore, Saving_gives_bytes_of_one_write_per_key) {
    const std::string contents[] = {
        "[ISP_Fw]\nfw0_Path=/old\n\nfw1_Path=/hidden\n", "[A]\nk=v\n[ISP_Fw]\nfw1_FileBank=9",
        "[ISP_Fw]\nfwFileCount = 1\nfw2_TargetBank=0\n[B]\n", "x\n\n[ISP_Fw] y\n"};
    for (const std::string &before : contents) {
        for (const std::size_t size : {0U, 1U, 65536U, 262144U}) {
            const std::string saved = Saved(size, 250, before);
            const std::wstring expected = Wide(m_folder.Write("expected.ini", before));
            const auto write = [&](const std::wstring &key, const std::wstring &value) {
                CpNxWritePrivateProfileStringW(L"ISP_Fw", key.c_str(), value.c_str(),
                                               expected.c_str());
            };
            const std::size_t count = (size + 65535) / 65536;
            write(L"fwFileCount", std::to_wstring(count));
            for (std::size_t i = 0; i < count; ++i) {
                const std::wstring name = L"fw" + std::to_wstring(i) + L"_";
                write(name + L"TargetBank", std::to_wstring(250 + i));
                write(name + L"FileBank", std::to_wstring(i));
                write(name + L"Path", Wide(m_firmware));
            }
            EXPECT_EQ(saved, m_folder.Read("expected.ini")) << before << size;
        }
    }
}

TEST_F(FwPathStore, Free_function_GetFwBankCount_rounds_up) {
    const std::pair<std::size_t, unsigned int> rows[] = {{0, 0},     {1, 1},     {65535, 1},
                                                         {65536, 1}, {65537, 2}, {131072, 2}};
    for (const auto &[size, banks] : rows) {
        const std::string path = m_folder.Write("f.bin", std::string(size, 'x'));
        unsigned int count = 99;
        EXPECT_EQ(::GetFwBankCount(Wide(path).c_str(), count), 1);
        EXPECT_EQ(count, banks) << size;
    }
}

TEST_F(FwPathStore, Free_function_GetFwBankCount_keeps_count_if_file_is_missing) {
    unsigned int count = 99;
    const std::string missing = m_folder.Path("no.bin");
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(::GetFwBankCount(Wide(missing).c_str(), count), 0); }),
              "File open fail! " + missing + "\n");
    EXPECT_EQ(count, 99U);
}

} // namespace
