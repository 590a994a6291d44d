#include <gmock/gmock.h>
#include <set>

#include "FileHints.h"
#include "scaler_isp/args/CommandFacts.h"
#include "support/TempFolder.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Words = std::vector<std::string>;

class FileHint : public testing::Test {
  protected:
    Words Hints(const Words &arguments) const {
        return ispctl::FileHints(arguments, m_library.Path(), m_here.Path());
    }
    TempFolder m_library;
    TempFolder m_here;
};

TEST_F(FileHint, Name_of_a_file_of_the_callers_folder_gives_the_path_to_use) {
    m_here.Write("a.bin", "x");
    EXPECT_THAT(Hints({"--isp", "--fw", "a.bin"}),
                ElementsAre("--fw a.bin refers to a file in the library's directory " +
                            m_library.Path() + "; to use the file in the current directory, pass " +
                            m_here.Path("a.bin")));
}

TEST_F(FileHint, Value_behind_an_equals_sign_counts) {
    m_here.Write("a.sig", "x");
    EXPECT_EQ(Hints({"--signfile=a.sig"}).size(), 1U);
}

TEST_F(FileHint, Every_file_option_and_its_abbreviations_count) {
    m_here.Write("f", "x");
    for (const char *option :
         {"--fw", "--fw1", "--fw2", "--fw3", "--fw4", "--fw5", "--fw6", "--fw7", "--fw8", "--fw9",
          "--boot", "--signfile", "--vkfile", "--skfile", "--nextvkfile", "--settingfile",
          "--signf", "--vk", "--next"}) {
        EXPECT_EQ(Hints({option, "f"}).size(), 1U) << option;
    }
}

TEST_F(FileHint, Names_that_the_plugin_gets_as_typed_give_none) {
    m_here.Write("f.bin", "x");
    EXPECT_THAT(Hints({"--dumpname", "f.bin", "--subcert", "f.bin", "--comm", "f.bin", "f.bin"}),
                IsEmpty());
}

TEST_F(FileHint, Table_marks_exactly_the_options_of_files_in_the_library_directory) {
    m_here.Write("f", "x");
    const std::set<std::string_view> files{
        "fw",  "fw1", "fw2",  "fw3",      "fw4",    "fw5",    "fw6",        "fw7",
        "fw8", "fw9", "boot", "signfile", "vkfile", "skfile", "nextvkfile", "settingfile"};
    for (const ScalerIspFacts::OptionFacts &option : ScalerIspFacts::kOptions) {
        EXPECT_EQ(Hints({"--" + std::string(option.name), "f"}).size(), files.count(option.name))
            << option.name;
    }
}

TEST_F(FileHint, File_in_both_folders_tells_which_one_is_taken) {
    m_here.Write("a.bin", "x");
    m_library.Write("a.bin", "y");
    EXPECT_THAT(Hints({"--fw", "a.bin"}),
                ElementsAre("--fw a.bin refers to " + m_library.Path("a.bin") +
                            "; to use the file in the current directory, pass " +
                            m_here.Path("a.bin")));
}

TEST_F(FileHint, Absolute_missing_and_library_files_give_none) {
    m_library.Write("l.bin", "y");
    m_here.Write("a.bin", "x");
    m_here.MakeFolder("folder");
    EXPECT_THAT(Hints({"--fw", m_here.Path("a.bin"), "--fw1", "l.bin", "--fw2", "no.bin", "--fw3",
                       "folder", "--fw4", "", "--fw5"}),
                IsEmpty());
}

TEST_F(FileHint, Caller_in_the_librarys_folder_gets_none) {
    m_here.Write("a.bin", "x");
    EXPECT_THAT(ispctl::FileHints({"--fw", "a.bin"}, m_here.Path(), m_here.Path()), IsEmpty());
}

} // namespace
