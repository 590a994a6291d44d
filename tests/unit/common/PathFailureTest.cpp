#include "scaler_isp/common/PathResolution.h"

#include <cerrno>

#include <gmock/gmock.h>

#include "scaler_isp/args/ArgsFwSearch.h"
#include "scaler_isp/common/CallFailure.h"
#include "scaler_isp/common/Paths.h"
#include "support/SystemFault.h"
#include "support/TempFolder.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

constexpr int kErrorsOfThePath[] = {ENOENT, ENOTDIR, EACCES, EPERM, ELOOP, ENAMETOOLONG};
constexpr int kSystemsErrors[] = {ENOMEM, EMFILE, ENFILE, EIO};

/// The error that a function threw; 0 for none.
template <class Function> int ErrorOf(Function &&function) {
    try {
        function();
        return 0;
    } catch (const CallFailure &failure) {
        return failure.Error();
    }
}

TEST(PathFailure, Partial_result_of_realpath_counts_if_part_is_missing_or_forbidden) {
    for (const int error : kErrorsOfThePath) {
        const SystemFault fault("realpath", error);
        const bool counts = error == ENOENT || error == EACCES;
        const std::string expected = counts ? "/as/far/as/it/exists" : "";
        EXPECT_EQ(ResolvePath("a/b"), expected) << error;
        EXPECT_EQ(ResolveFile("b", "a/"), expected) << error;
        EXPECT_EQ(GetAbsolutePath("a/b"), expected) << error;
        EXPECT_EQ(GetFileFullPath("b", "a/"), expected) << error;
    }
}

TEST(PathFailure, File_used_as_directory_is_empty_whatever_realpath_returns) {
    const TempFolder folder;
    folder.Write("file", "");
    for (const char *name : {"file/", "file/.", "file/..", "file/x", "file/../file"}) {
        const SystemFault fault("realpath", ENOENT);
        EXPECT_TRUE(UsesFileAsDirectory(folder.Path(name))) << name;
        EXPECT_EQ(ResolvePath(folder.Path(name)), "") << name;
        EXPECT_FALSE(fault.HasStruck()) << name;
    }
    for (const char *name : {"file", "missing", "missing/..", "../x", "."}) {
        EXPECT_FALSE(UsesFileAsDirectory(folder.Path(name))) << name;
    }
}

TEST(PathFailure, System_failure_throws_and_exports_return_empty_path) {
    for (const int error : kSystemsErrors) {
        const SystemFault fault("realpath", error);
        EXPECT_EQ(ErrorOf([] { ResolvePath("a/b"); }), error);
        EXPECT_EQ(ErrorOf([] { ResolveFile("b", "a/"); }), error);
        EXPECT_EQ(GetAbsolutePath("a/b"), "") << error;
        EXPECT_EQ(GetFileFullPath("b", "a/"), "") << error;
    }
}

TEST(PathFailure, Absolute_path_is_returned_without_realpath) {
    const SystemFault fault("realpath", ENOMEM);
    EXPECT_EQ(ResolveFile("/x/../y", "a/"), "/x/../y");
    EXPECT_FALSE(fault.HasStruck());
}

TEST(PathFailure, Missing_directory_has_no_names) {
    const TempFolder folder;
    folder.Write("a.bin", "");
    for (const int error : kErrorsOfThePath) {
        const SystemFault fault("opendir", error);
        EXPECT_THAT(ListNames(folder.Path(), ".bin"), IsEmpty()) << error;
    }
    EXPECT_THAT(ListNames(folder.Path("missing"), ".bin"), IsEmpty());
    EXPECT_THAT(ListNames(folder.Path("a.bin"), ".bin"), IsEmpty());
}

TEST(PathFailure, Temporary_failure_to_open_directory_throws) {
    const TempFolder folder;
    for (const int error : kSystemsErrors) {
        const SystemFault fault("opendir", error);
        EXPECT_EQ(ErrorOf([&] { ListNames(folder.Path(), ".bin"); }), error);
    }
}

TEST(PathFailure, Failing_readdir_throws_after_any_number_of_entries) {
    const TempFolder folder;
    for (const char *name : {"a.bin", "b.bin", "c.bin"}) {
        folder.Write(name, "");
    }
    constexpr int kEntries = 5; // with "." and ".."
    for (int successes = 0; successes <= kEntries; ++successes) {
        const SystemFault fault("readdir", EIO, successes);
        EXPECT_EQ(ErrorOf([&] { ListNames(folder.Path(), ".bin"); }), EIO) << successes;
    }
    EXPECT_THAT(ListNames(folder.Path(), ".bin"), UnorderedElementsAre("a.bin", "b.bin", "c.bin"));
}

TEST(PathFailure, FindFile_adds_all_names_or_none) {
    const TempFolder folder;
    for (const char *name : {"a.bin", "b.bin", "c.bin"}) {
        folder.Write(name, "");
    }
    std::vector<std::string> names{"before"};
    for (int successes = 0; successes <= 5; ++successes) {
        const SystemFault fault("readdir", EIO, successes);
        FindFile(folder.Path(), names, ".bin");
        EXPECT_THAT(names, ElementsAre("before")) << successes;
    }
    {
        const SystemFault fault("opendir", EMFILE);
        FindFile(folder.Path(), names, ".bin");
        EXPECT_THAT(names, ElementsAre("before"));
    }
    FindFile(folder.Path(), names, ".bin");
    EXPECT_THAT(names, UnorderedElementsAre("before", "a.bin", "b.bin", "c.bin"));
}

} // namespace
