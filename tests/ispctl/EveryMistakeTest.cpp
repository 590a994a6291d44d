// The mistakes that people make with a command line, each run by the real ispctl: what stops it,
// what is said, and that explain says the same without a device. The expectations come from what a
// user needs to be told, so a text of ispctl that becomes unclear fails here.

#include <filesystem>
#include <gmock/gmock.h>
#include <sstream>

#include "ConsoleProcess.h"
#include "support/EnvGuard.h"
#include "support/TempFolder.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using Words = std::vector<std::string>;

// Exit statuses.
constexpr int kRuns = 0;
constexpr int kUsage = 2;
constexpr int kFound = 3;
constexpr int kRefused = 4;
constexpr int kNoPlugin = 5;

/// "@" stands for the folder with these files; relative names begin there, too.
///   f.bin 3 banks   g.bin 1 bank   boot.bin   s.sig   k.pem   old.bin   "my file.bin" \xC3\xA4.bin
///   empty.bin   sub/ a directory   big.bin over 16 MiB   huge.bin over 4 GiB
///   rubbish.ini bytes that are no text   noprefix.ini without the key of the search
struct Mistake {
    const char *mistake;
    const char *line;
    int run;
    int explain;
    Words said; ///< in the output of both
};

const Mistake kMistakes[] = {
    // typing errors in option names
    {"misspelt option",
     "--isp --fw @f.bin --bnak 3",
     kRefused,
     kFound,
     {"no option --bnak", "did you mean --bank?", "--isp --fw @f.bin --bank 3"}},
    {"misspelt action",
     "--ips --fw @f.bin",
     kRefused,
     kRefused,
     {"no option --ips", "did you mean --isp?", "follows from --ips", "--isp --fw @f.bin"}},
    {"misspelt firmware option",
     "--isp --fww @f.bin",
     kRefused,
     kRefused,
     {"no option --fww", "did you mean --fw?", "follows from --fww", "--isp --fw @f.bin"}},
    {"abbreviation of two options",
     "--isp --fw @f.bin --sw --sig @s.sig",
     kRefused,
     kRefused,
     {"--sign or --signfile", "did you mean --signfile?", "--sw --signfile @s.sig"}},
    // numbers
    {"missing number",
     "--isp --fw @f.bin --bank",
     kRefused,
     kFound,
     {"--bank needs a value", "0 to 255", "--bank 3"}},
    {"empty number",
     "--isp --fw @f.bin --bank=",
     kRefused,
     kFound,
     {"the value of --bank", "is empty", "0 to 255", "--bank 3"}},
    {"octal number",
     "--isp --fw @f.bin --bank 010",
     kRuns,
     kFound,
     {"octal", "reads 8, not 10", "write 10"}},
    {"octal digit",
     "--isp --fw @f.bin --bank 09",
     kRefused,
     kRefused,
     {"\"9\" is not an octal digit", "write 9", "--bank 9"}},
    {"hexadecimal number without 0x",
     "--isp --fw @f.bin --slave 6E",
     kRefused,
     kRefused,
     {"\"6E\"", "not a number", "--slave 0x6E"}},
    {"hexadecimal number", "--isp --fw @f.bin --bank 0x10", kRuns, 0, {}},
    {"over-long number",
     "--isp --fw @f.bin --bank 4294967299",
     kRefused,
     kFound,
     {"4294967299", "does not fit into 32 bits", "reads 3", "0 to 255"}},
    {"value with a unit",
     "--dumpflash --dumplen 16k",
     kRefused,
     kRefused,
     {"\"k\" follows the digits", "without a unit", "--dumplen 16384"}},
    // files
    {"missing file",
     "--isp --fw @nothing.bin",
     kRefused,
     kRefused,
     {"--fw", "there is no file @nothing.bin", "check the path"}},
    {"relative file",
     "--isp --fw f.bin",
     kRefused,
     kRefused,
     {"the library looks in its own directory", "absolute path", "--isp --fw @f.bin"}},
    {"directory",
     "--isp --fw @sub",
     kRefused,
     kRefused,
     {"@sub is a directory", "path of a firmware file"}},
    {"device",
     "--isp --fw /dev/null",
     kRefused,
     kFound,
     {"/dev/null is a device", "path of a firmware file"}},
    {"empty file",
     "--isp --fw @empty.bin",
     kRefused,
     kFound,
     {"@empty.bin is empty", "nothing of it would be programmed", "file with content"}},
    {"file over 16 MiB",
     "--isp --fw @big.bin",
     kRefused,
     kFound,
     {"at most 16 MiB", "check that this is the firmware"}},
    {"file over 4 GiB",
     "--isp --fw @huge.bin",
     kRefused,
     kFound,
     {"at most 16 MiB", "beyond 4 GiB", "check that this is the firmware"}},
    {"path with spaces unquoted",
     "--isp --fw @my file.bin",
     kRefused,
     kRefused,
     {"ends at its first space", "\"file.bin\" is left over", "quotes",
      "--isp --fw '@my file.bin'"}},
    {"relative path with spaces unquoted",
     "--isp --fw my file.bin",
     kRefused,
     kRefused,
     {"ends at its first space", "quotes", "--isp --fw '@my file.bin'"}},
    // actions
    {"two actions",
     "--isp --ispdiff --fw @f.bin",
     kRefused,
     kRefused,
     {"--ispdiff is an action, and --isp is one, too", "keep one of them"}},
    {"no action",
     "--fw @f.bin",
     kRefused,
     kRefused,
     {"the line has no action", "add exactly one", "--isp"}},
    {"action that does nothing",
     "--srstatus",
     kRefused,
     kFound,
     {"--srstatus", "calls none of its functions", "the device is not touched"}},
    {"action that can only fail",
     "--erase",
     kRefused,
     kFound,
     {"--erase can only end with 0x6", "use another action"}},
    // signatures
    {"signature options without a type",
     "--isp --fw @f.bin --signfile @s.sig --vkfile @k.pem --dsmode 3",
     kRefused,
     kFound,
     {"--signfile is ignored without --sw or --hw", "programmed unchecked", "add --sw",
      "--isp --fw @f.bin --sw --signfile @s.sig --vkfile @k.pem --dsmode 3"}},
    {"signature action without a type",
     "--verify",
     kRefused,
     kFound,
     {"--verify is incomplete without --sw", "nothing is verified"}},
    {"both types",
     "--isp --fw @f.bin --sw --hw --signfile @s.sig",
     kRefused,
     kRefused,
     {"--hw cannot be used together with --sw", "keep one"}},
    {"mode without key",
     "--isp --fw @f.bin --sw --signfile @s.sig --dsmode 3",
     kRefused,
     kRefused,
     {"--dsmode cannot be used without --vkfile", "add --vkfile"}},
    {"key without mode",
     "--isp --fw @f.bin --sw --signfile @s.sig --vkfile @k.pem",
     kRefused,
     kFound,
     {"--vkfile", "without --dsmode no key is checked", "add --dsmode 1 or --dsmode 3"}},
    {"type without mode",
     "--isp --fw @f.bin --factory --sw --signfile @s.sig",
     kRuns,
     kFound,
     {"--sw is meant to be used with --dsmode", "no key is checked"}},
    // firmware, banks and boot code
    {"file and search",
     "--isp --fw @f.bin --searchfw auto",
     kRefused,
     kRefused,
     {"--searchfw cannot be used together with --fw", "keep one of the two"}},
    {"bank without file",
     "--isp --bank 3 --fw1 @f.bin",
     kRefused,
     kRefused,
     {"--bank cannot be used without --fw", "add --fw"}},
    {"overlap",
     "--isp --fw @f.bin --fw1 @g.bin --bank1 2",
     kRefused,
     kRefused,
     {"--fw1 (bank 2) overlaps that of --fw (banks 0 to 2)", "--fw1 @g.bin --bank1 3"}},
    {"end of flash",
     "--isp --fw @f.bin --bank 254",
     kRefused,
     kFound,
     {"from bank 254 to bank 256", "16 MiB is 255", "--bank 253 or less"}},
    {"boot firmware alone",
     "--isp --fw @f.bin --boot @boot.bin",
     kRefused,
     kFound,
     {"--boot changes nothing without --sw or --hw"}},
    {"boot firmware that is not programmed",
     "--isp --fw @f.bin --hw --boot @boot.bin",
     kRefused,
     kFound,
     {"--boot is incomplete without --factory and --newboot", "is not programmed"}},
    // dump
    {"dump without length",
     "--dumpflash",
     kRefused,
     kRefused,
     {"--dumpflash cannot be used without --dumplen", "add --dumplen"}},
    {"dump with a foreign ending",
     "--dumpflash --dumplen 16 --dumpname @out.img",
     kRuns,
     kFound,
     {"does not end in .bin", "written to dumpFile.bin", "out.bin"}},
    {"dump over an existing file",
     "--dumpflash --dumplen 16 --dumpname @old.bin",
     kRuns,
     kFound,
     {"overwrites the existing file @old.bin", "old-2.bin"}},
    {"dump into a missing directory",
     "--dumpflash --dumplen 16 --dumpname @none/out.bin",
     kRefused,
     kFound,
     {"@none/out.bin cannot be written", "no directory @none", "write a path"}},
    // data of other actions
    {"flag data without address",
     "--ispuser --fw @f.bin --flagdata 1,2",
     kRefused,
     kFound,
     {"--flagdata changes nothing without --flagaddr", "add --flagaddr"}},
    {"user flag without address",
     "--ispuser --fw @f.bin",
     kRuns,
     kFound,
     {"--ispuser is meant to be used with --flagaddr", "no user flag", "add --flagaddr"}},
    {"merge data before --mergefwinfo",
     "--write 1.2 --mergefwinfo",
     kRefused,
     kFound,
     {"--write has no effect at this position", "write --write after --mergefwinfo"}},
    {"I2C data of one byte",
     "--i2cwrite --writedata 110",
     kRefused,
     kRefused,
     {"--writedata has 1 byte", "3 to 258", "--writedata 0x6E,0x51,0x03"}},
    // settings files
    {"settings file after the search",
     "--isp --searchfw prefix --settingfile @noprefix.ini",
     kRefused,
     kRefused,
     {"--settingfile has no effect at this position", "before --searchfw"}},
    {"missing settings file",
     "--isp --settingfile @none.ini --searchfw prefix",
     kRefused,
     kRefused,
     {"--settingfile", "there is no file @none.ini", "check the path"}},
    {"directory as settings file",
     "--isp --settingfile @sub --searchfw prefix",
     kRefused,
     kRefused,
     {"@sub is a directory, not a file", "write the path of a file"}},
    {"settings file without the key",
     "--isp --settingfile @noprefix.ini --searchfw prefix",
     kRefused,
     kRefused,
     {"prefix finds no firmware file", "name the file with --fw"}},
    {"binary settings file",
     "--isp --settingfile @rubbish.ini --searchfw prefix",
     kRefused,
     kRefused,
     {"prefix finds no firmware file", "name the file with --fw"}},
    // ispctl's own options
    {"ispctl's option after the arguments",
     "--isp --fw @f.bin --virtual",
     kRefused,
     kFound,
     {"--virtual is not an option of the library", "right after the command"}},
    {"ispctl's option after the arguments, with a value",
     "--isp --fw @f.bin --log run.log",
     kRefused,
     kFound,
     {"--log is not an option of the library", "right after the command"}},
    {"misspelt option of ispctl",
     "--virtul --isp --fw @f.bin",
     kRefused,
     kFound,
     {"--virtul is not an option of the library", "--virtual of ispctl"}},
    {"misspelt option of explain",
     "--svgg x.svg --isp --fw @f.bin",
     kRefused,
     kFound,
     {"--svgg is not an option of the library", "--svg of ispctl explain"}},
};

