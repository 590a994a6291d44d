#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "line/LineFixture.h"

// The mistakes that people make, and what they are told.

namespace {

using testing::Contains;
using testing::HasSubstr;

struct Mistake {
    const char *line;
    const char *finding;   ///< class and name
    const char *argument;  ///< what is underlined, as typed; empty: nothing
    const char *message;   ///< a part of message or suggestion
    const char *corrected; ///< the corrected line; empty: there is none
};

const Mistake kMistakes[] = {
    // names
    {"--isp --fw @f.bin --bnak 3", "error unknown-option", "--bnak", "did you mean --bank",
     "--isp --fw @f.bin --bank 3"},
    {"--ips --fw @f.bin", "error unknown-option", "--ips", "--isp", "--isp --fw @f.bin"},
    {"-isp --fw @f.bin", "error unknown-option", "-isp", "--isp", "--isp --fw @f.bin"},
    {"--isp --fw @f.bin --FW1 @g.bin --bank1 9", "error unknown-option", "--FW1", "--fw1",
     "--isp --fw @f.bin --fw1 @g.bin --bank1 9"},
    {"--isp --fw @f.bin --zzzzzz", "error unknown-option", "--zzzzzz", "leave it out", ""},
    {"--isp --fw @f.bin --dump x", "error ambiguous-option", "--dump", "--dumpflash", ""},
    {"--isp --fw @f.bin --sla 5", "warning abbreviated-option", "--sla", "--slave",
     "--isp --fw @f.bin --slave 5"},
    {"--isp --fw @f.bin --comm 3 --comm 4", "warning repeated-option", "--comm", "last value", ""},
    {"--isp --fw @f.bin --fw @f.bin", "fatal repeated-file", "--fw", "keep one of them",
     "--isp --fw @f.bin"},
    {"--isp fw @f.bin", "error leftover-argument", "fw", "did you mean --fw", "--isp --fw @f.bin"},
    {"--dumpflash --dumplen 0x2000000", "warning dump-beyond-flash", "0x2000000",
     "ends at 0x2000000; a flash of 16 MiB ends at 0x1000000", ""},
    {"--dumpflash --dumpaddr 0xFFFFF0 --dumplen 17", "warning dump-beyond-flash", "17",
     "write --dumplen 0x10", ""},
    {"--dumpflash --dumpaddr 0x1000000 --dumplen 1", "warning dump-beyond-flash", "0x1000000",
     "use a smaller address", ""},
    {"--isp --fw @f.bin --erase", "fatal several-actions", "--erase",
     "keep --isp; --erase does nothing, or only fails", ""},
    {"--erase --isp --fw @f.bin", "fatal several-actions", "--isp", "keep --isp; --erase does", ""},
    {"--isp --fw @f.bin --fw @g.bin", "fatal repeated-file", "--fw", "--fw1", ""},
    {"--isp --searchfw prefix --searchfw prefix", "fatal repeated-file", "--searchfw", "keep one",
     "--isp --searchfw prefix"},
    {"--isp --fw @f.bin --fw1 @g.bin --fw2 @g.bin --fw3 @g.bin --fw4 @g.bin --fw5 @g.bin --fw6 "
     "@g.bin --fw7 @g.bin --fw8 @g.bin --fw9 @g.bin --fw @g.bin",
     "fatal repeated-file", "--fw", "keep one", ""},
    {"--isp --fw @f.bin more", "error leftover-argument", "more", "belongs to no option", ""},
    {"isp --fw @f.bin", "error leftover-argument", "isp", "--isp", "--isp --fw @f.bin"},
    {"--isp --fw @f.bin -- --comm 3", "error leftover-argument", "--comm", "belongs to no", ""},
    {"--isp --fw @f.bin --comm", "error missing-value", "--comm", "a number from 1 to 19", ""},
    {"--isp=1 --fw @f.bin", "error unwanted-value", "--isp", "--isp alone", "--isp --fw @f.bin"},
    {"--isp --fw @f.bin --virtual", "error ispctl-option", "--virtual", "write --virtual there",
     ""},
    {"--isp --fw @f.bin --virtul", "error ispctl-option", "--virtul", "write --virtual there", ""},
    {"--isp --fw @f.bin --vi", "error ispctl-option", "--vi", "write --virtual there", ""},
    {"--isp --fw @f.bin --help", "error ispctl-option", "--help", "write --help there", ""},
    {"--isp --fw @f.bin --json", "error ispctl-option", "--json", "write --json there", ""},
    {"--isp --fw @f.bin --version", "error ispctl-option", "--version", "write ispctl --version",
     ""},
    {"--isp --fw @f.bin --dry-run", "error ispctl-option", "--dry-run", "write --dry-run there",
     ""},
    {"--isp --fw @f.bin --verbatim", "error ispctl-option", "--verbatim", "write --verbatim there",
     ""},
    {"--isp --fw @f.bin --log run.log", "error ispctl-option", "--log", "write --log there", ""},
    {"--isp --fw @f.bin --lib=x.so", "error ispctl-option", "--lib", "write --lib there", ""},
    {"--isp --fw @f.bin --svgg x.svg", "error ispctl-option", "--svgg", "--svg of ispctl explain",
     ""},
    {"--isp --fw @f.bin --html x.html", "error ispctl-option", "--html", "write --html there", ""},
    {"--isp --fw @f.bin --allow x", "error ispctl-option", "--allow", "write --allow there", ""},
    {"--isp @f.bin", "error leftover-argument", "@f.bin", "did you mean --fw @f.bin",
     "--isp --fw @f.bin"},
    {"--isp f.bin --comm 3", "error leftover-argument", "f.bin", "did you mean --fw @f.bin",
     "--isp --fw @f.bin --comm 3"},
    {"--isp --comm 3 g.bin", "error leftover-argument", "g.bin", "did you mean --fw @g.bin",
     "--isp --comm 3 --fw @g.bin"},
    {"--isp -- f.bin", "error leftover-argument", "f.bin", "leave it out", ""},
    {"--isp @none.bin", "error leftover-argument", "@none.bin", "leave it out", ""},
    {"--isp --fw @f.bin @g.bin", "error leftover-argument", "@g.bin", "leave it out", ""},
    {"--resetmcu @f.bin", "error leftover-argument", "@f.bin", "leave it out", ""},
    {"–isp --fw @f.bin", "error typographic-dash", "–isp", "write --isp", "--isp --fw @f.bin"},
    {"--isp --fw @f.bin –ver 1", "error typographic-dash", "–ver", "write --ver",
     "--isp --fw @f.bin --ver 1"},
    {"—isp --fw @f.bin", "error typographic-dash", "—isp", "U+2014", "--isp --fw @f.bin"},
    {"−−isp --fw @f.bin", "error typographic-dash", "−−isp", "U+2212", "--isp --fw @f.bin"},
    {"-–isp --fw @f.bin", "error typographic-dash", "-–isp", "U+2013", "--isp --fw @f.bin"},
    {"--isp –fw @f.bin", "error typographic-dash", "–fw", "write --fw", "--isp --fw @f.bin"},
    {"--isp –fw=@f.bin", "error typographic-dash", "–fw=@f.bin", "write --fw=@f.bin",
     "--isp --fw=@f.bin"},
    {"--isp --fw @f.bin –virtual", "error ispctl-option", "–virtual", "write --virtual there", ""},
    {"--isp --fw @f.bin –virtul", "error ispctl-option", "–virtul", "write --virtual there", ""},
    {"--isp --fw @f.bin --backup @sub", "error ispctl-option", "--backup", "write --backup there",
     ""},
    {"--isp --fw @f.bin --chip x", "error ispctl-option", "--chip", "write --chip there", ""},
    {"--isp --fw “@f.bin”", "fatal typographic-quotes", "“@f.bin”", "write @f.bin",
     "--isp --fw @f.bin"},
    {"--isp --fw=„@f.bin“", "fatal typographic-quotes", "„@f.bin“", "U+201E", "--isp --fw=@f.bin"},
    {"--isp --fw @f.bin --bank ‘3’", "fatal typographic-quotes", "‘3’", "write 3",
     "--isp --fw @f.bin --bank 3"},
    {"--isp --searchfw «auto»", "fatal typographic-quotes", "«auto»", "write auto",
     "--isp --searchfw auto"},
    {"--isp --fw @f.bin “--comm 3”", "error typographic-quotes", "“--comm", "write --comm",
     "--isp --fw @f.bin --comm 3”"},
    // values
    {"--isp --fw @f.bin --comm=", "error empty-value", "--comm=", "a number from 1 to 19", ""},
    {"--isp --fw @f.bin --bank 16k", "fatal number-with-rest", "16k", "\"k\" follows the digits",
     "--isp --fw @f.bin --bank 16"},
    {"--dumpflash --dumplen 16k", "fatal number-with-rest", "16k", "--dumplen 16384",
     "--dumpflash --dumplen 16384"},
    {"--dumpflash --dumplen 4095KiB", "fatal number-with-rest", "4095KiB", "4193280",
     "--dumpflash --dumplen 4193280"},
    {"--dumpflash --dumplen 4096kb", "fatal number-with-rest", "4096kb", "\"kb\" follows", ""},
    {"--dumpflash --dumplen 1M", "fatal number-with-rest", "1M", "--dumplen 1048576",
     "--dumpflash --dumplen 1048576"},
    {"--dumpflash --dumplen 2mb", "fatal number-with-rest", "2mb", "--dumplen 2097152",
     "--dumpflash --dumplen 2097152"},
    {"--dumpflash --dumplen 1MiB", "fatal number-with-rest", "1MiB", "--dumplen 1048576",
     "--dumpflash --dumplen 1048576"},
    {"--dumpflash --dumplen 0x10k", "fatal number-with-rest", "0x10k", "--dumplen 16384",
     "--dumpflash --dumplen 16384"},
    {"--dumpflash --dumplen 1g", "fatal number-with-rest", "1g", "\"g\" follows", ""},
    {"--isp --fw @f.bin --slave 94h", "fatal number-with-rest", "94h", "--slave 0x94",
     "--isp --fw @f.bin --slave 0x94"},
    {"--isp --fw @f.bin --slave 6EH", "fatal number-with-rest", "6EH", "--slave 0x6E",
     "--isp --fw @f.bin --slave 0x6E"},
    {"--isp --fw @f.bin --slave FFh", "fatal not-a-number", "FFh", "--slave", ""},
    {"--isp --fw @f.bin --slave feh", "fatal not-a-number", "feh", "--slave 0xfe",
     "--isp --fw @f.bin --slave 0xfe"},
    {"--isp --fw @f.bin --slave 6E", "fatal number-with-rest", "6E", "--slave 0x6E",
     "--isp --fw @f.bin --slave 0x6E"},
    {"--isp --fw @f.bin --bank three", "fatal not-a-number", "three", "a number from 0 to 255", ""},
    {"--isp --fw @f.bin --bank 300", "fatal number-out-of-range", "300", "from 0 to 255", ""},
    {"--isp --fw @f.bin --bank -1", "fatal number-out-of-range", "-1", "from 0 to 255", ""},
    {"--isp --fw @f.bin --bank 4294967299", "error number-truncated", "4294967299", "reads 3", ""},
    {"--dumpflash --dumplen 0x100000010", "error number-truncated", "0x100000010", "reads 16", ""},
    {"--isp --fw @f.bin --bank +010", "warning octal-number", "+010", "reads 8, not 10",
     "--isp --fw @f.bin --bank 10"},
    {"--isp --fw @f.bin --bank 010", "warning octal-number", "010", "reads 8, not 10",
     "--isp --fw @f.bin --bank 10"},
    {"--isp --fw @f.bin --bank 0377", "error bank-beyond-flash", "0377", "bank 255", ""},
    {"--isp --fw @g.bin --bank 0377", "warning octal-number", "0377",
     "write 255, which is the same number", "--isp --fw @g.bin --bank 255"},
    {"--isp --fw @g.bin --bank 0400", "fatal number-out-of-range", "0400", "octal for 256", ""},
    {"--isp --fw @f.bin --bank 1.5", "fatal number-with-rest", "1.5", "\".5\" follows", ""},
    {"--isp --fw @f.bin --bank 0x1G", "fatal number-with-rest", "0x1G", "such as --bank 3", ""},
    {"--isp --fw @f.bin --bank 0x", "fatal not-a-number", "0x", "such as --bank 3", ""},
    {"--isp --fw @f.bin --slave 255", "fatal number-out-of-range", "255", "--slave 0x94", ""},
    {"--isp --fw @f.bin --fw1 @g.bin --bank1 256", "fatal number-out-of-range", "256", "--bank1 16",
     ""},
    {"--dumpflash --dumplen 16 --dumpaddr -1", "error number-out-of-range", "-1",
     "from 0 to 0xffffffff", ""},
    {"--isp --fw @f.bin --bank 09", "fatal octal-digit", "09", "not an octal digit",
     "--isp --fw @f.bin --bank 9"},
    {"--edpisp --edpmode red", "fatal wrong-keyword", "red", "isp or readver", ""},
    {"--edpisp --edpmode readve", "fatal wrong-keyword", "readve", "--edpmode readver",
     "--edpisp --edpmode readver"},
    {"--isp --searchfw Auto", "fatal wrong-keyword", "Auto", "auto, prefix or userdefined",
     "--isp --searchfw auto"},
    {"--isp --fw --isp", "fatal value-like-option", "--isp", "as the value of --fw", ""},
    {"--dumpflash --dumplen 0", "fatal number-out-of-range", "0", "from 1 to", ""},
    {"--ispuser --fw @f.bin --flagaddr 1 --flagdata 1.2", "fatal wrong-separator", "1.2",
     "--flagdata 1,2", "--ispuser --fw @f.bin --flagaddr 1 --flagdata 1,2"},
    {"--ispuser --fw @f.bin --flagaddr 1 --flagdata x", "fatal not-a-number", "x",
     "--flagdata 0x01,0x02", ""},
    {"--mergefwinfo --mergefwgen gen3", "fatal wrong-keyword", "gen3", "one of these words", ""},
    {"--ispuser --fw @f.bin --flagaddr 1 --flagdata 1,256", "fatal number-out-of-range", "256",
     "from 0 to 255", ""},
    {"--i2cwrite --writedata 110", "fatal wrong-byte-count", "110", "3 to 258", ""},
    {"--i2cwrite --ddccicmd --writedata 0x6e,0x51,0x85,1", "fatal wrong-length-byte",
     "0x6e,0x51,0x85,1", "0x81", "--i2cwrite --ddccicmd --writedata 0x6e,0x51,0x81,0x01"},
    {"--recordver --flash --veraddr 0xffffff --totalverlen 4 --majorverlen 2",
     "fatal wrong-version-range", "0xffffff", "below 0x1000000", ""},
    {"--recordver --flash --veraddr 1 --totalverlen 4 --majorverlen 2 --subverlen 3",
     "fatal wrong-version-range", "4", "--totalverlen 5", ""},
    {"--recordver --flash --veraddr 1 --totalverlen 4 --majorverlen 300",
     "fatal wrong-version-range", "300", "such as --majorverlen 2", ""},
    {"--recordver --flash --veraddr 1 --totalverlen 4 --majorverlen 2 --subverlen 300",
     "fatal wrong-version-range", "300", "at most 256", ""},
    {"--recordver --flash --veraddr 1", "fatal missing-need", "--veraddr", "--totalverlen", ""},
    {"--recordver --flash --veraddr 1 --totalverlen 4", "fatal missing-need", "--veraddr",
     "--majorverlen", ""},
    // actions
    {"--fw @f.bin", "fatal no-action", "", "--isp", ""},
    {"--isp --ispdiff --fw @f.bin", "fatal several-actions", "--ispdiff", "--isp", ""},
    {"--factoryisp --fw @f.bin", "fatal refused-action", "--factoryisp", "always", ""},
    {"--srstatus", "error action-without-effect", "--srstatus", "none of its functions", ""},
    {"--erase", "error action-always-fails", "--erase", "0x6", ""},
    {"--mergefwinfo", "error action-always-fails", "--mergefwinfo", "0x6", ""},
    // needs
    {"--isp", "fatal missing-need", "--isp", "--fw /srv/fw/monitor.bin", ""},
    {"--isp --bank 3 --fw1 @f.bin", "fatal missing-need", "--bank", "--fw", ""},
    {"--isp --fw @f.bin --dumplen 3", "error no-effect", "--dumplen", "--dumpflash",
     "--isp --fw @f.bin"},
    {"--isp --boot @boot.bin --fw @f.bin", "error no-effect", "--boot", "--sw or --hw", ""},
    {"--resetmcu --fw @f.bin", "error no-effect", "--fw", "with --resetmcu; it is for --verify",
     "--resetmcu"},
    {"--isp --fw @f.bin --infotype hpscaler", "warning unused-option", "--infotype",
     "it is for --userdefinedinfo", ""},
    {"--isp --fw @f.bin --flagaddr 3", "error no-effect", "--flagaddr", "it is for --ispuser",
     "--isp --fw @f.bin"},
    {"--ispuser --fw @f.bin", "warning missing-companion", "--ispuser", "add --flagaddr", ""},
    {"--edpisp", "warning missing-companion", "--edpisp", "--edpmode", ""},
    {"--userdefinedinfo", "warning missing-companion", "--userdefinedinfo", "--infotype", ""},
    {"--recordver", "warning missing-companion", "--recordver", "a version location", ""},
    {"--isp --newboot --fw @f.bin", "warning missing-companion", "--newboot", "none is programmed",
     ""},
    {"--isp --fw @f.bin --searchfw auto", "fatal excluded-option", "--searchfw", "--fw", ""},
    {"--recordver --reg --ddcci", "fatal excluded-option", "--ddcci", "--reg", ""},
    {"--recordver --reg --ddcci --cmd", "fatal excluded-option", "--ddcci", "--reg", ""},
    {"--dumpflash", "fatal missing-need", "--dumpflash", "--dumplen", ""},
    {"--ispuser --fw @f.bin --flagdata 1,2", "error no-effect", "--flagdata", "--flagaddr", ""},
    {"--mergefwinfo --comm 3", "error action-always-fails", "--mergefwinfo", "0x6", ""},
    {"--write 1.2 --mergefwinfo", "error wrong-order", "--write", "only after --mergefwinfo",
     "--mergefwinfo --write 1.2"},
    {"--resetmcu --write 1.2", "error value-lost", "--write", "--mergefwinfo", ""},
    // signatures
    {"--verify", "error incomplete-option", "--verify", "nothing is verified", ""},
    {"--sign --fw @f.bin", "error incomplete-option", "--sign", "add --sw or --hw", ""},
    {"--isp --sw --fw @f.bin --signfile @s.sig", "warning missing-companion", "--sw",
     "no key is checked", ""},
    {"--isp --fw @f.bin --hw --boot @boot.bin", "error incomplete-option", "--boot",
     "without --factory and --newboot: the boot firmware is not programmed", ""},
    {"--isp --fw @f.bin --sw --sig @s.sig", "error ambiguous-option", "--sig",
     "did you mean --signfile?", "--isp --fw @f.bin --sw --signfile @s.sig"},
    {"--isp --fw @f.bin --signfile @s.sig --vkfile @k.pem --dsmode 3", "error unverified-signature",
     "--signfile", "programmed unchecked",
     "--isp --fw @f.bin --sw --signfile @s.sig --vkfile @k.pem --dsmode 3"},
    {"--isp --fw @f.bin --sw --hw --signfile @s.sig", "fatal excluded-option", "--hw", "--sw", ""},
    {"--isp --fw @f.bin --sw --signfile @s.sig --dsmode 3", "fatal missing-need", "--dsmode",
     "--vkfile", ""},
    {"--isp --fw @f.bin --sw --signfile @s.sig --vkfile @k.pem", "error key-not-used", "--vkfile",
     "--dsmode 1 or --dsmode 3", ""},
    {"--isp --fw @f.bin --sw", "fatal missing-need", "--sw", "--signfile", ""},
    {"--isp --fw @f.bin --hw", "warning unsigned-programming", "--hw",
     "not verified beforehand / leave", ""},
    {"--isp --fw @f.bin --hw --dsmode 3 --signfile @s.sig", "warning unsigned-programming", "--hw",
     "; nothing uses --dsmode, --signfile", ""},
    {"--isp --fw @f.bin --factory", "warning unsigned-programming", "--factory", "factory mode",
     ""},
    {"--isp --fw @f.bin --sw --signfile @s.sig --fw1 @g.bin --bank1 9", "warning unsigned-file",
     "--fw1", "does not cover", ""},
    {"--isp --fw @f.bin --sw --dsmode 5 --signfile @s.sig", "fatal number-out-of-range", "5",
     "such as --dsmode 2", ""},
    {"--isp --fw @f.bin --sw --dsmode 5 --signfile @s.sig --vkfile @k.pem",
     "fatal number-out-of-range", "5", "such as --dsmode 3", ""},
    {"--sign --fw @f.bin --sw --dsmode 3", "fatal missing-need", "--dsmode",
     "--skfile /srv/fw/key.pem", ""},
    // files
    {"--isp --fw @missing.bin", "fatal missing-file", "@missing.bin", "no file", ""},
    {"--isp --fw @ff.bin --comm 3", "fatal missing-file", "@ff.bin", "did you mean",
     "--isp --fw @f.bin --comm 3"},
    {"--isp --fw f.bin", "fatal relative-path-elsewhere", "f.bin", "absolute path",
     "--isp --fw @f.bin"},
    {"--isp --fw=f.bin", "fatal relative-path-elsewhere", "f.bin", "absolute path",
     "--isp --fw=@f.bin"},
    {"--isp --fw ~/x.bin", "fatal unexpanded-path", "~/x.bin", "no shell has replaced \"~\"",
     "--isp --fw /home/trial/x.bin"},
    {"--isp --fw ~else/x.bin", "fatal unexpanded-path", "~else/x.bin", "\"~else\"", ""},
    {"--isp --fw=$TRIAL/x.bin", "fatal unexpanded-path", "$TRIAL/x.bin", "variable $TRIAL",
     "--isp --fw=/srv/trial/x.bin"},
    {"--isp --fw ${TRIAL}/$TRIAL_NONE.bin", "fatal unexpanded-path", "${TRIAL}/$TRIAL_NONE.bin",
     "$TRIAL_NONE, which has no value", ""},
    {"--isp --fw C:\\fw\\x.bin", "fatal unexpanded-path", "C:\\fw\\x.bin", "path of Windows", ""},
    {"--dumpflash --dumplen 16 --dumpname ~/x.bin", "error unexpanded-path", "~/x.bin",
     "write /home/trial/x.bin", "--dumpflash --dumplen 16 --dumpname /home/trial/x.bin"},
    {"--isp --fw @sub", "fatal firmware-not-a-file", "@sub", "a directory", ""},
    {"--isp --fw /dev/null", "error firmware-not-a-file", "/dev/null", "a device", ""},
    {"--isp --fw @empty.bin", "error firmware-empty", "@empty.bin", "is empty", ""},
    {"--isp --fw @big.bin", "fatal firmware-too-large", "@big.bin", "16 MiB", ""},
    {"--isp --fw @huge.bin", "error firmware-too-large", "@huge.bin", "beyond 4 GiB", ""},
    {"--isp --settingfile @none.ini --fw @f.bin", "error missing-file", "@none.ini", "no file", ""},
    {"--isp --searchfw prefix --settingfile @s.sig", "error wrong-order", "--settingfile",
     "only before --searchfw", "--isp --settingfile @s.sig --searchfw prefix"},
    {"--isp --searchfw prefix", "fatal search-failed", "prefix", "finds no firmware", ""},
    {"--isp --settingfile @s.sig --searchfw prefix", "fatal search-failed", "prefix",
     "finds no firmware", ""},
    {"--isp --searchfw userdefined", "fatal settings-file", "userdefined", "finds no firmware", ""},
    // banks
    {"--isp --fw @f.bin --fw1 @g.bin --bank1 2", "fatal bank-overlap", "2", "--bank1 3",
     "--isp --fw @f.bin --fw1 @g.bin --bank1 3"},
    {"--isp --fw @f.bin --fw1 @g.bin", "fatal bank-overlap", "@g.bin", "bank 0",
     "--isp --fw @f.bin --fw1 @g.bin --bank1 3"},
    {"--isp --fw @f.bin --bank 254", "error bank-beyond-flash", "254", "--bank 253", ""},
    // dump
    {"--dumpflash --dumplen 16 --dumpname out.img", "warning dump-renamed", "out.img",
     "dumpFile.bin", "--dumpflash --dumplen 16 --dumpname out.bin"},
    {"--dumpflash --dumplen 16 --dumpname @none/out.bin", "error unwritable-file", "@none/out.bin",
     "there is no directory @none", ""},
    {"--dumpflash --dumplen 16 --dumpname @f.bin/out.bin", "error unwritable-file",
     "@f.bin/out.bin", "@f.bin is not a directory", ""},
    {"--sign --sw --dsmode 2 --fw @f.bin --signfile @none/s.sig", "error unwritable-file",
     "@none/s.sig", "there is no directory @none", ""},
    {"--dumpflash --dumplen 16 --dumpname @f.bin", "warning dump-overwritten", "@f.bin", "f-2.bin",
     ""},
};

class Mistakes : public LineFixture {
  protected:
    Mistakes() {
        MakeSparse("big.bin", 0x2100000);
        MakeSparse("huge.bin", 0x100000001);
        ::setenv("HOME", "/home/trial", 1);
        ::setenv("TRIAL", "/srv/trial", 1);
        ::unsetenv("TRIAL_NONE");
    }

