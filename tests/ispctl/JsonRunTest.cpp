#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "ConsoleProcess.h"

namespace {

using Json = nlohmann::json;
using testing::ElementsAre;

std::vector<Json> Events(const ConsoleResult &result) {
    std::vector<Json> events;
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = result.out.find('\n', begin)) != std::string::npos;
         begin = end + 1) {
        events.push_back(Json::parse(result.out.substr(begin, end - begin)));
    }
    EXPECT_EQ(begin, result.out.size()) << "a last line without end";
    return events;
}

Json Console(const char *text) {
    return {{"event", "console"}, {"text", text}};
}

Json Result(int status, const Json &code, const char *hex, const Json &name, const char *meaning,
            const char *source, const char *stage) {
    return {{"event", "result"},  {"status", status},         {"code", code},     {"hex", hex},
            {"name", name},       {"meaning", meaning},       {"source", source}, {"stage", stage},
            {"percent", nullptr}, {"findings", Json::array()}};
}

Json Success(const Json &percent = nullptr) {
    Json event = Result(0, 0, "0x0", "SCALER_ISP_SUCCESS", "success", "library", "done");
    event["percent"] = percent;
    return event;
}

TEST(JsonRun, Each_line_is_one_event_in_order_of_run) {
    const ConsoleResult result =
        RunScripted({"--json"}, {"out:a\\n", "err:b\\n", "progress:3", "out:c\\nd\\n", "message:m",
                                 "err:e\\n", "out:f\\n"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(Events(result),
                ElementsAre(Console("a\n"), Console("b\n"),
                            Json({{"event", "progress"}, {"percent", 3}}), Console("c\n"),
                            Console("d\n"), Json({{"event", "message"}, {"text", "m"}}),
                            Console("e\n"), Console("f\n"), Success(3)));
}

TEST(JsonRun, Event_lines_have_documented_spelling) {
    EXPECT_EQ(
        RunScripted({"--json"}, {"progress:3", "out:a", "message:m", "result:0x4003"}).out,
        "{\"event\":\"progress\",\"percent\":3}\n"
        "{\"event\":\"console\",\"text\":\"a\"}\n"
        "{\"event\":\"message\",\"text\":\"m\"}\n"
        "{\"event\":\"result\",\"status\":6,\"code\":16387,\"hex\":\"0x4003\","
        "\"name\":\"SCALER_ISP_BAD_SIGNATURE\","
        "\"meaning\":\"the firmware signature is invalid\",\"source\":\"library\","
        "\"stage\":\"verify\",\"percent\":3,\"device\":\"unknown\",\"advice\":[\"use the signature "
        "and the key that were delivered with this firmware\"],\"findings\":[]}\n");
}

TEST(JsonRun, Result_code_of_plugin_has_no_name) {
    Json expected = Result(1, 0x7001, "0x7001", nullptr,
                           "error code of the plug-in (see its documentation)", "plug-in", "call");
    expected["device"] = "unknown";
    expected["advice"] = Json::array();
    EXPECT_THAT(Events(RunScripted({"--json"}, {"result:0x7001"})), ElementsAre(expected));
}

TEST(JsonRun, Text_without_newline_becomes_event) {
    EXPECT_THAT(
        Events(RunScripted({"--json"}, {"out:wrong!", "progress:1", "out:\\e[32mOK\\n\\e[m"})),
        ElementsAre(Console("wrong!"), Json({{"event", "progress"}, {"percent", 1}}),
                    Console("\033[32mOK\n"), Console("\033[m"), Success(1)));
}

TEST(JsonRun, Text_without_newline_is_sent_before_library_returns) {
    ConsoleProcess process(ScriptedArguments({"--json"}, {"out:wait...", "sleep:60000"}));
    EXPECT_TRUE(process.WaitForText("{\"event\":\"console\",\"text\":\"wait...\"}\n"));
}

TEST(JsonRun, Bytes_that_are_not_UTF8_are_escaped) {
    EXPECT_THAT(
        Events(RunScripted({"--json"}, {"out:\\x5C\\xFF\\n"})),
        ElementsAre(Json({{"event", "console"}, {"text", "\\\\\\xFF\n"}, {"escaped", true}}),
                    Success()));
    EXPECT_THAT(
        Events(RunScripted({"--json"}, {"surrogate"})),
        ElementsAre(Json({{"event", "message"}, {"text", "a\\\\\\x{D800}"}, {"escaped", true}}),
                    Success()));
}

TEST(JsonRun, Text_longer_than_pipe_buffer_arrives_completely) {
    const auto events = Events(RunScripted({"--json"}, {"many:20000", "progress:1", "many:1"}));
    ASSERT_EQ(events.size(), 20003U);
    for (int i = 0; i < 20000; ++i) {
        const std::string number = std::to_string(20000 - i);
        ASSERT_EQ(events[static_cast<std::size_t>(i)]["text"],
                  std::string(99 - number.size(), '0') + number + "\n");
    }
    EXPECT_EQ(events[20000]["event"], "progress");
}

TEST(JsonRun, Order_of_events_is_kept_over_many_short_texts) {
    std::vector<std::string> steps;
    std::vector<Json> expected;
    for (int i = 0; i < 300; ++i) {
        steps.insert(steps.end(), {"err:x\\n", "progress:" + std::to_string(i % 100), "out:y"});
        expected.push_back(i == 0 ? Console("x\n") : Console("yx\n"));
        expected.push_back({{"event", "progress"}, {"percent", i % 100}});
    }
    expected.push_back(Console("y"));
    expected.push_back(Success(99));
    EXPECT_EQ(Events(RunScripted({"--json"}, steps)), expected);
}

TEST(JsonRun, Run_continues_if_reader_closes_pipe) {
    ConsoleProcess process(ScriptedArguments(
        {"--json"}, {"progress:1", "sleep:300", "many:5000", "progress:2", "result:0"}));
    ASSERT_TRUE(process.WaitForText("progress"));
    process.CloseOutput();
    EXPECT_EQ(process.Finish(), 8);
    EXPECT_EQ(process.Err(),
              "ispctl: standard output could not be written completely: Broken pipe\n");
}

} // namespace
