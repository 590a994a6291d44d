#include <cstring>
#include <memory>
#include <random>

#include <gtest/gtest.h>

#include "scaler_isp/ScalerIsp.h"
#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "unit/settings/ProfileFamilies.h"

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

template <std::size_t N> void SetPath(wchar_t (&field)[N], const std::string &path) {
    const std::wstring wide = Wide(path);
    std::fill(std::begin(field), std::end(field), L'\0');
    wide.copy(field, N);
}

class SettingStore : public testing::Test {
  protected:
    void Use(const std::string &bytes) {
        SetPath(m_setting->wszSettingFile, m_folder.Write("IspSetting.ini", bytes));
    }
    void Load(const std::string &bytes) {
        Use(bytes);
        m_setting->LoadSetting();
    }
    void AddBank(unsigned int target, const std::string &path) {
        STRUCT_C_STYLE_MAP_FW &map = m_setting->stMapFw;
        map.ulTargetBank[map.ulFwCount] = target;
        SetPath(map.stFwBank[map.ulFwCount].wszFwPath, path);
        ++map.ulFwCount;
    }
    std::string Saved(const std::string &before = "") {
        Use(before);
        m_setting->SaveSetting();
        return m_folder.Read("IspSetting.ini");
    }

    TempFolder m_folder;
    std::unique_ptr<Setting> m_setting = std::make_unique<Setting>();
};

/// A 32-bit field by its place in the record.
std::uint32_t At(const Setting &setting, std::size_t offset) {
    std::uint32_t value = 0;
    std::memcpy(&value, reinterpret_cast<const char *>(&setting) + offset, sizeof value);
    return value;
}

struct LoadRow {
    std::size_t offset;
    const char *section;
    const char *key;
    std::uint32_t byDefault;
};

const LoadRow kLoadRows[] = {
    {28, "Communication", "enumCommID", 0},
    {0, "ISP_Action", "enumActionType", 4},
    {4, "ISP_DualBank", "enumDigitalSignatureType", 0},
    {8, "ISP_DualBank", "enumSWDigitalSignatureMode", 0},
    {68, "ISP_DualBank", "enumBootCodeType", 0},
    {72, "ISP_DualBank", "enumIspMode", 1},
    {12, "ISP_Basic", "enumVersionLocationType", 1},
    {20, "ISP_Basic", "enumMergeFWInfoMode", 0},
    {24, "ISP_Basic", "enumMergeFWInfoType", 0},
    {40, "ISP_Basic", "enumMergeFWGeneration", 2},
    {80, "ISP_Fw", "ulProgStartBank", 0},
    {56, "ISP_Basic", "bAutoSearchFW", 0},
};

TEST_F(SettingStore, Missing_keys_load_their_defaults) {
    for (const char *text : {"", "[ISP_Basic]\n[ISP_Action]\n", "[ISP_DualBank]\nenumIspMode=\n"}) {
        std::memset(static_cast<void *>(m_setting.get()), 0x5A, 84);
        Load(text);
        for (const LoadRow &row : kLoadRows) {
            EXPECT_EQ(At(*m_setting, row.offset), row.byDefault) << row.key;
        }
    }
}

TEST_F(SettingStore, Missing_file_loads_defaults_silently) {
    SetPath(m_setting->wszSettingFile, m_folder.Path("nowhere/IspSetting.ini"));
    m_setting->enumActionType = {};
    EXPECT_EQ(OutputOf([&] { m_setting->LoadSetting(); }), "");
    EXPECT_EQ(At(*m_setting, 0), 4U);
    EXPECT_EQ(At(*m_setting, 40), 2U);
}

TEST_F(SettingStore, Each_key_fills_its_own_field_only) {
    const auto fresh = std::make_unique<Setting>();
    for (const LoadRow &row : kLoadRows) {
        std::memcpy(static_cast<void *>(m_setting.get()), fresh.get(), sizeof(Setting));
        Load("[" + std::string(row.section) + "]\n" + row.key + "=-305419896\n");
        for (const LoadRow &other : kLoadRows) {
            EXPECT_EQ(At(*m_setting, other.offset),
                      other.key == row.key ? 0xEDCBA988 : other.byDefault)
                << row.key << " in " << other.key;
        }
        for (const std::size_t offset : {16U, 32U, 36U, 44U, 48U, 52U, 60U, 64U, 76U, 84U}) {
            EXPECT_EQ(At(*m_setting, offset), At(*fresh, offset)) << row.key << " at " << offset;
        }
    }
}