    void MakeSparse(const std::string &name, std::uintmax_t size) {
        m_here.Write(name, "");
        std::filesystem::resize_file(m_here.Path(name), size);
    }
};

TEST_F(Mistakes, Each_has_finding_with_cause_and_remedy) {
    for (const Mistake &mistake : kMistakes) {
        const Words arguments = Line(mistake.line);
        const Findings findings = Check(arguments);
        SCOPED_TRACE(std::string(mistake.line) + "\n" + Shown(arguments, findings));
        const ispctl::Finding *found = nullptr;
        for (const ispctl::Finding &finding : findings) {
            const std::string name =
                std::string(NameOf(finding.severity)) + " " + std::string(finding.name);
            found = found == nullptr && name == mistake.finding ? &finding : found;
        }
        EXPECT_NE(found, nullptr) << mistake.finding;
        if (found == nullptr) {
            continue;
        }
        const std::string argument =
            found->argument ? arguments.at(*found->argument).substr(found->offset, found->length)
                            : "";
        EXPECT_EQ(argument, Line(mistake.argument).empty() ? "" : Line(mistake.argument).front());
        EXPECT_THAT(found->message + " / " + found->suggestion,
                    HasSubstr(Expand({mistake.message}).front()));
        EXPECT_EQ(found->corrected, Line(mistake.corrected));
        EXPECT_FALSE(found->suggestion.empty());
    }
}

TEST_F(Mistakes, Path_with_unquoted_spaces_is_joined) {
    m_here.Write("my new - file.bin", "x");
    const Findings findings = Check("--isp --fw @my new - file.bin --comm 3");
    ASSERT_THAT(Names(findings), testing::ElementsAre("fatal unquoted-path"));
    EXPECT_THAT(findings[0].message, HasSubstr("\"new\", \"-\", \"file.bin\" are left over"));
    EXPECT_THAT(findings[0].suggestion, HasSubstr("--fw '" + Here() + "my new - file.bin'"));
    EXPECT_EQ(findings[0].corrected,
              Expand({"--isp", "--fw", "@my new - file.bin", "--comm", "3"}));
}

TEST_F(Mistakes, Path_with_unquoted_spaces_need_not_exist) {
    const Findings findings = Check("--isp --fw=@no such file.bin more");
    ASSERT_THAT(Names(findings),
                testing::ElementsAre("fatal unquoted-path", "error leftover-argument"));
    EXPECT_EQ(findings[0].corrected, Expand({"--isp", "--fw=@no such file.bin", "more"}));
}

TEST_F(Mistakes, Path_of_260_bytes_is_too_long_and_259_is_not) {
    std::string folder = Here();
    folder += std::string(250 - folder.size(), 'd') + "/";
    std::filesystem::create_directories(folder);
    const std::string fits = folder + "12345678";
    const std::string isCut = folder + "123456789";
    std::ofstream(fits) << "x";
    std::ofstream(isCut) << "x";
    EXPECT_THAT(Names(Check({"--isp", "--fw", fits})), testing::IsEmpty());
    EXPECT_THAT(Names(Check({"--isp", "--fw", isCut})),
                testing::ElementsAre("error path-too-long"));
}

TEST_F(Mistakes, Umlaut_is_not_expressible_in_locale_c) {
    m_here.Write("\xC3\xA4.bin", "x");
    const char *before = std::getenv("LC_ALL");
    const std::string saved = before != nullptr ? before : "";
    ::setenv("LC_ALL", "C", 1);
    const Findings findings = Check("--isp --fw @\xC3\xA4.bin");
    before != nullptr ? ::setenv("LC_ALL", saved.c_str(), 1) : ::unsetenv("LC_ALL");
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].name, "path-not-expressible");
    EXPECT_NE(findings[0].severity, ispctl::FindingClass::Warning);
}

