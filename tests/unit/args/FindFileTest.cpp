#include <filesystem>

#include "ParserFixture.h"

namespace {

std::vector<std::string> Found(const std::string &dir, const std::string &ext) {
    std::vector<std::string> names;
    FindFile(dir, names, ext);
    return names;
}

} // namespace

TEST(FindFile, FindFile_skips_name_that_is_only_extension) {
    TempFolder folder;
    for (const char *name : {"a.bin", ".bin", "b.BIN", "c.bin.txt", "dbin", "x.bin", "._y.bin"}) {
        folder.Write(name, "");
    }
    folder.MakeFolder("sub.bin");
    folder.Write("other/z.bin", "");
    EXPECT_THAT(Found(folder.Path(), ".bin"),
                testing::UnorderedElementsAre("a.bin", "x.bin", "._y.bin", "sub.bin"));
    EXPECT_THAT(Found(folder.Path(), ".txt"), testing::ElementsAre("c.bin.txt"));
    EXPECT_THAT(Found(folder.Path(), ".hex"), testing::IsEmpty());
}

TEST(FindFile, FindFile_keeps_order_of_directory_listing) {
    TempFolder folder;
    for (int i = 1; i <= 40; ++i) {
        folder.Write(std::to_string(i * 37 % 101) + ".bin", "");
    }
    std::vector<std::string> listed;
    for (const auto &entry : std::filesystem::directory_iterator(folder.Path())) {
        listed.push_back(entry.path().filename().string());
    }
    ASSERT_EQ(listed.size(), 40U);
    EXPECT_EQ(Found(folder.Path(), ".bin"), listed);
}

TEST(FindFile, FindFile_appends_to_list) {
    TempFolder folder;
    folder.Write("a.bin", "");
    std::vector<std::string> names{"first"};
    FindFile(folder.Path(), names, ".bin");
    EXPECT_THAT(names, testing::ElementsAre("first", "a.bin"));
}

TEST(FindFile, FindFile_adds_nothing_if_directory_cannot_be_opened) {
    TempFolder folder;
    EXPECT_THAT(Found(folder.Path() + "none/", ".bin"), testing::IsEmpty());
    EXPECT_THAT(Found("", ".bin"), testing::IsEmpty());
}

TEST(DefaultSettingFile, Default_path_is_in_library_directory) {
    wchar_t buffer[2048];
    GetDefaultSettingFilePathName(buffer, 2048);
    const std::wstring path = buffer;
    ASSERT_GT(path.size(), std::wstring(L"/IspSetting.ini").size());
    EXPECT_EQ(path.substr(path.size() - 15), L"/IspSetting.ini");
}

TEST(DefaultSettingFile, Default_path_becomes_empty_unless_capacity_exceeds_length) {
    wchar_t buffer[2048];
    GetDefaultSettingFilePathName(buffer, 2048);
    const std::wstring path = buffer;
    const auto length = static_cast<unsigned>(path.size());
    std::fill(std::begin(buffer), std::end(buffer), L'#');
    GetDefaultSettingFilePathName(buffer, length + 1);
    EXPECT_EQ(std::wstring(buffer), path);
    EXPECT_EQ(buffer[length + 1], L'#');
    std::fill(std::begin(buffer), std::end(buffer), L'#');
    GetDefaultSettingFilePathName(buffer, length);
    EXPECT_EQ(buffer[0], L'\0');
    EXPECT_EQ(buffer[length], L'#');
    buffer[0] = L'#';
    GetDefaultSettingFilePathName(buffer, 0);
    EXPECT_EQ(buffer[0], L'#');
    GetDefaultSettingFilePathName(nullptr, 5);
}
