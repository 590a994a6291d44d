#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstring>
#include <memory>
#include <set>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "scaler_isp/ScalerIsp.h"
#include "support/TempFolder.h"
#include "unit/settings/ProfileFamilies.h"

namespace {

/// A settings file whose values are different at every reading: later readings get greater numbers.
/// It is a pipe that a second thread feeds.
class ChangingFile {
  public:
    explicit ChangingFile(std::string path) : m_path(std::move(path)) {
        std::signal(SIGPIPE, SIG_IGN);
        EXPECT_EQ(::mkfifo(m_path.c_str(), 0600), 0);
        m_writer = std::thread([this] { Feed(); });
    }
    ~ChangingFile() {
        m_done = true;
        const int reader = ::open(m_path.c_str(), O_RDONLY | O_NONBLOCK); // lets the writer go on
        m_writer.join();
        ::close(reader);
        std::signal(SIGPIPE, SIG_DFL);
    }
    ChangingFile(const ChangingFile &) = delete;
    ChangingFile &operator=(const ChangingFile &) = delete;

  private:
    void Feed() {
        for (int number = 100; !m_done; ++number) {
            const std::string text = Text(std::to_string(number));
            const int file = ::open(m_path.c_str(), O_WRONLY); // waits for a reader
            // A reader that saw the end already may close just now; the next one is served then.
            while (::write(file, text.data(), text.size()) < 0 && !m_done) {
                ::usleep(100);
            }
            ::close(file);
            ::usleep(1000); // so that the reader mostly sees the end first
        }
    }

    static std::string Text(const std::string &value) {
        const std::pair<const char *, std::vector<const char *>> sections[] = {
            {"Communication", {"enumCommID"}},
            {"ISP_Action", {"enumActionType"}},
            {"ISP_DualBank",
             {"enumDigitalSignatureType", "enumSWDigitalSignatureMode", "enumBootCodeType",
              "enumIspMode"}},
            {"ISP_Basic",
             {"enumVersionLocationType", "enumMergeFWInfoMode", "enumMergeFWInfoType",
              "enumMergeFWGeneration", "bAutoSearchFW", "bShowEraseUI", "bShowFWInfoUI",
              "bShowFWVersion", "bShowMergeFW", "bShowDualBankFW", "bShowResetMCU",
              "bShowEnterIspMode"}},
            {"ISP_Fw", {"ulProgStartBank"}},
            {"ISP_Flash", {"bShowDumpFlash"}}};
        std::string text;
        for (const auto &[section, keys] : sections) {
            text += "[" + std::string(section) + "]\n";
            for (const char *key : keys) {
                text += std::string(key) + "=" + value + "\n";
            }
        }
        return text;
    }

    std::string m_path;
    std::atomic<bool> m_done{false};
    std::thread m_writer;
};

template <std::size_t N> void SetPath(wchar_t (&field)[N], const std::string &path) {
    std::fill(std::begin(field), std::end(field), L'\0');
    Wide(path).copy(field, N);
}

/// All these fields of a record were loaded, and from the same state of the file.
template <class Record>
void ExpectOneState(const Record &record, const std::vector<std::size_t> &offsets) {
    std::set<std::uint32_t> values;
    for (const std::size_t offset : offsets) {
        std::uint32_t value = 0;
        std::memcpy(&value, reinterpret_cast<const char *>(&record) + offset, sizeof value);
        EXPECT_GE(value, 100U) << "at " << offset;
        values.insert(value);
    }
    EXPECT_EQ(values.size(), 1U);
}

TEST(LoadOnce, LoadSetting_reads_one_state_of_file) {
    const TempFolder folder;
    const auto setting = std::make_unique<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
    SetPath(setting->wszSettingFile, folder.Path("IspSetting.ini"));
    const ChangingFile file(folder.Path("IspSetting.ini"));
    setting->LoadSetting();
    ExpectOneState(*setting, {28, 0, 4, 8, 68, 72, 12, 20, 24, 40, 80, 56});
}

TEST(LoadOnce, UI_settings_are_loaded_from_one_state_of_file) {
    const TempFolder folder;
    STRUCT_CP_ISP_UI_SETTING setting;
    SetPath(setting.wszSettingFile, folder.Path("IspSetting.ini"));
    const ChangingFile file(folder.Path("IspSetting.ini"));
    setting.LoadUISetting();
    ExpectOneState(setting, {0, 4, 8, 12, 16, 20, 24, 28});
}

} // namespace