// The key or the firmware would be gone.
TEST_F(Mistakes, Signature_over_an_input_is_refused) {
    for (const std::string input : {"@f.bin", "@k.pem"}) {
        const Findings findings =
            Check("--sign --sw --dsmode 3 --fw @f.bin --skfile @k.pem --signfile " + input);
        EXPECT_THAT(Names(findings), Contains("error overwrites-input")) << input;
    }
    EXPECT_THAT(
        Names(Check("--sign --sw --dsmode 3 --fw @f.bin --skfile @k.pem --signfile @n.sig")),
        testing::Not(Contains("error overwrites-input")));
}

TEST_F(Mistakes, Pipe_as_settings_file_of_search_is_found_without_waiting_for_it) {
    m_context.libraryDirectory = m_here.Path("");
    ASSERT_EQ(std::system(("mkfifo " + Here() + "IspSetting.ini").c_str()), 0);
    ASSERT_EQ(std::system(("mkfifo " + Here() + "IspUserDefined.txt").c_str()), 0);
    for (const std::string search : {"prefix", "userdefined"}) {
        EXPECT_THAT(Names(Check("--isp --searchfw " + search)), Contains("fatal settings-file"))
            << search;
    }
}

TEST_F(Mistakes, Words_in_one_pair_of_quotes_are_taken_apart) {
    const Findings line = Check(Expand({"--isp --fw @f.bin"}));
    ASSERT_THAT(Names(line), Contains("error quoted-words"));
    EXPECT_EQ(line[0].name, "quoted-words");
    EXPECT_THAT(line[0].suggestion, HasSubstr("remove the quotes: --isp --fw "));
    EXPECT_EQ(line[0].corrected, Line("--isp --fw @f.bin"));
    const Findings option = Check(Expand({"--isp", "--bank 3", "--fw", "@f.bin"}));
    ASSERT_THAT(Names(option), testing::ElementsAre("error quoted-words"));
    EXPECT_EQ(option[0].corrected, Line("--isp --bank 3 --fw @f.bin"));
    EXPECT_THAT(Names(Check(Expand({"--isp", "--fw", "@f.bin", "--no such"}))),
                testing::ElementsAre("error unknown-option"));
}

