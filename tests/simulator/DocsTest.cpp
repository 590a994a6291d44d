// The page about the virtual scaler against the tables of the code.

#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gmock/gmock.h>

#include "simulator/bus/BusStatus.h"
#include "simulator/device/ResultCodes.h"

namespace {

struct Row {
    int code;
    const char *meaning;
};
constexpr Row kRows[] = {
#define ROW(NAME, VALUE, MEANING) {VALUE, MEANING},
    VIRTUAL_ISP_RESULT_CODES(ROW) VIRTUAL_BUS_STATUSES(ROW)
#undef ROW
};

TEST(VirtualScalerPage, Page_lists_every_result_code_with_meaning_and_no_other) {
    std::ifstream file(VIRTUAL_SCALER_PAGE);
    std::ostringstream page;
    page << file.rdbuf();
    std::size_t listed = 0;
    for (std::istringstream lines(page.str()); !lines.eof();) {
        std::string line;
        std::getline(lines, line);
        if (line.starts_with("| 0x")) {
            ++listed;
        }
    }
    EXPECT_EQ(listed, std::size(kRows));
    for (const Row &row : kRows) {
        char line[200];
        std::snprintf(line, sizeof line, "\n| 0x%X | %s |\n", static_cast<unsigned>(row.code),
                      row.meaning);
        EXPECT_THAT(page.str(), testing::HasSubstr(line));
    }
}

TEST(VirtualScalerCodes, File_gives_meaning_and_remedy_of_every_plugin_code) {
    std::ifstream file(VIRTUAL_ISP_CODES);
    std::ostringstream codes;
    codes << file.rdbuf();
    for (const Row &row : {
#define ROW(NAME, VALUE, MEANING) Row{VALUE, MEANING},
             VIRTUAL_ISP_RESULT_CODES(ROW)
#undef ROW
         }) {
        if (row.code != 0) {
            char line[200];
            std::snprintf(line, sizeof line, "\n0x%X %s | ", static_cast<unsigned>(row.code),
                          row.meaning);
            EXPECT_THAT(codes.str(), testing::HasSubstr(line));
        }
    }
}

TEST(VirtualScalerCodes, File_gives_meaning_and_remedy_of_every_bus_status) {
    std::ifstream file(VIRTUAL_COMM_CODES);
    std::ostringstream codes;
    codes << file.rdbuf();
    for (const Row &row : {
#define ROW(NAME, VALUE, MEANING) Row{VALUE, MEANING},
             VIRTUAL_BUS_STATUSES(ROW)
#undef ROW
         }) {
        char line[200];
        std::snprintf(line, sizeof line, "\n0x%X %s | ", static_cast<unsigned>(row.code),
                      row.meaning);
        EXPECT_THAT(codes.str(), testing::HasSubstr(line));
    }
}

TEST(VirtualScalerPage, Codes_differ_from_those_of_library) {
    for (const Row &row : kRows) {
        EXPECT_TRUE(row.code == 0 || (row.code >= 0x5A01 && row.code <= 0x5BFF)) << row.meaning;
    }
}

} // namespace
