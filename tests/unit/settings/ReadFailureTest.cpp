#include <cerrno>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/types.h>
#include <tuple>
#include <unistd.h>

#include "scaler_isp/ScalerIsp.h"
#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/settings/IniReader.h"
#include "support/CapturedOutput.h"
#include "support/RealFunction.h"
#include "support/SystemFault.h"
#include "support/TempFolder.h"
#include "unit/settings/ProfileFamilies.h"

namespace {

/// While it lives, the read of this number, counted from 1, goes wrong in this process.
struct ReadFault {
    enum class Kind { Error, EarlyEnd };

    ReadFault(Kind faultKind, int readNumber) : kind(faultKind), number(readNumber) {
        current = this;
    }
    ~ReadFault() {
        current = nullptr;
    }
    ReadFault(const ReadFault &) = delete;
    ReadFault &operator=(const ReadFault &) = delete;

    Kind kind;
    int number;
    static inline ReadFault *current = nullptr;
};

} // namespace

extern "C" ssize_t read(int file, void *to, size_t size) {
    using Read = ssize_t (*)(int, void *, size_t);
    static const auto real = RealFunction<Read>("read");
    if (SystemFault::Strikes("read")) {
        return -1;
    }
    if (ReadFault::current != nullptr && --ReadFault::current->number == 0) {
        if (ReadFault::current->kind == ReadFault::Kind::EarlyEnd) {
            return 0;
        }
        errno = EIO;
        return -1;
    }
    return real(file, to, size);
}

namespace {

constexpr const char *kFile = "[S]\nK=1\n";

const ReadFault::Kind kKinds[] = {ReadFault::Kind::Error, ReadFault::Kind::EarlyEnd};

TEST(ReadFailure, Partly_read_file_is_not_rewritten) {
    const TempFolder folder;
    const std::string path = folder.Write("p.ini", kFile);
    for (const ReadFault::Kind kind : kKinds) {
        EXPECT_EQ(OutputOf([&] {
                      const ReadFault fault(kind, 1);
                      EXPECT_EQ(WideFamily::Write(path, "S", "K", "2"), 0);
                  }),
                  "");
        EXPECT_EQ(OutputOf([&] {
                      const ReadFault fault(kind, 1);
                      EXPECT_EQ(NarrowFamily::Write(path, "S", "K", "2"), 0);
                  }),
                  "");
        EXPECT_EQ(folder.Read("p.ini"), kFile);
    }
    EXPECT_EQ(WideFamily::Write(path, "S", "K", "2"), 1);
}

TEST(ReadFailure, Map_is_not_saved_to_partly_read_file) {
    const TempFolder folder;
    const auto setting = std::make_unique<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
    Wide(folder.Write("p.ini", kFile)).copy(setting->wszSettingFile, SCALER_ISP_PATH_CHARS);
    for (const ReadFault::Kind kind : kKinds) {
        const ReadFault fault(kind, 1);
        setting->SaveSetting();
    }
    EXPECT_EQ(folder.Read("p.ini"), kFile);
}

TEST(ReadFailure, Reader_throws_if_read_fails) {
    const TempFolder folder;
    const std::string path = folder.Write("p.ini", kFile);
    for (const ReadFault::Kind kind : kKinds) {
        const ReadFault fault(kind, 1);
        EXPECT_THROW(IniReader{path}, CallFailure);
    }
    EXPECT_EQ(IniReader(path).String(L"S", L"K"), L"1");
}

TEST(ReadFailure, Reader_treats_unresolvable_path_as_empty_file) {
    const TempFolder folder;
    for (const std::string &path :
         {folder.Path("none"), folder.MakeFolder("d"), folder.Write("f", "") + "/x"}) {
        const IniReader reader(path);
        EXPECT_EQ(reader.String(L"S", L"K"), L"") << path;
        EXPECT_EQ(reader.Number(L"S", L"K", 7), 7) << path;
    }
}

TEST(ReadFailure, Getter_returns_default_if_read_fails) {
    const TempFolder folder;
    const std::string path = folder.Write("p.ini", kFile);
    {
        const ReadFault fault(ReadFault::Kind::Error, 1);
        EXPECT_EQ(WideFamily::Get(path, "S", "K"), (ReadResult{0, "dflt"}));
    }
    const ReadFault fault(ReadFault::Kind::Error, 1);
    EXPECT_EQ(WideFamily::GetInt(path, "S", "K", 7), 7);
}

TEST(ReadFailure, Getter_needs_long_file_only_up_to_key) {
    const TempFolder folder;
    std::string text = "[S]\nFirst=1\n";
    for (int line = 0; line < 1000; ++line) {
        text += "fw" + std::to_string(line) + "=x\n";
    }
    const std::string path = folder.Write("p.ini", text + "Last=2\n");
    for (const ReadFault::Kind kind : kKinds) {
        for (const auto &[key, read, expected] :
             {std::tuple("First", 1, "dflt"), {"First", 2, "1"}, {"Last", 2, "dflt"}}) {
            const ReadFault fault(kind, read);
            EXPECT_EQ(WideFamily::Get(path, "S", key).text, expected) << key << " " << read;
        }
    }
    EXPECT_EQ(WideFamily::Get(path, "S", "Last"), (ReadResult{1, "2"}));
}

TEST(ReadFailure, LoadSetting_keeps_record_if_read_fails) {
    const TempFolder folder;
    const std::string path =
        folder.Write("p.ini", "[ISP_Fw]\nulProgStartBank=5\n[ISP_Flash]\nbShowDumpFlash=1\n");
    const auto setting = std::make_unique<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING>();
    Wide(path).copy(setting->wszSettingFile, SCALER_ISP_PATH_CHARS);
    setting->ulProgStartBank = 77;
    setting->bAutoSearchFW = 78;
    STRUCT_CP_ISP_UI_SETTING switches;
    Wide(path).copy(switches.wszSettingFile, SCALER_ISP_PATH_CHARS);
    switches.bShowDumpFlash = 79;
    for (const ReadFault::Kind kind : kKinds) {
        {
            const ReadFault fault(kind, 1);
            setting->LoadSetting();
        }
        const ReadFault fault(kind, 1);
        switches.LoadUISetting();
    }
    EXPECT_EQ(setting->ulProgStartBank, 77U);
    EXPECT_EQ(setting->bAutoSearchFW, 78U);
    EXPECT_EQ(switches.bShowDumpFlash, 79U);
    setting->LoadSetting();
    EXPECT_EQ(setting->ulProgStartBank, 5U);
    EXPECT_EQ(setting->bAutoSearchFW, 0U);
}

} // namespace