TEST_F(Mistakes, Octal_number_that_means_the_same_misleads_nobody) {
    EXPECT_THAT(Names(Check("--isp --fw @f.bin --bank 07")), testing::IsEmpty());
    EXPECT_THAT(Names(Check("--isp --fw @f.bin --bank 00")), testing::IsEmpty());
}

TEST_F(Mistakes, Message_too_long_for_its_length_byte_has_no_correction) {
    std::string data = "0x6E,0x51,0x80";
    for (int i = 0; i < 127; ++i) {
        data += ",1";
    }
    const Findings fits = Check("--i2cwrite --ddccicmd --writedata " + data);
    ASSERT_THAT(Names(fits), Contains("fatal wrong-length-byte"));
    EXPECT_THAT(fits[0].message + fits[0].suggestion, HasSubstr("0x6e,0x51,0xff,0x01"));
    const Findings tooLong = Check("--i2cwrite --ddccicmd --writedata " + data + ",1");
    const auto found = std::find_if(tooLong.begin(), tooLong.end(), [](const auto &finding) {
        return finding.name == "wrong-length-byte";
    });
    ASSERT_NE(found, tooLong.end());
    EXPECT_TRUE(found->corrected.empty());
    EXPECT_THAT(found->suggestion, HasSubstr("0x6E,0x51,0x82,0x01,0x02"));
}

