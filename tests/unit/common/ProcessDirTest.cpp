#include "scaler_isp/common/Paths.h"

#include <cerrno>
#include <climits>
#include <clocale>
#include <filesystem>
#include <optional>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "scaler_isp/common/LibraryAnchor.h"
#include "support/ProgramDirectory.h"
#include "support/RealFunction.h"
#include "support/SystemFault.h"
#include "support/TempFolder.h"
#include "support/TestLocale.h"

namespace {

/// What dladdr shall report in this program; nothing: the truth.
std::optional<std::string> g_imagePath;
bool g_imageFound = true;
bool g_imageNamed = true;

class ImagePath {
  public:
    explicit ImagePath(const std::string &path) {
        g_imagePath = path;
    }
    ~ImagePath() {
        g_imagePath.reset();
        g_imageFound = true;
        g_imageNamed = true;
    }
    ImagePath(const ImagePath &) = delete;
    ImagePath &operator=(const ImagePath &) = delete;
};

using DladdrFunction = int (*)(const void *, Dl_info *);

std::wstring DirOf(const std::string &imagePath) {
    const ImagePath image(imagePath);
    return GetCurrentProcessDir(TCSZ_GLOBAL_SYMBOL);
}

std::wstring Widened(const std::string &ascii) {
    return {ascii.begin(), ascii.end()};
}

const std::string kStartFolder = [] {
    char buffer[PATH_MAX];
    return std::string(getcwd(buffer, sizeof buffer) != nullptr ? buffer : "");
}();

} // namespace

// The loader's answer cannot be arranged with real libraries in every form that matters.
extern "C" int dladdr(const void *address, Dl_info *info) SCALER_ISP_SYSTEM_NOEXCEPT {
    if (!g_imagePath) {
        static const auto real = RealFunction<DladdrFunction>("dladdr");
        return real(address, info);
    }
    *info = Dl_info{};
    info->dli_fname = g_imageFound && g_imageNamed ? g_imagePath->c_str() : nullptr;
    return g_imageFound ? 1 : 0;
}