class EveryMistake : public testing::Test {
  protected:
    EveryMistake() {
        m_folder.Write("f.bin", std::string(0x20001, 'f'));
        for (const char *name : {"g.bin", "boot.bin", "s.sig", "k.pem", "old.bin", "my file.bin"}) {
            m_folder.Write(name, "x");
        }
        m_folder.Write("empty.bin", "");
        m_folder.Write("rubbish.ini", std::string("\0\xFF\xFE\x01[", 5));
        m_folder.Write("noprefix.ini", "[ISP_Fw]\nstrOther=x\n");
        m_folder.MakeFolder("sub");
        MakeSparse("big.bin", 0x1000001);
        MakeSparse("huge.bin", 0x100000001);
    }

    void MakeSparse(const std::string &name, std::uintmax_t size) const {
        m_folder.Write(name, "");
        fs::resize_file(m_folder.Path(name), size);
    }

    std::string Expand(std::string text) const {
        for (std::size_t at = text.find('@'); at != std::string::npos; at = text.find('@', at)) {
            text.replace(at, 1, m_folder.Path());
            at += m_folder.Path().size();
        }
        return text;
    }

    Words Line(const std::string &line) const {
        std::istringstream stream(line);
        Words words;
        for (std::string word; stream >> word;) {
            words.push_back(Expand(word));
        }
        return words;
    }