TEST_F(Mistakes, File_that_fits_nowhere_has_no_free_bank) {
    std::filesystem::resize_file(m_here.Write("most.bin", ""), 255 * 65536);
    const Findings findings = Check("--isp --fw @most.bin --bank 0 --fw1 @f.bin --bank1 1");
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(findings[0].name, "bank-overlap");
    EXPECT_TRUE(findings[0].corrected.empty());
    const Findings other = Check("--isp --fw @most.bin --bank 0 --fw1 @g.bin --bank1 1");
    ASSERT_FALSE(other.empty());
    EXPECT_EQ(other[0].corrected, Line("--isp --fw @most.bin --bank 0 --fw1 @g.bin --bank1 255"));
}

// It is the apostrophe of a name, and a file that exists is no mistake.
TEST_F(Mistakes, Quote_of_a_name_is_left_alone) {
    m_here.Write("‘q’.bin", "x");
    EXPECT_THAT(Names(Check("--isp ‘q’.bin")), Contains("error leftover-argument"));
    EXPECT_THAT(Names(Check("--isp ‘r’.bin")), Contains("fatal typographic-quotes"));
    EXPECT_THAT(Names(Check("--sign --sw --dsmode 3 --fw @f.bin --skfile @k.pem --signfile @new’")),
                testing::Not(Contains(testing::HasSubstr("typographic"))));
}

