#include <cerrno>
#include <cstring>
#include <new>

#include "ParserFixture.h"
#include "support/SystemFault.h"
#include "support/TestHeap.h"
#include "support/TestLocale.h"

namespace {

/// What ParseArgs gives while the system fails.
class FailingSystem : public ParserTest {
  protected:
    /// Parses on a fresh parser; `fault` makes what fails meanwhile.
    template <class Fault> Answer ParseWith(const std::vector<std::string> &words, Fault &&fault) {
        Renew();
        std::vector<const char *> argv{"tool"};
        for (const std::string &word : words) {
            argv.push_back(word.c_str());
        }
        Answer answer;
        answer.err = ErrorOutputOf([&] {
            answer.out = OutputOf([&] {
                [[maybe_unused]] const auto guard = fault();
                answer.result = parser->ParseArgs(static_cast<int>(argv.size()), argv.data());
                m_struck = AllocationFault::HasStruck();
            });
        });
        return answer;
    }

    bool m_struck = false;
};

TEST_F(FailingSystem, Search_fails_silently_if_listing_of_directory_fails) {
    for (const char *name : {"a.bin", "b.bin", "c.bin"}) {
        folder.Write(name, "x");
    }
    folder.Write("s.ini", "[ISP_Fw]\nstrFwPrefix = a\n");
    folder.Write("IspUserDefined.txt", "[UserDefinedInfo]\nModelName = a\n");
    for (const char *rule : {"auto", "prefix", "userdefined"}) {
        const std::vector<std::string> words{"--isp", "--settingfile", folder.Path("s.ini"),
                                             "--searchfw", rule};
        for (int successes = 0; successes <= 5; ++successes) {
            const Answer answer = ParseWith(
                words, [&] { return std::make_unique<SystemFault>("readdir", EIO, successes); });
            EXPECT_EQ(answer.result, 0) << rule << " " << successes;
            EXPECT_EQ(answer.out, "") << rule << " " << successes;
        }
        const Answer answer =
            ParseWith(words, [] { return std::make_unique<SystemFault>("opendir", EMFILE); });
        EXPECT_EQ(answer.result, 0) << rule;
        EXPECT_EQ(answer.out, "") << rule;
    }
    EXPECT_REFUSED(ParseFresh({"--isp", "--searchfw", "auto"}), "find more than one bin file!\n");
}

TEST_F(FailingSystem, Line_is_rejected_silently_if_realpath_fails) {
    folder.Write("f.bin", "x");
    folder.Write("k.pem", "x");
    const std::vector<std::string> lines[] = {
        {"--isp", "--fw", "f.bin"},
        {"--resetmcu", "--settingfile", "s.ini"},
        {"--sign", "--sw", "--dsmode", "2", "--fw", "f.bin"},
        {"--verify", "--sw", "--dsmode", "1", "--fw", folder.Path("f.bin"), "--signfile",
         folder.Path("f.bin"), "--vkfile", "k.pem"},
    };
    for (const auto &words : lines) {
        const Answer undisturbed = ParseFresh(words);
        EXPECT_EQ(undisturbed.result, 1) << words[0];
        for (const int error : {ENOMEM, EIO}) {
            const Answer answer =
                ParseWith(words, [&] { return std::make_unique<SystemFault>("realpath", error); });
            EXPECT_EQ(answer.result, 0) << words[0];
            EXPECT_EQ(answer.out, "") << words[0];
        }
    }
}

TEST_F(FailingSystem, Line_is_rejected_silently_if_newlocale_fails) {
    const EnvironmentLocaleGuard environment("C"); // each conversion makes this locale anew
    for (const int error : {ENOMEM, EMFILE, EIO}) {
        const Answer answer = ParseWith(
            {"--resetmcu"}, [&] { return std::make_unique<SystemFault>("newlocale", error); });
        EXPECT_EQ(answer.result, 0) << error;
        EXPECT_EQ(answer.out, "") << error;
    }
}

/// A record that was accepted is the undisturbed one; else nothing unknown has been printed.
TEST_F(FailingSystem, Failed_allocation_rejects_line_or_changes_nothing) {
    const std::string firmware = folder.Write("firmware-of-a-display.bin", std::string(70000, 'x'));
    const std::string settings =
        folder.Write("settings-of-a-display.ini", "[ISP_Fw]\nstrFwPrefix = firmware-of-a\n");
    folder.Write("IspUserDefined.txt",
                 "[UserDefinedInfo]\nModelName = firmware-of\nPanelName = display\n");
    const std::vector<std::string> lines[] = {
        {"--isp", "--fw", "firmware-of-a-display.bin", "--bank", "2", "--fw1", firmware, "--bank1",
         "9", "--sw", "--dsmode", "2", "--signfile", "firmware-of-a-display.bin", "--boot",
         "a-boot-firmware-that-is-long.bin"},
        {"--ispuser", "--searchfw", "auto", "--flagaddr", "0x10", "--flagdata",
         "1,2,3,4,5,6,7,8,9,10,11,12,13,14"},
        {"--isp", "--settingfile", settings, "--searchfw", "prefix"},
        {"--isp", "--searchfw", "userdefined"},
        {"--dumpflash", "--dumpaddr", "0x1000", "--dumplen", "16", "--dumpname",
         "a-dump-with-a-long-name.bin", "stray"},
        {"--mergefwinfo", "--write", "1.2.3.4.5.6.7.8.9.10.11.12.13.14.15.16", "--nonsense"},
        {"--i2cwrite", "--writedata", "1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16"},
        {"--isp", "--fw", "a-firmware-that-is-missing.bin"},
    };
    for (const auto &words : lines) {
        const Answer undisturbed = ParseFresh(words);
        const auto setting = Setting();
        const auto sign = Sign();
        const int allocations = FailEachAllocation([&](int successes) {
            const Answer answer =
                ParseWith(words, [&] { return std::make_unique<AllocationFault>(successes); });
            const std::string where = words[0] + " " + std::to_string(successes);
            if (answer.result == 1) {
                EXPECT_EQ(answer.out, undisturbed.out) << where;
                EXPECT_EQ(std::memcmp(Setting().get(), setting.get(), sizeof *setting), 0) << where;
                const auto signNow = Sign();
                EXPECT_EQ(std::memcmp(&signNow, &sign, sizeof sign), 0) << where;
            } else {
                EXPECT_EQ(answer.result, 0) << where;
                EXPECT_EQ(answer.out, undisturbed.out.substr(0, answer.out.size())) << where;
            }
            if (!m_struck) {
                EXPECT_EQ(answer.result, undisturbed.result) << where;
                EXPECT_EQ(answer.out, undisturbed.out) << where;
            }
            return m_struck;
        });
        EXPECT_GT(allocations, 5) << words[0];
    }
}

TEST(FailingEngine, Failed_registration_of_option_throws) {
    const STRUCT_CP_LONG_CMD_UNIT table[] = {{"beta", 0, nullptr, 2}, {nullptr, 0, nullptr, 0}};
    CpNxCmdLindParse engine;
    {
        const AllocationFault fault(0);
        EXPECT_THROW(engine.AddLongCmd("alpha", 0, nullptr, 1), std::bad_alloc);
    }
    {
        const AllocationFault fault(0);
        EXPECT_THROW(engine.AddLongCmds(table), std::bad_alloc);
    }
    engine.AddLongCmd("alpha", 0, nullptr, 1);
    engine.AddLongCmds(table);
    char program[] = "tool";
    char alpha[] = "--alpha";
    char beta[] = "--beta";
    char *argv[] = {program, alpha, beta, nullptr};
    EXPECT_EQ(engine.ParseCmdLine(3, argv), 1);
    EXPECT_EQ(engine.ParseCmdLine(3, argv), 2);
}

} // namespace