    ConsoleResult Call(Words own, const Words &line) const {
        own.insert(own.end(), line.begin(), line.end());
        return RunConsole(own, ConsoleProcess::Output::Pipes, m_folder.Path());
    }

    /// Line breaks depend on the length of the folder's name.
    static std::string Unwrapped(const std::string &text) {
        std::istringstream stream(text);
        std::string joined;
        for (std::string word; stream >> word;) {
            joined += (joined.empty() ? "" : " ") + word;
        }
        return joined;
    }

    void ExpectBoth(const Words &line, int run, int explain, const Words &said) const {
        const ConsoleResult ran = Call({"run", "--virtual"}, line);
        const ConsoleResult explained = Call({"explain", "--virtual"}, line);
        EXPECT_EQ(ran.status, run) << ran.err;
        EXPECT_EQ(explained.status, explain) << explained.out << explained.err;
        EXPECT_EQ(m_folder.Exists("device/journal.txt"), run == kRuns);
        for (const std::string &text : said) {
            EXPECT_THAT(Unwrapped(ran.err), HasSubstr(Expand(text)));
            EXPECT_THAT(Unwrapped(explained.out), HasSubstr(Expand(text)));
        }
    }

    TempFolder m_folder;
    EnvGuard m_device{"SCALER_ISP_VIRTUAL_DEVICE", m_folder.MakeFolder("device")};
};