TEST_F(Mistakes, Dump_in_place_of_a_directory_is_not_called_unexpanded) {
    ASSERT_EQ(std::system(("mkdir '" + Here() + "$d.bin'").c_str()), 0);
    EXPECT_THAT(Names(Check({"--dumpflash", "--dumplen", "16", "--dumpname", Here() + "$d.bin"})),
                Contains("error unwritable-file"));
}

TEST_F(Mistakes, Pipe_as_firmware_is_found_without_waiting_for_it) {
    ASSERT_EQ(std::system(("mkfifo " + Here() + "pipe").c_str()), 0);
    EXPECT_THAT(Names(Check("--isp --fw @pipe")), Contains("fatal firmware-not-a-file"));
}

// "%" has a meaning in the table.
TEST_F(Mistakes, Variable_of_Windows_is_said_not_to_be_replaced) {
    const Findings findings = Check({"--isp", "--fw", "/srv/%USERPROFILE%/x.bin"});
    ASSERT_THAT(Names(findings), testing::ElementsAre("fatal unexpanded-path"));
    EXPECT_THAT(findings[0].message, HasSubstr("%USERPROFILE% is a variable of Windows"));
    EXPECT_THAT(findings[0].suggestion, HasSubstr("--fw /srv/fw/monitor.bin"));
}

TEST_F(Mistakes, File_in_both_directories_is_said) {
    Library().Write("f.bin", "other");
    const Words names = Names(Check("--isp --fw f.bin"));
    std::filesystem::remove(Library().Path("f.bin"));
    EXPECT_THAT(names, testing::ElementsAre("warning relative-path-twice"));
}

} // namespace
