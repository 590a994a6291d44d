#include <chrono>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#if defined(__linux__)
#include <sys/xattr.h>
#endif

#include "support/CapturedOutput.h"
#include "support/TempFolder.h"
#include "unit/settings/ProfileFamilies.h"

namespace {

constexpr uid_t kNobody = 65534;
constexpr const char *kTemporary = ".ScalerIsp.tmp";
constexpr const char *kOld = "[S]\nK=1\n";
constexpr const char *kNew = "[S]\nK=2\n";

/// Runs a function in a process of its own, as another user if this one is root. RETURNS its exit
/// status; -1 if it did not exit.
int InProcess(const std::function<int()> &function, bool asNobody = false) {
    const pid_t child = ::fork();
    if (child == 0) {
        if (asNobody && ::geteuid() == 0 && (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0)) {
            ::_exit(99);
        }
        ::_exit(function());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// What the file system knows about a file.
struct stat StatusOf(const std::string &path) {
    struct stat status {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

class SaveSafety : public testing::Test {
  protected:
    SaveSafety() {
        ::chmod(m_folder.Path().c_str(), 0777);
    }
    ~SaveSafety() override {
        ::chmod(m_folder.Path().c_str(), 0777);
    }
    /// A file that everyone may read and write.
    std::string Write(const std::string &name, const std::string &bytes) const {
        const std::string path = m_folder.Write(name, bytes);
        EXPECT_EQ(::chmod(path.c_str(), 0666), 0);
        return path;
    }
    static int Save(const std::string &path) {
        return WideFamily::Write(path, "S", "K", "2");
    }
    /// Saves as a user without rights. RETURNS the result; `printed` is what came out.
    int SaveAsNobody(const std::string &path, std::string &printed) const {
        int result = -1;
        printed = OutputOf([&] {
            result = InProcess(
                [&] {
                    const int saved = Save(path);
                    std::fflush(stdout);
                    return saved;
                },
                true);
        });
        return result;
    }
    TempFolder m_folder;
};

TEST_F(SaveSafety, Save_replaces_file_and_keeps_mode) {
    const std::string path = m_folder.Write("p.ini", kOld);
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    const struct stat before = StatusOf(path);
    EXPECT_EQ(Save(path), 1);
    EXPECT_NE(StatusOf(path).st_ino, before.st_ino);
    EXPECT_EQ(StatusOf(path).st_mode & 07777U, 0640U);
    EXPECT_EQ(m_folder.Read("p.ini"), kNew);
    EXPECT_FALSE(m_folder.Exists(kTemporary));
}

TEST_F(SaveSafety, Save_keeps_owner) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can give a file away";
    }
    const std::string path = m_folder.Write("p.ini", kOld);
    ASSERT_EQ(::chown(path.c_str(), 1234, 4321), 0);
    EXPECT_EQ(Save(path), 1);
    EXPECT_EQ(StatusOf(path).st_uid, 1234U);
    EXPECT_EQ(StatusOf(path).st_gid, 4321U);
    EXPECT_EQ(m_folder.Read("p.ini"), kNew);
}

TEST_F(SaveSafety, File_of_another_owner_is_overwritten_in_place) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs two users";
    }
    const std::string path = Write("p.ini", kOld);
    const struct stat before = StatusOf(path);
    std::string printed;
    EXPECT_EQ(SaveAsNobody(path, printed), 1);
    EXPECT_EQ(StatusOf(path).st_ino, before.st_ino);
    EXPECT_EQ(StatusOf(path).st_uid, 0U);
    EXPECT_EQ(m_folder.Read("p.ini"), kNew);
    EXPECT_FALSE(m_folder.Exists(kTemporary));
}

#if defined(__linux__)
TEST_F(SaveSafety, Save_keeps_extended_attributes) {
    const std::string path = m_folder.Write("p.ini", kOld);
    if (::setxattr(path.c_str(), "user.note", "value", 5, 0) != 0) {
        GTEST_SKIP() << "the file system has no extended attributes";
    }
    const struct stat before = StatusOf(path);
    EXPECT_EQ(Save(path), 1);
    EXPECT_NE(StatusOf(path).st_ino, before.st_ino);
    char value[16] = {};
    EXPECT_EQ(::getxattr(path.c_str(), "user.note", value, sizeof value), 5);
    EXPECT_STREQ(value, "value");
}
#endif

TEST_F(SaveSafety, Save_keeps_symbolic_link_and_replaces_target) {
    const std::string target = m_folder.Write("d/p.ini", kOld);
    ASSERT_EQ(::symlink("d/p.ini", m_folder.Path("link.ini").c_str()), 0);
    ASSERT_EQ(::symlink("link.ini", m_folder.Path("second.ini").c_str()), 0);
    EXPECT_EQ(Save(m_folder.Path("second.ini")), 1);
    EXPECT_TRUE(S_ISLNK(StatusOf(m_folder.Path("second.ini")).st_mode));
    EXPECT_TRUE(S_ISLNK(StatusOf(m_folder.Path("link.ini")).st_mode));
    EXPECT_TRUE(S_ISREG(StatusOf(target).st_mode));
    EXPECT_EQ(m_folder.Read("d/p.ini"), kNew);
}

TEST_F(SaveSafety, Save_creates_target_of_dangling_link) {
    m_folder.MakeFolder("d");
    ASSERT_EQ(::symlink("d/new.ini", m_folder.Path("link.ini").c_str()), 0);
    EXPECT_EQ(Save(m_folder.Path("link.ini")), 1);
    EXPECT_TRUE(S_ISLNK(StatusOf(m_folder.Path("link.ini")).st_mode));
    EXPECT_EQ(m_folder.Read("d/new.ini"), kNew);
}

TEST_F(SaveSafety, Save_keeps_both_names_of_hard_linked_file) {
    const std::string path = m_folder.Write("p.ini", "[S]\nK=12345\n");
    const std::string second = m_folder.Path("second.ini");
    ASSERT_EQ(::link(path.c_str(), second.c_str()), 0);
    EXPECT_EQ(Save(path), 1);
    EXPECT_EQ(StatusOf(path).st_ino, StatusOf(second).st_ino);
    EXPECT_EQ(m_folder.Read("second.ini"), kNew);
}

TEST_F(SaveSafety, Save_removes_temporary_file_of_killed_process) {
    const std::string path = m_folder.Write("p.ini", kOld);
    m_folder.Write(kTemporary, "left over");
    EXPECT_EQ(Save(path), 1);
    EXPECT_EQ(m_folder.Read("p.ini"), kNew);
    EXPECT_FALSE(m_folder.Exists(kTemporary));
}

TEST_F(SaveSafety, Save_does_not_follow_symbolic_link_at_temporary_name) {
    const std::string path = m_folder.Write("p.ini", kOld);
    m_folder.Write("victim", "untouched");
    ASSERT_EQ(::symlink("victim", m_folder.Path(kTemporary).c_str()), 0);
    EXPECT_EQ(Save(path), 1);
    EXPECT_EQ(m_folder.Read("victim"), "untouched");
    EXPECT_EQ(m_folder.Read("p.ini"), kNew);
}

TEST_F(SaveSafety, Save_writes_in_place_if_temporary_name_is_directory) {
    const std::string path = m_folder.Write("p.ini", kOld);
    m_folder.MakeFolder(kTemporary);
    EXPECT_EQ(Save(path), 1);
    EXPECT_EQ(m_folder.Read("p.ini"), kNew);
}

TEST_F(SaveSafety, File_in_read_only_directory_is_overwritten) {
    const std::string path = Write("p.ini", kOld);
    ASSERT_EQ(::chmod(m_folder.Path().c_str(), 0555), 0);
    std::string printed;
    EXPECT_EQ(SaveAsNobody(path, printed), 1);
    EXPECT_EQ(printed, "");
    EXPECT_EQ(m_folder.Read("p.ini"), kNew);
}

struct RefusedCase {
    const char *name;
    mode_t mode;
    const char *printed;
};

void PrintTo(const RefusedCase &row, std::ostream *stream) {
    *stream << row.name;
}

class RefusedSave : public SaveSafety, public testing::WithParamInterface<RefusedCase> {};

TEST_P(RefusedSave, Failed_save_leaves_file_unchanged) {
    const std::string path = Write("p.ini", kOld);
    ASSERT_EQ(::chmod(path.c_str(), GetParam().mode), 0);
    std::string printed;
    EXPECT_EQ(SaveAsNobody(path, printed), 0);
    EXPECT_EQ(printed, GetParam().printed);
    ::chmod(path.c_str(), 0666);
    EXPECT_EQ(m_folder.Read("p.ini"), kOld);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, RefusedSave,
    testing::Values(RefusedCase{"that_may_not_be_read", 0222, ""},
                    RefusedCase{"that_may_not_be_written", 0444, "Open file error \n"},
                    RefusedCase{"that_may_not_be_touched", 0000, "Open file error \n"}),
    [](const auto &row) { return row.param.name; });

TEST_F(SaveSafety, Missing_file_in_read_only_directory_cannot_be_opened) {
    ASSERT_EQ(::chmod(m_folder.Path().c_str(), 0555), 0);
    std::string printed;
    EXPECT_EQ(SaveAsNobody(m_folder.Path("new.ini"), printed), 0);
    EXPECT_EQ(printed, "Open file error \n");
}

#ifndef __SANITIZE_ADDRESS__
// The sanitizer looks at objects through a pipe; without descriptors it takes every one for
// invalid.
TEST_F(SaveSafety, Save_writes_nothing_if_descriptors_run_out) {
    const std::string path = m_folder.Write("p.ini", kOld);
    for (rlim_t spare = 0; spare < 4; ++spare) {
        const std::string printed = OutputOf([&] {
            EXPECT_EQ(InProcess([&] {
                          const int next = ::open("/dev/null", O_RDONLY);
                          ::close(next);
                          const rlimit limit{static_cast<rlim_t>(next) + spare, 1024};
                          const bool set = ::setrlimit(RLIMIT_NOFILE, &limit) == 0;
                          const int saved = Save(path);
                          std::fflush(stdout);
                          return !set ? 98 : saved;
                      }),
                      spare < 3 ? 0 : 1);
        });
        EXPECT_EQ(printed, "");
        EXPECT_EQ(m_folder.Read("p.ini"), spare < 3 ? kOld : kNew) << spare;
        EXPECT_FALSE(m_folder.Exists(kTemporary));
    }
}
#endif

TEST_F(SaveSafety, Killed_process_leaves_previous_or_new_file) {
    const std::string filler = std::string(900, 'x') + "\n";
    std::string many;
    for (int i = 0; i < 200; ++i) {
        many += filler;
    }
    const std::string one = "[S]\nK=1\n\n" + many;
    const std::string two = "[S]\nK=2\n\n" + many;
    const std::string path = m_folder.Write("p.ini", one);
    for (int round = 0; round < 40; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            while (true) {
                WideFamily::Write(path, "S", "K", "2");
                WideFamily::Write(path, "S", "K", "1");
            }
        }
        ::usleep(static_cast<useconds_t>(500 + 137 * round));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        const std::string now = m_folder.Read("p.ini");
        ASSERT_TRUE(now == one || now == two) << now.size() << " bytes in round " << round;
    }
    EXPECT_EQ(Save(path), 1);
    EXPECT_EQ(m_folder.Read("p.ini"), two);
    EXPECT_FALSE(m_folder.Exists(kTemporary));
}