class MistakeInLine : public EveryMistake, public testing::WithParamInterface<Mistake> {};

TEST_P(MistakeInLine, Run_and_explain_name_cause_and_remedy) {
    const Mistake &row = GetParam();
    ExpectBoth(Line(row.line), row.run, row.explain, row.said);
}

std::string NameOfRow(const testing::TestParamInfo<Mistake> &info) {
    std::string name;
    for (const char c : std::string(info.param.mistake)) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(EveryMistake, MistakeInLine, testing::ValuesIn(kMistakes), NameOfRow);

TEST_F(EveryMistake, Empty_argument_names_its_option) {
    ExpectBoth({"--isp", "--fw", m_folder.Path("f.bin"), "--bank", ""}, kRefused, kRefused,
               {"the value of --bank is empty", "[empty-value]", "0 to 255", "--bank 3"});
    ExpectBoth({"--isp", "", "--fw", m_folder.Path("f.bin")}, kRefused, kRefused,
               {"argument 2 is empty", "[empty-argument]", "leave it out"});
}

TEST_F(EveryMistake, Path_over_260_bytes_is_not_cut) {
    std::string folder = m_folder.Path();
    folder += std::string(270 - folder.size(), 'd') + "/";
    fs::create_directories(folder);
    const std::string file = folder + "f.bin";
    fs::copy_file(m_folder.Path("f.bin"), file);
    ExpectBoth({"--isp", "--fw", file}, kRefused, kFound,
               {"passes on only the first 260", "fewer than 260 bytes", "symbolic link"});
}

TEST_F(EveryMistake, Umlaut_cannot_be_written_in_locale_C) {
    const EnvGuard language("LC_ALL", "C");
    m_folder.Write("\xC3\xA4.bin", "x");
    ExpectBoth({"--isp", "--fw", m_folder.Path("\xC3\xA4.bin")}, kRefused, kFound,
               {"cannot be written in the encoding of the environment", "LC_ALL=C.UTF-8"});
}

TEST_F(EveryMistake, Misspelt_subcommand_is_answered_with_the_nearest) {
    for (const auto &[typed, meant] : {std::pair("rnu", "run"), std::pair("explian", "explain")}) {
        const ConsoleResult result = Call({typed}, {"--isp"});
        EXPECT_EQ(result.status, kUsage);
        EXPECT_THAT(result.err, HasSubstr(std::string("did you mean ") + meant + "?"));
    }
}

/// A directory with the real library and, as its ISP plug-in, some file.
class MistakeWithPlugin : public EveryMistake {
  protected:
    MistakeWithPlugin() {
        m_folder.MakeFolder("lib/PlugIn");
        fs::create_symlink(REAL_LIBRARY, m_library);
    }

    void ExpectUnusable(const Words &line, const Words &said) const {
        const ConsoleResult ran = Call({"run", "--lib", m_library}, line);
        EXPECT_EQ(ran.status, kNoPlugin);
        for (const std::string &text : said) {
            EXPECT_THAT(Unwrapped(ran.out + ran.err), HasSubstr(Expand(text)));
        }
        // No plug-in is opened for it, so it has nothing to say about this one.
        EXPECT_EQ(Call({"explain", "--lib", m_library}, line).status, 0);
    }

    std::string m_library = m_folder.Path("lib/libScalerIsp.so");
    std::string m_plugin = m_folder.Path("lib/PlugIn/libIsp.dylib");
    Words m_line{"--isp", "--fw", m_folder.Path("f.bin")};
};

TEST_F(MistakeWithPlugin, Missing_plugin_is_named_with_the_ways_out) {
    ExpectUnusable(m_line, {"@lib/PlugIn/libIsp.dylib", "--virtual", "--lib", "nothing was done"});
}

TEST_F(MistakeWithPlugin, Plugin_of_another_architecture_is_named) {
    fs::copy_file(SCRIPTED_PLUGIN, m_plugin);
    std::string bytes = m_folder.Read("lib/PlugIn/libIsp.dylib");
    const std::size_t machine = bytes.starts_with("\x7F"
                                                  "ELF")
                                    ? 18
                                    : 4;
    bytes[machine] = static_cast<char>(bytes[machine] ^ 0x15);
    m_folder.Write("lib/PlugIn/libIsp.dylib", bytes);
    ExpectUnusable(m_line, {"@lib/PlugIn/libIsp.dylib", "cannot be loaded", "nothing was done"});
}

TEST_F(MistakeWithPlugin, Plugin_without_IspFlash_is_named_with_the_function) {
    fs::create_symlink(SCRIPTED_LIBRARY, m_plugin);
    ExpectUnusable(m_line, {"@lib/PlugIn/libIsp.dylib", "IspFlash"});
}

TEST_F(MistakeWithPlugin, Plugin_without_the_function_of_the_action_is_named_with_it) {
    fs::create_symlink(SCRIPTED_PLUGIN, m_plugin);
    ExpectUnusable({"--resetmcu"}, {"ResetMCUExport"});
}

} // namespace
