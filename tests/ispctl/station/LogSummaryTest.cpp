#include <fmt/format.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ConsoleProcess.h"
#include "log/LogLines.h"
#include "log/SummaryText.h"
#include "support/TempFolder.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr const char *kPassed =
    R"({"run":"1111111111111111","status":0,"code":0,"source":"library","meaning":"success","tags":{"serial":"1"}})";
constexpr const char *kFailed =
    R"({"run":"2222222222222222","status":6,"code":16387,"source":"library","meaning":"bad","tags":{"serial":"2"}})";
constexpr const char *kRefused =
    R"({"run":"3333333333333333","status":4,"code":null,"source":"ispctl","meaning":"refused","tags":{}})";
constexpr const char *kEvents =
    "2026-01-01T00:00:00.000Z 4444444444444444/12 tag      serial=4\n"
    "2026-01-01T00:00:00.000Z 5555555555555555/13 tag      serial=5\n"
    "2026-01-01T00:00:01.000Z 4444444444444444/12 result   0x0 success\n"
    "2026-01-01T00:00:01.000Z 4444444444444444/12 ispctl   afterwards\n";

class LogSummaries : public testing::Test {
  protected:
    std::string Text(const std::string &content) {
        std::string error;
        EXPECT_TRUE(m_reader.Read(m_folder.Write("log", content), error)) << error;
        return SummaryText(ispctl::Summarise(m_reader.Entries()), ispctl::Charset::Ascii);
    }

    TempFolder m_folder;
    ispctl::LogReader m_reader;
};

TEST_F(LogSummaries, Records_are_grouped_by_code_with_their_tags) {
    EXPECT_EQ(Text(std::string(kFailed) + "\n" + kPassed + "\n" + kRefused + "\n"),
              "1 passed, 2 failed\n"
              "0x0: success: 1\n  serial=1\n"
              "0x4003: bad: 1\n  serial=2\n"
              "no code, status 4: refused: by a finding about the command line, or by the library: "
              "1\n  no tags, run 3333333333333333\n");
}

TEST_F(LogSummaries, Events_of_a_log_are_counted_by_run) {
    EXPECT_EQ(Text(kEvents), "1 passed, 1 failed\n"
                             "0x0: success: 1\n  serial=4\n"
                             "no code: no result: the run still goes on, or was killed: 1\n"
                             "  serial=5\n");
}

TEST_F(LogSummaries, Runs_without_code_are_grouped_by_stage) {
    const auto record = [](const char *serial, const char *stage, const char *meaning) {
        return fmt::format(R"({{"status":8,"code":null,"source":"ispctl","stage":"{}",)"
                           R"("meaning":"{}","tags":{{"serial":"{}"}}}})"
                           "\n",
                           stage, meaning, serial);
    };
    EXPECT_EQ(Text(record("1", "lock", "in use by process 1") + record("2", "files", "disk full") +
                   record("3", "lock", "in use by process 2") + record("4", "new", "other")),
              "0 passed, 4 failed\n"
              "no code, status 8 at stage lock: the device is in use by another run: 2\n"
              "  serial=1\n  serial=3\n"
              "no code, status 8 at stage files: a file of the run, or its lock, cannot be read or "
              "written: 1\n  serial=2\n"
              "no code, status 8 at stage new: a file or device of ispctl's own cannot be read or "
              "written: 1\n  serial=4\n");
}

TEST_F(LogSummaries, Events_without_code_are_grouped_by_their_words) {
    EXPECT_EQ(Text("2026-01-01T00:00:00.000Z 4444444444444444/12 result   ended by SIGSEGV; x\n"
                   "2026-01-01T00:00:00.000Z 5555555555555555/13 result   ended by SIGSEGV; y\n"
                   "2026-01-01T00:00:00.000Z 6666666666666666/14 tag      serial=6\n"),
              "0 passed, 3 failed\n"
              "no code: ended by SIGSEGV: 2\n"
              "  no tags, run 4444444444444444\n  no tags, run 5555555555555555\n"
              "no code: no result: the run still goes on, or was killed: 1\n  serial=6\n");
}

TEST_F(LogSummaries, Run_with_record_and_events_is_counted_once) {
    std::string record = kPassed;
    record.replace(record.find("1111111111111111"), 16, "4444444444444444");
    EXPECT_THAT(Text(std::string(kEvents) + record + "\n"), StartsWith("1 passed, 1 failed\n"));
}

TEST_F(LogSummaries, Empty_file_has_no_runs) {
    EXPECT_EQ(Text(""), "0 passed, 0 failed\n");
}

TEST_F(LogSummaries, Broken_lines_are_named_and_the_rest_is_counted) {
    const std::string deep(100000, '[');
    const std::string content = std::string("\x01\xFF") + "\n" + kPassed + "\n{\"half\n{}\n" +
                                "{\"status\":" + deep + "\n" + std::string(2U << 20U, 'x') + "\n" +
                                kPassed;
    EXPECT_THAT(Text(content), StartsWith("2 passed, 0 failed\n"));
    std::vector<std::size_t> lines;
    for (const ispctl::BrokenLine &broken : m_reader.BrokenLines()) {
        lines.push_back(broken.line);
        EXPECT_EQ(broken.file, m_folder.Path("log"));
    }
    EXPECT_THAT(lines, testing::ElementsAre(1, 3, 4, 5, 6));
}

