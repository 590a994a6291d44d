#include <cerrno>
#include <cstdarg>
#include <cwchar>
#include <fcntl.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>
#if defined(__linux__)
#include <sys/xattr.h>
#endif

#include "support/CapturedOutput.h"
#include "support/RealFunction.h"
#include "support/SystemFault.h"
#include "support/TempFolder.h"
#include "support/TestLocale.h"
#include "unit/settings/ProfileFamilies.h"

// One call of the system fails while a settings file is saved: the file has the old bytes or the
// new ones, and the result says which.

/// Defines a function of the C library that fails when SystemFault wants it to.
#define FAILING(RESULT, NAME, PARAMETERS, ARGUMENTS, FAILURE)                                      \
    extern "C" RESULT NAME PARAMETERS SCALER_ISP_SYSTEM_NOEXCEPT {                                 \
        static const auto real = RealFunction<RESULT(*) PARAMETERS>(#NAME);                        \
        return SystemFault::Strikes(#NAME) ? FAILURE : real ARGUMENTS;                             \
    }

FAILING(int, fstat, (int file, struct stat *to), (file, to), -1)
FAILING(int, lstat, (const char *path, struct stat *to), (path, to), -1)
FAILING(int, fchown, (int file, uid_t user, gid_t group), (file, user, group), -1)
FAILING(int, fchmod, (int file, mode_t mode), (file, mode), -1)
FAILING(int, unlink, (const char *path), (path), -1)
FAILING(int, rename, (const char *from, const char *to), (from, to), -1)
FAILING(off_t, lseek, (int file, off_t offset, int whence), (file, offset, whence), -1)
FAILING(int, ftruncate, (int file, off_t size), (file, size), -1)
FAILING(int, flock, (int file, int operation), (file, operation), -1)
FAILING(size_t, mbrtowc, (wchar_t * to, const char *from, size_t size, mbstate_t *state),
        (to, from, size, state), static_cast<size_t>(-1))
FAILING(size_t, wcrtomb, (char *to, wchar_t from, mbstate_t *state), (to, from, state),
        static_cast<size_t>(-1))
#if defined(__linux__)
FAILING(ssize_t, flistxattr, (int file, char *names, size_t size), (file, names, size), -1)
FAILING(ssize_t, fgetxattr, (int file, const char *name, void *value, size_t size),
        (file, name, value, size), -1)
FAILING(int, fsetxattr, (int file, const char *name, const void *value, size_t size, int flags),
        (file, name, value, size, flags), -1)
FAILING(int, fremovexattr, (int file, const char *name), (file, name), -1)
#endif

extern "C" int open(const char *path, int flags, ...) {
    static const auto real = RealFunction<int (*)(const char *, int, ...)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const unsigned mode = (flags & O_CREAT) != 0 ? va_arg(arguments, unsigned) : 0;
    va_end(arguments);
    return SystemFault::Strikes("open") ? -1 : real(path, flags, mode);
}

/// With the error 0 nothing is written, and that is no error.
extern "C" ssize_t write(int file, const void *bytes, size_t size) {
    static const auto real = RealFunction<ssize_t (*)(int, const void *, size_t)>("write");
    if (!SystemFault::Strikes("write")) {
        return real(file, bytes, size);
    }
    return errno == 0 ? 0 : -1;
}

/// A descriptor is closed even if that fails.
extern "C" int close(int file) {
    static const auto real = RealFunction<int (*)(int)>("close");
    const int result = real(file);
    return SystemFault::Strikes("close") ? -1 : result;
}

namespace {

constexpr const char *kOld = "[S]\nK=1\n";
constexpr const char *kNew = "[S]\nK=2\n";
constexpr const char *kNothing = "(no file)";
constexpr const char *kTemporary = ".ScalerIsp.tmp";

/// Functions that fail, and the errors with which they do. The errors of the second row are asked
/// for one by one.
struct Failures {
    std::vector<const char *> functions;
    std::vector<int> errors;
};

const Failures kFailures[] = {
    {{"open", "fstat", "lstat", "fchown", "fchmod", "unlink", "rename", "read", "write", "lseek",
      "ftruncate", "flock", "close", "realpath", "newlocale", "flistxattr", "fgetxattr",
      "fsetxattr", "fremovexattr"},
     {EIO, EACCES, EINTR, ENOTSUP, EMFILE}},
    {{"open", "lstat", "realpath", "rename", "flock"},
     {ENOMEM, ENFILE, EPERM, EROFS, EXDEV, EBUSY, EISDIR, ENOTDIR, ELOOP, ENAMETOOLONG, ENOLCK,
      EINVAL, ENXIO, ENODEV, EILSEQ, ENOSYS, EBADF}},
    {{"write"}, {0}},
};

/// A file that is saved: made in a new directory. Empty if this system cannot make it.
struct FileKind {
    const char *name;
    std::function<std::string(const TempFolder &)> make;
    const char *old = kOld;
};

std::string Ordinary(const TempFolder &folder) {
    return folder.Write("p.ini", kOld);
}

std::string Link(const TempFolder &folder, const std::string &target) {
    const std::string link = folder.Path("link.ini");
    EXPECT_EQ(::symlink(target.c_str(), link.c_str()), 0);
    return link;
}

std::string HardLinked(const TempFolder &folder) {
    const std::string path = Ordinary(folder);
    EXPECT_EQ(::link(path.c_str(), folder.Path("second.ini").c_str()), 0);
    return path;
}

std::string OfAnother(const TempFolder &folder) {
    const std::string path = Ordinary(folder);
    return ::chown(path.c_str(), 1234, 4321) == 0 ? path : "";
}

std::string OfAnotherGroup(const TempFolder &folder) {
    const std::string path = Ordinary(folder);
    return ::chown(path.c_str(), ::geteuid(), 4321) == 0 ? path : "";
}

#if defined(__linux__)
std::string WithAttribute(const TempFolder &folder) {
    const std::string path = Ordinary(folder);
    return ::setxattr(path.c_str(), "user.note", "value", 5, 0) == 0 ? path : "";
}

/// The file has no access list, but each new one of its directory gets one.
std::string AmongAccessLists(const TempFolder &folder) {
    constexpr unsigned char kList[] = {2,    0, 0, 0,                         //
                                       1,    0, 6, 0, 0xFF, 0xFF, 0xFF, 0xFF, // the owner
                                       2,    0, 6, 0, 0xD2, 0x04, 0,    0,    // user 1234
                                       4,    0, 4, 0, 0xFF, 0xFF, 0xFF, 0xFF, // the group
                                       0x10, 0, 6, 0, 0xFF, 0xFF, 0xFF, 0xFF, // the mask
                                       0x20, 0, 4, 0, 0xFF, 0xFF, 0xFF, 0xFF};
    const std::string path = Ordinary(folder);
    return ::setxattr(folder.Path().c_str(), "system.posix_acl_default", kList, sizeof kList, 0) ==
                   0
               ? path
               : "";
}
#endif

const FileKind kFiles[] = {
    {"ordinary", Ordinary},
    {"new", [](const TempFolder &folder) { return folder.Path("p.ini"); }, kNothing},
    {"link", [](const TempFolder &folder) { return Link(folder, Ordinary(folder)); }},
    {"link to no file", [](const TempFolder &folder) { return Link(folder, "no.ini"); }, kNothing},
    {"two names", HardLinked},
    {"of another owner", OfAnother},
    {"of another group", OfAnotherGroup},
#if defined(__linux__)
    {"with an attribute", WithAttribute},
    {"among access lists", AmongAccessLists},
#endif
};

int Save(const std::string &path) {
    return WideFamily::Write(path, "S", "K", "2");
}

std::string ContentsOf(const std::string &path) {
    std::ifstream file(path);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : kNothing;
}

/// Saves a new file of that kind while one call of a function fails, and then once more.
/// RETURNS whether there was such a call.
bool SaveWithFault(const FileKind &kind, const char *function, int error, int successes) {
    SCOPED_TRACE(std::string(kind.name) + ": " + function + ", error " + std::to_string(error) +
                 ", call " + std::to_string(successes));
    const TempFolder folder;
    const std::string path = kind.make(folder);
    if (path.empty()) {
        return false;
    }
    bool hasStruck = false;
    int result = -1;
    {
        const SystemFault fault(function, error, successes, 1);
        result = Save(path);
        hasStruck = fault.HasStruck();
    }
    EXPECT_TRUE(result == 1 || (result == 0 && hasStruck)) << result;
    EXPECT_EQ(ContentsOf(path), result == 1 ? kNew : kind.old);
    EXPECT_TRUE(std::string(function) == "unlink" || !folder.Exists(kTemporary));
    EXPECT_EQ(Save(path), 1);
    EXPECT_EQ(ContentsOf(path), kNew);
    EXPECT_FALSE(folder.Exists(kTemporary));
    return hasStruck;
}

/// RETURNS how many calls of the function there are.
std::size_t SaveWithEachFault(const FileKind &kind, const char *function, int error) {
    int successes = 0;
    while (SaveWithFault(kind, function, error, successes)) {
        ++successes;
    }
    return static_cast<std::size_t>(successes);
}

TEST(SystemCallFailure, Save_leaves_old_or_new_bytes_whatever_call_fails) {
    std::size_t faults = 0;
    const std::string printed = OutputOf([&] {
        for (const FileKind &kind : kFiles) {
            for (const Failures &failures : kFailures) {
                for (const char *function : failures.functions) {
                    for (const int error : failures.errors) {
                        faults += SaveWithEachFault(kind, function, error);
                    }
                }
            }
        }
    });
    EXPECT_GT(faults, 500U);
    if (HasFailure()) {
        ADD_FAILURE() << printed;
    }
}

TEST(SystemCallFailure, Save_leaves_old_or_new_bytes_whatever_conversion_fails) {
    // UTF-8 is recognised without decoding a character.
    for (const auto &[function, name] :
         {std::pair("wcrtomb", "C.UTF-8"), {"wcrtomb", "C"}, {"mbrtowc", "C"}}) {
        const EnvironmentLocaleGuard locale(name);
        for (const int error : {EIO, EILSEQ}) {
            EXPECT_GE(SaveWithEachFault(kFiles[0], function, error), 2U) << function << name;
        }
    }
}

#if defined(__linux__)
constexpr const char *kAccessList = "system.posix_acl_access";

TEST(SystemCallFailure, Save_removes_access_list_that_new_file_inherits) {
    const TempFolder folder;
    const std::string path = AmongAccessLists(folder);
    if (path.empty()) {
        GTEST_SKIP() << "the file system has no access lists";
    }
    EXPECT_EQ(Save(path), 1);
    EXPECT_EQ(ContentsOf(path), kNew);
    EXPECT_EQ(::getxattr(path.c_str(), kAccessList, nullptr, 0), -1);
}
#endif

} // namespace
