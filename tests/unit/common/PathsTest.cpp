#include "scaler_isp/common/Paths.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include "support/CapturedOutput.h"
#include "support/TempFolder.h"

namespace {

/// One trailing "/" goes, then everything after the last one: letter by letter.
std::wstring SlowParent(std::wstring path) {
    if (!path.empty() && path[path.size() - 1] == L'/') {
        path = path.substr(0, path.size() - 1);
    }
    while (!path.empty() && path[path.size() - 1] != L'/') {
        path = path.substr(0, path.size() - 1);
    }
    return path;
}

TEST(Paths, GetParentDir_removes_last_component) {
    const struct {
        const wchar_t *path;
        const wchar_t *parent;
    } rows[] = {
        {L"", L""},         {L"/", L""},      {L"a", L""},     {L"a/", L""},
        {L"a/b", L"a/"},    {L"a/b/", L"a/"}, {L"/a", L"/"},   {L"/a/", L"/"},
        {L"/a/b/", L"/a/"}, {L"//", L"/"},    {L"a//", L"a/"}, {L"a//b", L"a//"},
        {L"a\\b", L""},     {L"./a", L"./"},  {L"../", L""},   {L"/\u00E9/b", L"/\u00E9/"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(std::wstring(GetParentDir(row.path)), row.parent)
            << CCpNxString(row.path).GetUtf8String();
    }
}

void ForAllPaths(const std::wstring &begin, std::size_t longest) {
    CCpNxString path;
    path = begin;
    ASSERT_EQ(std::wstring(GetParentDir(path)), SlowParent(begin)) << path.GetUtf8String();
    ASSERT_EQ(std::wstring(path), begin);
    if (begin.size() < longest) {
        for (const wchar_t next : {L'/', L'a', L'.', L'\\'}) {
            ForAllPaths(begin + next, longest);
        }
    }
}

TEST(Paths, GetParentDir_agrees_with_letter_by_letter_for_short_paths) {
    ForAllPaths(L"", 6);
}

TEST(Paths, IsAbsolutePath_accepts_leading_slash_and_drive) {
    for (const char *path :
         {"/", "/x", "/x/y", "//", "C:\\", "C:\\x", "c:\\x\\y", "a://", "a://b", "::\\", "/:\\x"}) {
        EXPECT_TRUE(IsAbsolutePath(path)) << path;
    }
    for (const char *path : {"", "x", "x/y", "./x", "../x", "~/x", "C:", "C:x", "C:/x", "CC:\\x",
                             ":\\x", "file://x", "://", "x\\y", "\\x", " /x"}) {
        EXPECT_FALSE(IsAbsolutePath(path)) << path;
    }
}

TEST(Paths, IsAbsolutePath_checks_first_drive_mark_only) {
    EXPECT_FALSE(IsAbsolutePath("://://"));
    EXPECT_FALSE(IsAbsolutePath("ab:\\a:\\"));
}

TEST(Paths, Absolute_path_resolves_symbolic_links_and_dots) {
    const TempFolder folder;
    folder.Write("real/file.bin", "x");
    ASSERT_EQ(symlink("real", folder.Path("link").c_str()), 0);
    EXPECT_EQ(GetAbsolutePath(folder.Path("link/../link/./file.bin")),
              folder.Path("real/file.bin"));
    EXPECT_EQ(GetAbsolutePath("/"), "/");
}

TEST(Paths, Relative_path_is_resolved_from_working_directory) {
    const TempFolder folder;
    folder.Write("file.bin", "x");
    const CurrentFolderGuard current(folder.Path());
    EXPECT_EQ(GetAbsolutePath("file.bin"), folder.Path("file.bin"));
    EXPECT_EQ(GetAbsolutePath("./file.bin"), folder.Path("file.bin"));
}

TEST(Paths, Missing_file_in_existing_directory_has_absolute_path) {
    const TempFolder folder;
    EXPECT_EQ(GetAbsolutePath(folder.Path() + "./missing.bin"), folder.Path("missing.bin"));
}

TEST(Paths, Unresolvable_path_is_empty_or_partial) {
    const TempFolder folder;
    folder.Write("file", "x");
    EXPECT_EQ(GetAbsolutePath(""), "");
    EXPECT_EQ(GetAbsolutePath(folder.Path("missing/file.bin")), folder.Path("missing"));
    EXPECT_EQ(GetAbsolutePath(folder.Path("missing/../file")), folder.Path("missing"));
    EXPECT_EQ(GetAbsolutePath(folder.Path("file/x")), "");
    EXPECT_EQ(GetAbsolutePath(folder.Path("file/")), "");
    EXPECT_EQ(GetAbsolutePath(folder.Path("file/..")), "");
    EXPECT_EQ(GetAbsolutePath(std::string(5000, 'x')), "");
    EXPECT_EQ(GetAbsolutePath("/" + std::string(50000, 'x')), "");
}

TEST(Paths, GetFileFullPath_returns_absolute_file_unchanged) {
    const TempFolder folder;
    folder.MakeFolder("sub");
    const std::string file = folder.Path("sub/../file.bin");
    EXPECT_EQ(GetFileFullPath(file, "/elsewhere/"), file);
    EXPECT_EQ(GetFileFullPath("C:\\file.bin", folder.Path()), "C:\\file.bin");
    EXPECT_EQ(GetFileFullPath("a://b", folder.Path()), "a://b");
    EXPECT_EQ(GetFileFullPath("//x", folder.Path()), "//x");
}

TEST(Paths, GetFileFullPath_resolves_relative_file_in_directory) {
    const TempFolder folder;
    folder.Write("sub/file.bin", "x");
    EXPECT_EQ(GetFileFullPath("file.bin", folder.Path("sub/")), folder.Path("sub/file.bin"));
    EXPECT_EQ(GetFileFullPath("../sub/./file.bin", folder.Path("sub/")),
              folder.Path("sub/file.bin"));
    EXPECT_EQ(GetFileFullPath("", folder.Path("sub/")), folder.Path("sub"));
}

TEST(Paths, GetFileFullPath_joins_without_separator) {
    const TempFolder folder;
    folder.Write("subfile.bin", "x");
    folder.MakeFolder("sub");
    EXPECT_EQ(GetFileFullPath("file.bin", folder.Path("sub")), folder.Path("subfile.bin"));
}

TEST(Paths, PathFileExist_returns_true_if_file_opens_for_reading) {
    const TempFolder folder;
    folder.Write("file.bin", "x");
    folder.Write("empty.bin", "");
    folder.Write("\xC3\xA9.bin", "x");
    EXPECT_EQ(PathFileExist(folder.Path("file.bin")), 1);
    EXPECT_EQ(PathFileExist(folder.Path("empty.bin")), 1);
    EXPECT_EQ(PathFileExist(folder.Path("\xC3\xA9.bin")), 1);
    EXPECT_EQ(PathFileExist(folder.Path("missing.bin")), 0);
    EXPECT_EQ(PathFileExist(folder.Path("missing/file.bin")), 0);
    EXPECT_EQ(PathFileExist(""), 0);
    EXPECT_FALSE(folder.Exists("missing.bin"));
    EXPECT_EQ(folder.Read("file.bin"), "x");
}

TEST(Paths, PathFileExist_accepts_directory) {
    const TempFolder folder;
    EXPECT_EQ(PathFileExist(folder.Path()), 1);
}

TEST(Paths, PathFileExist_leaves_no_descriptor_open) {
    const TempFolder folder;
    const std::string file = folder.Write("file.bin", "x");
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(PathFileExist(file), 1) << i;
    }
}

TEST(Paths, PopupDlgToGetOpenFilePath_does_nothing_and_returns_1) {
    CCpNxString path(L"before");
    EXPECT_EQ(PopupDlgToGetOpenFilePath(L"title", path), 1);
    EXPECT_EQ(std::wstring(path), L"before");
}

TEST(Paths, Invalid_input_prints_nothing) {
    EXPECT_EQ(OutputOf([] {
                  EXPECT_EQ(ErrorOutputOf([] {
                                GetAbsolutePath("/missing/missing");
                                GetFileFullPath("missing", "/missing/");
                                PathFileExist("/missing");
                                GetParentDir(L"");
                                int inside = 0;
                                GetCurrentProcessDir(&inside);
                            }),
                            "");
              }),
              "");
}

} // namespace