TEST_F(SettingStore, LoadSetting_keeps_firmware_map) {
    AddBank(5, "/fw");
    Load("[ISP_Fw]\nfwFileCount=7\nfw0_Path=/other\nfw0_TargetBank=9\n");
    EXPECT_EQ(m_setting->stMapFw.ulFwCount, 1U);
    EXPECT_EQ(m_setting->stMapFw.ulTargetBank[0], 5U);
    EXPECT_STREQ(m_setting->stMapFw.stFwBank[0].wszFwPath, L"/fw");
}

TEST_F(SettingStore, SaveSetting_numbers_the_target_key_by_its_bank) {
    AddBank(5, "/fw/a.bin");
    AddBank(7, "/fw/b.bin");
    EXPECT_EQ(Saved(), "[ISP_Fw]\nfwFileCount=2\n"
                       "fw5_TargetBank=0\nfw0_FileBank=0\nfw0_Path=/fw/a.bin\n"
                       "fw7_TargetBank=1\nfw1_FileBank=1\nfw1_Path=/fw/b.bin\n");
}

TEST_F(SettingStore, Empty_map_writes_count_only) {
    EXPECT_EQ(Saved(), "[ISP_Fw]\nfwFileCount=0\n");
}

TEST_F(SettingStore, Save_keeps_unrelated_keys) {
    AddBank(0, "/new");
    EXPECT_EQ(Saved("[ISP_Basic]\nbAutoSearchFW=1\n[ISP_Fw]\nulProgStartBank=3\nfw0_Path=/old\n"),
              "[ISP_Basic]\nbAutoSearchFW=1\n[ISP_Fw]\nulProgStartBank=3\nfw0_Path=/new\n"
              "fwFileCount=1\nfw0_TargetBank=0\nfw0_FileBank=0\n");
}

TEST_F(SettingStore, Second_entry_of_same_bank_replaces_value_of_first) {
    AddBank(5, "/a");
    AddBank(5, "/b");
    EXPECT_EQ(Saved(), "[ISP_Fw]\nfwFileCount=2\nfw5_TargetBank=1\nfw0_FileBank=0\nfw0_Path=/a\n"
                       "fw1_FileBank=1\nfw1_Path=/b\n");
}

TEST_F(SettingStore, Numbers_are_signed_and_path_needs_no_terminator) {
    AddBank(4294967295U, std::string(260, 'p'));
    EXPECT_EQ(Saved(), "[ISP_Fw]\nfwFileCount=1\nfw-1_TargetBank=0\nfw0_FileBank=0\nfw0_Path=" +
                           std::string(260, 'p') + "\n");
}

TEST_F(SettingStore, Count_above_512_is_written_but_only_512_banks_saved) {
    AddBank(1, "/a");
    m_setting->stMapFw.ulFwCount = 600;
    const std::string text = Saved();
    EXPECT_EQ(text.substr(0, 26), "[ISP_Fw]\nfwFileCount=600\nf");
    EXPECT_NE(text.find("fw511_FileBank=511\n"), std::string::npos);
    EXPECT_EQ(text.find("fw512_FileBank"), std::string::npos);
}

TEST_F(SettingStore, Unwritable_file_is_reported_for_every_key) {
    AddBank(5, "/a");
    SetPath(m_setting->wszSettingFile, m_folder.MakeFolder("d"));
    EXPECT_EQ(OutputOf([&] { m_setting->SaveSetting(); }),
              "Open file error \nOpen file error \nOpen file error \nOpen file error \n");
}

TEST_F(SettingStore, ClearMapFW_clears_file_bank_and_path_of_the_first_entry_only) {
    STRUCT_C_STYLE_MAP_FW &map = m_setting->stMapFw;
    std::memset(static_cast<void *>(&map), 0x5A, sizeof map);
    m_setting->ClearMapFW();
    EXPECT_EQ(map.ulFwCount, 0U);
    for (std::size_t i = 0; i < 512; ++i) {
        ASSERT_EQ(map.ulTargetBank[i], 0U) << i;
        ASSERT_EQ(map.stFwBank[i].ullBankValue, 0U) << i;
        ASSERT_EQ(map.stFwBank[i].ulFileBank, i == 0 ? 0U : 0x5A5A5A5AU) << i;
        for (const wchar_t c : map.stFwBank[i].wszFwPath) {
            ASSERT_EQ(static_cast<std::uint32_t>(c), i == 0 ? 0U : 0x5A5A5A5AU) << i;
        }
    }
}

