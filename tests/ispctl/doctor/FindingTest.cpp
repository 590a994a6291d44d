#include <gmock/gmock.h>
#include <set>

#include "doctor/Finding.h"

namespace {

using namespace ispctl::doctor;

constexpr FindingId kAll[] = {
#define ISPCTL_DOCTOR_FINDING(ID, NAME, CLASS, MESSAGE, REMEDY) FindingId::ID,
#include "doctor/findings.def"
};

TEST(DoctorFinding, Names_are_unique_and_bad_ones_have_remedies) {
    std::set<std::string_view> names;
    for (const FindingId id : kAll) {
        const FindingRow &row = RowOf(id);
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(names.insert(row.name).second);
        EXPECT_EQ(row.remedy.empty(), row.severity == FindingClass::Ok);
        EXPECT_EQ(row.name.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"),
                  std::string_view::npos);
    }
}

TEST(DoctorFinding, Braces_of_file_names_stay_as_they_are) {
    const Finding finding{FindingId::PluginNotLoaded, "isp-plugin", "/a/{9}", "{", "}"};
    EXPECT_EQ(MessageOf(finding), "/a/{9} cannot be loaded: {");
}

} // namespace