/// Writes keys of its own, all of which must be there in the end.
int WriteKeys(const std::string &path, char writer, int count) {
    int written = 0;
    for (int i = 0; i < count; ++i) {
        written += NarrowFamily::Write(path, "S", writer + std::to_string(i), "1");
    }
    return written;
}

TEST_F(SaveSafety, Saves_of_two_processes_lose_no_key) {
    const std::string path = m_folder.Write("p.ini", "");
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(WriteKeys(path, 'a', 60));
    }
    EXPECT_EQ(WriteKeys(path, 'b', 60), 60);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 60);
    for (int i = 0; i < 60; ++i) {
        EXPECT_EQ(NarrowFamily::GetInt(path, "S", "a" + std::to_string(i)), 1) << i;
        EXPECT_EQ(NarrowFamily::GetInt(path, "S", "b" + std::to_string(i)), 1) << i;
    }
}

TEST_F(SaveSafety, Saves_of_two_threads_lose_no_key) {
    const std::string path = m_folder.Write("p.ini", "");
    std::thread other([&] { EXPECT_EQ(WriteKeys(path, 'a', 60), 60); });
    EXPECT_EQ(WriteKeys(path, 'b', 60), 60);
    other.join();
    for (int i = 0; i < 60; ++i) {
        EXPECT_EQ(NarrowFamily::GetInt(path, "S", "a" + std::to_string(i)), 1) << i;
        EXPECT_EQ(NarrowFamily::GetInt(path, "S", "b" + std::to_string(i)), 1) << i;
    }
}

