#include <filesystem>

#include "ParserFixture.h"

namespace {

std::vector<std::string> Found(const std::string &dir, const std::string &ext) {
    std::vector<std::string> names;
    FindFile(dir, names, ext);
    return names;
}

} // namespace

TEST(FindFile, Names_must_be_longer_than_the_ending) {
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

TEST(FindFile, Names_come_in_the_order_of_the_listing) {
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

TEST(FindFile, Names_are_appended) {
    TempFolder folder;
    folder.Write("a.bin", "");
    std::vector<std::string> names{"first"};
    FindFile(folder.Path(), names, ".bin");
    EXPECT_THAT(names, testing::ElementsAre("first", "a.bin"));
}

TEST(FindFile, Folder_that_cannot_be_opened_adds_nothing) {
    TempFolder folder;
    EXPECT_THAT(Found(folder.Path() + "none/", ".bin"), testing::IsEmpty());
    EXPECT_THAT(Found("", ".bin"), testing::IsEmpty());
}

TEST(DefaultSettingFile, Path_lies_beside_the_library) {
    wchar_t buffer[2048];
    GetDefaultSettingFilePathName(buffer, 2048);
    const std::wstring path = buffer;
    ASSERT_GT(path.size(), std::wstring(L"/IspSetting.ini").size());
    EXPECT_EQ(path.substr(path.size() - 15), L"/IspSetting.ini");
}

TEST(DefaultSettingFile, Room_must_be_greater_than_the_length) {
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