namespace {

TEST(ProcessDir, Directory_of_image_ends_in_one_slash) {
    EXPECT_EQ(DirOf("/opt/tool/libScalerIsp.dylib"), L"/opt/tool/");
    EXPECT_EQ(DirOf("/libScalerIsp.dylib"), L"/");
    EXPECT_EQ(DirOf("/opt/a b/lib.so"), L"/opt/a b/");
    EXPECT_EQ(DirOf("/opt/a.b/../c/lib.so"), L"/opt/a.b/../c/");
}

TEST(ProcessDir, Last_slash_wins_over_backslash) {
    EXPECT_EQ(DirOf("/opt/tool\\x\\lib.so"), L"/opt/");
    EXPECT_EQ(DirOf("/opt/tool\\x/lib.so"), L"/opt/tool\\x/");
}

TEST(ProcessDir, Empty_image_name_returns_working_directory) {
    EXPECT_EQ(DirOf(""), L"./");
}

TEST(ProcessDir, Address_outside_any_image_returns_empty_string) {
    const ImagePath image("/opt/tool/lib.so");
    g_imageFound = false;
    EXPECT_EQ(std::wstring(GetCurrentProcessDir(TCSZ_GLOBAL_SYMBOL)), L"");
}

TEST(ProcessDir, Image_without_name_returns_empty_string) {
    const ImagePath image("/opt/tool/lib.so");
    g_imageNamed = false;
    EXPECT_EQ(std::wstring(GetCurrentProcessDir(TCSZ_GLOBAL_SYMBOL)), L"");
}

TEST(ProcessDir, Path_is_truncated_to_260_bytes_before_directory_is_cut_off) {
    // The slash after the second folder is byte 260, 261 or 259.
    const auto path = [](std::size_t slashAt) {
        return "/first/" + std::string(slashAt - 7, 'd') + "/lib.so";
    };
    ASSERT_EQ(path(259)[259], '/');
    EXPECT_EQ(DirOf(path(258)), L"/first/" + std::wstring(251, L'd') + L"/");
    EXPECT_EQ(DirOf(path(259)), L"/first/" + std::wstring(252, L'd') + L"/");
    EXPECT_EQ(DirOf(path(260)), L"/first/");
    EXPECT_EQ(DirOf(path(261)), L"/first/");
    EXPECT_EQ(DirOf(path(4000)), L"/first/");
}

TEST(ProcessDir, Path_is_decoded_in_encoding_of_environment) {
    if (!HasTestLocale("de_DE.ISO-8859-1")) {
        GTEST_SKIP() << "the locale de_DE.ISO-8859-1 was not made";
    }
    const EnvironmentLocaleGuard environment("de_DE.ISO-8859-1");
    EXPECT_EQ(DirOf("/gr\xFC\xDF/lib.so"), L"/gr\u00FC\u00DF/");
    EXPECT_EQ(DirOf("/\xC3\xA9/lib.so"), L"/\u00C3\u00A9/");
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
}

TEST(ProcessDir, Path_is_decoded_as_UTF8_in_UTF8_environment) {
    EXPECT_EQ(DirOf("/gr\xC3\xBC\xC3\x9F/lib.so"), L"/gr\u00FC\u00DF/");
}

#ifdef __linux__

TEST(ProcessDir, Path_is_decoded_as_UTF8_if_environment_cannot) {
    const EnvironmentLocaleGuard environment("C");
    EXPECT_EQ(DirOf("/gr\xC3\xBC\xC3\x9F/lib.so"), L"/gr\u00FC\u00DF/");
    EXPECT_EQ(DirOf("/gr\xFC/lib.so"), L"");
}

// glibc then reports what is not ASCII as invalid in every encoding.
TEST(ProcessDir, Path_is_decoded_by_iconv_if_C_library_fails) {
    if (!HasTestLocale("ja_JP.EUC-JP")) {
        GTEST_SKIP() << "the locale ja_JP.EUC-JP was not made";
    }
    const EnvironmentLocaleGuard environment("ja_JP.EUC-JP");
    const SystemFault fault("mbsrtowcs", EILSEQ);
    EXPECT_EQ(DirOf("/\xA4\xA2/lib.so"), L"/\u3042/");
    EXPECT_TRUE(fault.HasStruck());
    EXPECT_EQ(DirOf("/\xA4/lib.so"), L"");
}

TEST(ProcessDir, Relative_image_path_is_resolved_from_start_directory) {
    const TempFolder elsewhere;
    const CurrentFolderGuard current(elsewhere.Path());
    const std::wstring start = Widened(kStartFolder);
    EXPECT_EQ(DirOf("sub/lib.so"), start + L"/sub/");
    EXPECT_EQ(DirOf("lib.so"), start + L"/");
    EXPECT_EQ(DirOf("./lib.so"), start + L"/");
    EXPECT_EQ(DirOf("././sub/lib.so"), start + L"/sub/");
    EXPECT_EQ(DirOf("../lib.so"), start + L"/../");
}

#else

TEST(ProcessDir, Relative_image_path_stays_relative) {
    EXPECT_EQ(DirOf("sub/lib.so"), L"sub/");
    EXPECT_EQ(DirOf("lib.so"), L"./");
    EXPECT_EQ(DirOf("tool\\lib.so"), L"tool\\/");
}

#endif

TEST(ProcessDir, Null_address_returns_directory_of_executable) {
    const ImagePath unused("/opt/tool/lib.so");
    EXPECT_EQ(std::wstring(GetCurrentProcessDir(nullptr)),
              Widened(ProgramDirectory().string() + "/"));
}

TEST(ProcessDir, Address_of_anchor_returns_directory_of_program) {
    const std::wstring found = GetCurrentProcessDir(TCSZ_GLOBAL_SYMBOL);
    CCpNxString narrow;
    narrow = found;
    char resolved[PATH_MAX] = {};
    ASSERT_NE(realpath(narrow.GetUtf8StringBuffer(), resolved), nullptr);
    EXPECT_EQ(std::string(resolved), ProgramDirectory().string());
}

TEST(ProcessDir, Address_in_opened_library_returns_its_directory) {
    // The mathematics library is loaded everywhere; a copy of it lies where we want it, under a
    // link.
    Dl_info info{};
    ASSERT_NE(dladdr(dlsym(RTLD_DEFAULT, "cos"), &info), 0);
    const TempFolder folder;
    const std::string copy = folder.MakeFolder("real/er") + "/libcopy.so";
    ASSERT_TRUE(std::filesystem::copy_file(info.dli_fname, copy));
    ASSERT_EQ(symlink("real", folder.Path("link").c_str()), 0);

    void *library = dlopen(folder.Path("link/er/libcopy.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    EXPECT_EQ(std::wstring(GetCurrentProcessDir(dlsym(library, "cos"))),
              Widened(folder.Path("link/er/")));
    dlclose(library);
}

TEST(ProcessDir, Address_on_stack_returns_empty_string) {
    int inside = 0;
    EXPECT_EQ(std::wstring(GetCurrentProcessDir(&inside)), L"");
}

} // namespace
