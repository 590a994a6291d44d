#include <csignal>
#include <gmock/gmock.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "station/StationFile.h"
#include "support/TempFolder.h"

namespace {

using ispctl::StationFile;
using testing::HasSubstr;

class StationFiles : public testing::Test {
  protected:
    bool Append(const std::string &line) {
        StationFile file;
        return file.Open(m_folder.Path("s"), m_error) && file.Append(line + "\n", m_error);
    }

    TempFolder m_folder;
    std::string m_error;
};

TEST_F(StationFiles, Append_adds_one_line_each) {
    EXPECT_TRUE(Append("one"));
    EXPECT_TRUE(Append("two"));
    EXPECT_EQ(m_folder.Read("s"), "one\ntwo\n");
}

TEST_F(StationFiles, Append_separates_remains_of_killed_writer) {
    m_folder.Write("s", "one\n{\"half");
    EXPECT_TRUE(Append("two"));
    EXPECT_EQ(m_folder.Read("s"), "one\n{\"half\ntwo\n");
}

TEST_F(StationFiles, Open_rejects_what_is_no_file) {
    const std::string pipe = m_folder.Path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string &name :
         {pipe, std::string("/dev/full"), m_folder.Path(), m_folder.Path("no/such")}) {
        StationFile file;
        EXPECT_FALSE(file.Open(name, m_error)) << name;
        EXPECT_THAT(m_error, HasSubstr(name));
    }
}

TEST_F(StationFiles, Append_writes_nothing_if_line_does_not_fit) {
    ASSERT_TRUE(Append(std::string(99, 'a')));
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{150, 150};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        ::_exit(Append(std::string(99, 'b')) ? 1 : 0);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(m_folder.Read("s"), std::string(99, 'a') + "\n");
}

TEST_F(StationFiles, Lines_of_parallel_processes_stay_whole) {
    constexpr int kProcesses = 16;
    constexpr int kLines = 50;
    for (int i = 0; i < kProcesses; ++i) {
        if (::fork() == 0) {
            bool good = true;
            for (int line = 0; line < kLines; ++line) {
                good = Append(std::string(3000, static_cast<char>('a' + i))) && good;
            }
            ::_exit(good ? 0 : 1);
        }
    }
    for (int i = 0; i < kProcesses; ++i) {
        int status = -1;
        ::wait(&status);
        EXPECT_EQ(status, 0);
    }
    std::istringstream lines(m_folder.Read("s"));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        EXPECT_EQ(line, std::string(3000, line.front()));
    }
    EXPECT_EQ(count, kProcesses * kLines);
}

} // namespace