TEST_F(SaveSafety, Save_fails_if_lock_is_not_released) {
    const std::string path = m_folder.Write("p.ini", kOld);
    const int directory = ::open(m_folder.Path().c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(::flock(directory, LOCK_EX), 0);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(OutputOf([&] { EXPECT_EQ(Save(path), 0); }), "");
    const auto waited = std::chrono::steady_clock::now() - begin;
    ::close(directory);
    EXPECT_GE(waited, std::chrono::seconds(5));
    EXPECT_LT(waited, std::chrono::seconds(7));
    EXPECT_EQ(m_folder.Read("p.ini"), kOld);
    EXPECT_EQ(Save(path), 1);
}

TEST_F(SaveSafety, Save_leaves_no_descriptor_or_lock) {
    const std::string path = m_folder.Write("p.ini", kOld);
    OutputOf([] {}); // which opens what the second one needs, too
    const int before = ::open("/dev/null", O_RDONLY);
    ::close(before);
    OutputOf([&] {
        Save(path);
        Save(m_folder.Path("no/such/file.ini"));
        Save(m_folder.MakeFolder("d"));
    });
    const int after = ::open("/dev/null", O_RDONLY);
    ::close(after);
    EXPECT_EQ(after, before);
    const int directory = ::open(m_folder.Path().c_str(), O_RDONLY | O_DIRECTORY);
    EXPECT_EQ(::flock(directory, LOCK_EX | LOCK_NB), 0);
    ::close(directory);
}

} // namespace