TEST_F(SettingStore, Saving_gives_bytes_of_one_write_per_key) {
    std::mt19937 random(11);
    const std::vector<std::string> lines = {"[ISP_Fw]",
                                            "[ISP_Basic]",
                                            "fwFileCount=9",
                                            "fw0_Path=/x=y",
                                            "fw1_FileBank = 4",
                                            "fw2_Path",
                                            "",
                                            "; note",
                                            "fw0_TargetBank=77",
                                            " fw1_Path=/q ",
                                            "bShowEraseUI=1",
                                            "[ISP_Fw] ",
                                            "[Other]",
                                            "=",
                                            "fw3_FileBank="};
    const std::vector<std::string> paths = {"/a.bin", "", " /blank ", "/k=v", "/\xE4", "/[x]"};
    for (int round = 0; round < 200; ++round) {
        std::string before;
        for (auto count = random() % 9; count > 0; --count) {
            before += lines[random() % lines.size()] + "\n";
        }
        m_setting->stMapFw.ulFwCount = 0;
        for (auto count = random() % 4; count > 0; --count) {
            AddBank(static_cast<unsigned int>(random() % 5), paths[random() % paths.size()]);
        }
        const std::string expected = m_folder.Write("expected.ini", before);
        const auto write = [&](const std::string &key, const std::wstring &value) {
            CpNxWritePrivateProfileStringW(L"ISP_Fw", Wide(key).c_str(), value.c_str(),
                                           Wide(expected).c_str());
        };
        const STRUCT_C_STYLE_MAP_FW &map = m_setting->stMapFw;
        write("fwFileCount", std::to_wstring(map.ulFwCount));
        for (unsigned int i = 0; i < map.ulFwCount; ++i) {
            const std::string number = "fw" + std::to_string(i);
            write("fw" + std::to_string(map.ulTargetBank[i]) + "_TargetBank", std::to_wstring(i));
            write(number + "_FileBank", std::to_wstring(i));
            write(number + "_Path", map.stFwBank[i].wszFwPath);
        }
        ASSERT_EQ(Saved(before), m_folder.Read("expected.ini")) << "round " << round << before;
    }
}

TEST_F(SettingStore, UI_switches_are_saved_under_their_names) {
    const char *names[] = {"bShowEraseUI",      "bShowFWInfoUI",   "bShowFWVersion",
                           "bShowMergeFW",      "bShowDualBankFW", "bShowResetMCU",
                           "bShowEnterIspMode", "bShowDumpFlash"};
    for (std::size_t i = 0; i < 8; ++i) {
        STRUCT_CP_ISP_UI_SETTING setting;
        std::memset(static_cast<void *>(&setting), 0x5A, 32);
        SetPath(setting.wszSettingFile,
                m_folder.Write("ui.ini", (i == 7 ? "[ISP_Flash]\n" : "[ISP_Basic]\n") +
                                             std::string(names[i]) + "=0x21\n"));
        setting.LoadUISetting();
        for (std::size_t k = 0; k < 8; ++k) {
            std::uint32_t value = 0;
            std::memcpy(&value, reinterpret_cast<const char *>(&setting) + 4 * k, sizeof value);
            EXPECT_EQ(value, k == i ? 33U : 0U) << names[i] << " in " << names[k];
        }
    }
}

TEST_F(SettingStore, Settings_path_is_read_without_terminator) {
    const std::string name(260 - m_folder.Path().size(), 'n');
    const std::string path = m_folder.Write(name, "[ISP_Action]\nenumActionType=9\n"
                                                  "[ISP_Flash]\nbShowDumpFlash=1\n[ISP_Fw]\n");
    ASSERT_EQ(path.size(), 260U);
    constexpr std::size_t kBehind = 545384 + 260 * 4;
    std::memset(reinterpret_cast<char *>(m_setting.get()) + kBehind, 'x',
                sizeof(Setting) - kBehind);
    SetPath(m_setting->wszSettingFile, path);
    m_setting->LoadSetting();
    EXPECT_EQ(At(*m_setting, 0), 9U);
    m_setting->SaveSetting();
    EXPECT_EQ(m_folder.Read(name), "[ISP_Action]\nenumActionType=9\n[ISP_Flash]\n"
                                   "bShowDumpFlash=1\n[ISP_Fw]\nfwFileCount=0\n");
    struct {
        STRUCT_CP_ISP_UI_SETTING setting;
        wchar_t after[2] = L"x";
    } switches;
    SetPath(switches.setting.wszSettingFile, path);
    switches.setting.LoadUISetting();
    EXPECT_EQ(switches.setting.bShowDumpFlash, 1U);
}

TEST_F(SettingStore, Path_of_UI_setting_follows_its_switches) {
    EXPECT_EQ(offsetof(STRUCT_CP_ISP_UI_SETTING, wszSettingFile), 32U);
    STRUCT_CP_ISP_UI_SETTING setting;
    setting.bShowDumpFlash = 1;
    EXPECT_EQ(OutputOf([&] { setting.LoadUISetting(); }), "");
    EXPECT_EQ(setting.bShowDumpFlash, 0U);
}

} // namespace