TEST_F(LogSummaries, Record_that_no_run_writes_is_broken) {
    constexpr std::size_t kDepth = 400000;
    const std::string deep = std::string(kDepth, '[') + std::string(kDepth, ']');
    for (const std::string &line :
         {R"({"status":0,"tags":{"a":)" + deep + "}}", R"({"status":0,"tags":)" + deep + "}",
          R"({"status":0,"more":)" + deep + R"(,"tags":{"a":[]}})",
          std::string(R"({"status":0,"tags":{"serial":1}})"),
          std::string(R"({"status":4294967296})"), std::string(R"({"status":-4294967296})"),
          std::string(R"({"status":18446744073709551615})"), std::string(R"({"status":0.0})"),
          std::string(R"({"status":0,"code":4294967296})"),
          std::string(R"({"status":0,"code":"0"})")}) {
        ispctl::LogReader reader;
        std::string error;
        EXPECT_TRUE(reader.Read(m_folder.Write("log", line), error)) << error;
        EXPECT_TRUE(reader.Entries().empty()) << line.substr(0, 60);
        EXPECT_EQ(reader.BrokenLines().size(), 1U) << line.substr(0, 60);
    }
}

TEST_F(LogSummaries, Control_characters_of_tags_are_shown_visibly) {
    std::string record = kPassed;
    record.replace(record.find("\"1\""), 3, "\"\\u001b[2J\"");
    EXPECT_THAT(Text(record), HasSubstr("serial=\\x1B[2J"));
}

TEST_F(LogSummaries, Document_has_groups_with_their_runs) {
    const std::string file = m_folder.Write("log", std::string(kPassed) + "\n" + kFailed + "\nx\n" +
                                                       kRefused + "\n" + kEvents);
    const ConsoleResult result =
        RunConsole({"log", "summary", "--json", file, m_folder.Path("missing")});
    EXPECT_EQ(result.status, 8);
    const auto document = nlohmann::json::parse(result.out);
    EXPECT_EQ(document["passed"], 2);
    EXPECT_EQ(document["failed"], 3);
    ASSERT_EQ(document["broken_lines"].size(), 1U);
    EXPECT_EQ(document["broken_lines"][0]["file"], file);
    EXPECT_EQ(document["broken_lines"][0]["line"], 3);
    ASSERT_EQ(document["unreadable"].size(), 1U);
    EXPECT_THAT(document["unreadable"][0].get<std::string>(), HasSubstr("missing"));
    const auto &codes = document["codes"];
    ASSERT_EQ(codes.size(), 4U);
    EXPECT_EQ(codes[0]["hex"], "0x0");
    EXPECT_EQ(codes[0]["passed"], true);
    EXPECT_EQ(codes[0]["count"], 2);
    EXPECT_EQ(codes[0]["runs"][0], nlohmann::json({{"run", "1111111111111111"},
                                                   {"time", ""},
                                                   {"status", 0},
                                                   {"meaning", "success"},
                                                   {"tags", {{"serial", "1"}}}}));
    EXPECT_EQ(codes[1]["code"], 0x4003);
    EXPECT_EQ(codes[1]["source"], "library");
    EXPECT_EQ(codes[1]["status"], 6);
    EXPECT_EQ(codes[2]["code"], nullptr);
    EXPECT_EQ(codes[2]["hex"], nullptr);
    EXPECT_EQ(codes[2]["passed"], false);
    EXPECT_EQ(codes[3]["runs"][0]["time"], "2026-01-01T00:00:00.000Z");
    EXPECT_EQ(codes[3]["runs"][0]["status"], nullptr);
}

TEST_F(LogSummaries, First_broken_lines_are_named_and_others_are_counted) {
    std::string content(kPassed);
    for (int i = 0; i < 23; ++i) {
        content += "\nrubbish";
    }
    const std::string file = m_folder.Write("log", content);
    const ConsoleResult result = RunConsole({"log", "summary", file});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, StartsWith("1 passed, 0 failed\n"));
    EXPECT_THAT(result.err, HasSubstr(file + ", line 21: "));
    EXPECT_THAT(result.err, testing::Not(HasSubstr(", line 22: ")));
    EXPECT_THAT(result.err, HasSubstr("3 more lines cannot be understood"));
}

TEST_F(LogSummaries, Reader_rejects_what_is_no_file) {
    for (const std::string &name :
         {std::string("/dev/zero"), m_folder.Path(), m_folder.Path("missing")}) {
        std::string error;
        EXPECT_FALSE(m_reader.Read(name, error));
        EXPECT_THAT(error, HasSubstr(name));
    }
}

// "0 failed" would be good news.
TEST_F(LogSummaries, Files_that_cannot_be_read_have_no_summary) {
    const std::string missing = m_folder.Path("missing");
    const ConsoleResult none = RunConsole({"log", "summary", missing});
    EXPECT_EQ(none.status, 8);
    EXPECT_EQ(none.out, "");
    EXPECT_THAT(none.err, HasSubstr(missing));
    const std::string there = m_folder.Write("there", std::string(kPassed) + "\n");
    const ConsoleResult one = RunConsole({"log", "summary", missing, there});
    EXPECT_EQ(one.status, 8);
    EXPECT_THAT(one.out, StartsWith("1 passed, 0 failed\n"));
}

} // namespace
