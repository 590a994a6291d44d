#include <array>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>
#if !defined(__APPLE__)
#include <stdio_ext.h>
#endif

#include "RunFlowFixture.h"

namespace {

/// What could not be written shall not be written later.
void DiscardBufferedOutput() {
#if defined(__APPLE__)
    fpurge(stdout);
#else
    __fpurge(stdout);
#endif
}

/// Standard output leads to another descriptor while it lives, and stdio keeps what is written.
class RedirectedOutput {
  public:
    explicit RedirectedOutput(int descriptor) : m_previous(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);
        if (descriptor >= 0) {
            dup2(descriptor, STDOUT_FILENO);
        } else {
            close(STDOUT_FILENO);
        }
    }
    ~RedirectedOutput() {
        DiscardBufferedOutput();
        std::clearerr(stdout);
        dup2(m_previous, STDOUT_FILENO);
        close(m_previous);
    }
    RedirectedOutput(const RedirectedOutput &) = delete;
    RedirectedOutput &operator=(const RedirectedOutput &) = delete;

  private:
    int m_previous;
};

/// A pipe that is read without waiting.
class Pipe {
  public:
    Pipe() {
        EXPECT_EQ(pipe(m_ends.data()), 0);
        fcntl(m_ends[0], F_SETFL, O_NONBLOCK);
    }
    ~Pipe() {
        close(m_ends[0]);
        close(m_ends[1]);
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;

    int WriteEnd() const {
        return m_ends[1];
    }
    /// What has arrived since the last time.
    std::string Arrived() const {
        char block[4096];
        const ssize_t size = read(m_ends[0], block, sizeof block);
        return {block, size > 0 ? static_cast<std::size_t>(size) : 0};
    }

  private:
    std::array<int, 2> m_ends{};
};

struct Line {
    const wchar_t *line;
    int result;
    const char *out;
};

const Line kLines[] = {
    {L"p --resetmcu", 0, "\x1b[32mSuccess\n\x1b[m"},
    {L"p --resetmcu stray", 0, "non-option ARGV-elements: stray \n\x1b[32mSuccess\n\x1b[m"},
    {L"p --comm 99 --resetmcu", -1, "Parameter out of range! --comm 99\n"},
    {L"p \"\"", -1, ""},
    {L"", -1, ""},
    {L"p --erase", 6, "\x1b[31mFail! Error Code: 0x6\n\x1b[m"},
};

int Operate(const wchar_t *line, bool extended) {
    return extended ? OperateScalerEx(line, nullptr, nullptr, nullptr, nullptr)
                    : OperateScaler(line, nullptr, nullptr, nullptr);
}

TEST(StandardOutput, Output_is_flushed_before_call_returns) {
    const ModuleCalls module;
    for (const Line &row : kLines) {
        for (const bool extended : {false, true}) {
            const Pipe pipe;
            int result = -99;
            std::string arrived;
            {
                const RedirectedOutput output(pipe.WriteEnd());
                std::printf("before ");
                result = Operate(row.line, extended);
                arrived = pipe.Arrived();
            }
            EXPECT_EQ(result, row.result);
            EXPECT_EQ(arrived, std::string("before ") + row.out);
        }
    }
}

TEST(StandardOutput, Output_is_not_flushed_during_call) {
    ModuleCalls module;
    const Pipe pipe;
    std::string during = "never called";
    std::string after;
    module.answer = [&](const ModuleCall &call) {
        if (call.name == "ResetMCUExport") {
            std::printf("from the plug-in ");
            during = pipe.Arrived();
        }
        return 0;
    };
    {
        const RedirectedOutput output(pipe.WriteEnd());
        Operate(L"p --resetmcu stray", false);
        after = pipe.Arrived();
    }
    EXPECT_EQ(during, "");
    EXPECT_EQ(after, "non-option ARGV-elements: stray \nfrom the plug-in \x1b[32mSuccess\n\x1b[m");
}

TEST(StandardOutput, Unwritable_output_does_not_change_result) {
    const ModuleCalls module;
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full, 0);
    for (const int descriptor : {full, -1}) {
        for (const Line &row : kLines) {
            int result = -99;
            {
                const RedirectedOutput output(descriptor);
                result = Operate(row.line, false);
            }
            EXPECT_EQ(result, row.result) << (descriptor == full ? "full" : "closed");
        }
    }
    close(full);
}

} // namespace
